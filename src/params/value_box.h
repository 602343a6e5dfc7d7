#pragma once

#include <QLineEdit>

// A text box of any length that says when the focus enters and leaves it; entering selects the whole text.
class value_box : public QLineEdit {
  Q_OBJECT

 public:
  explicit value_box(QWidget* parent = nullptr);

 signals:
  void entered(Qt::FocusReason why);
  void left();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};
