#pragma once

#include <QStatusBar>
#include <vector>

class QLabel;

// A status bar of numbered text panels, counted from 1. A panel with a stretch of 0 takes the width of its text and
// never shrinks again, so that figures that change often do not make the bar jump; the others share what is left, and
// cut their text with an ellipsis.
class status_panels : public QStatusBar {
  Q_OBJECT

 public:
  explicit status_panels(QWidget* parent = nullptr);

  void add_panel(const QString& text, const QString& tooltip, int stretch);

  void set_text(int number, const QString& text);
  [[nodiscard]] QString text(int number) const;
  [[nodiscard]] QLabel* label(int number) const { return at(number).label; }
  [[nodiscard]] int count() const { return static_cast<int>(panels_.size()); }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  struct panel_state {
    QLabel* label = nullptr;
    QString text;
    bool shares = false;
  };
  void show_text(panel_state& at);
  [[nodiscard]] const panel_state& at(int number) const { return panels_[static_cast<std::size_t>(number - 1)]; }

  std::vector<panel_state> panels_;
};
