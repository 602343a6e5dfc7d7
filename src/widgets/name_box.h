#pragma once

#include <QComboBox>

class QStringListModel;

// An editable combo box for names, tens of thousands of them: no entry costs more than its text. While a name is typed,
// the entries that contain it are offered, whatever their case; a typed text is never changed into an entry that only
// looks like it.
class name_box : public QComboBox {
  Q_OBJECT

 public:
  explicit name_box(QWidget* parent = nullptr);

  // Replaces the entries; nothing is selected then, and the text is empty.
  void set_names(const QStringList& names);
  // Whether the text is an entry, to the letter.
  [[nodiscard]] bool lists(const QString& text) const;

 signals:
  // The user has chosen an entry, or typed a text and pressed Enter.
  void chosen();

 protected:
  // Only a box that has the focus follows the wheel: a page that is scrolled must not choose.
  void wheelEvent(QWheelEvent* event) override;

 private:
  void text_entered();

  QStringListModel* names_;
};
