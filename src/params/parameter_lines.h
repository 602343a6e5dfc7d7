#pragma once

#include <QWidget>
#include <array>
#include <vector>

#include "params/parameter_values.h"

class QLabel;
class QLineEdit;
class QScrollBar;
class value_box;

// Seven lines that show a window onto a table of parameters, with a scroll bar beside them. The table, not the boxes,
// is the source of the values. The boxes are named by their column and line: "Parm_0" ... "BindData_6".
class parameter_lines : public QWidget {
  Q_OBJECT

 public:
  static constexpr int line_count = 7;
  enum class value_column { editable, read_only };

  explicit parameter_lines(QWidget* parent = nullptr);

  // The last column's title, and whether what is typed there goes into the table.
  void set_value_column(const QString& title, value_column kind);
  // Makes room for n parameters and shows the first; with fewer than seven the scroll bar and the lines beyond are
  // hidden. The boxes stay empty until fill.
  void set_up(int n);
  // The table, one row per parameter.
  void fill(std::vector<parameter_row> table);
  [[nodiscard]] const std::vector<parameter_row>& table() const { return table_; }

  // Shows the rows from the scroll bar's value on; only with more than seven parameters.
  void RePaintME();
  // Scrolls a parameter (from 0) into view and puts the focus into its value.
  void go_to(int parameter);

 protected:
  bool focusNextPrevChild(bool next) override;
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  static constexpr std::size_t described_columns = 5;
  struct line {
    std::array<QLineEdit*, described_columns> described{};
    value_box* BindData = nullptr;
  };

  void pS_Change();
  void BindData_Change(int k);
  void BindData_GotFocus(int k, Qt::FocusReason why);
  void BindData_LostFocus(int k);

  void show_line(int k);
  // Scrolls by one and puts the focus into a line without paging again.
  void page(int by, int k);
  void adopt_font();
  void adopt_palette();
  // The table's row that a line shows.
  [[nodiscard]] std::size_t row_of(int k) const { return static_cast<std::size_t>(top_) + static_cast<std::size_t>(k); }
  [[nodiscard]] value_box* box(int k) const { return lines_[static_cast<std::size_t>(k)].BindData; }

  std::array<line, line_count> lines_;
  std::array<QLabel*, described_columns + 1> titles_{};
  QScrollBar* pS;
  std::vector<parameter_row> table_;
  int n_ = 0;
  int top_ = 0;
  int last_line_left_ = 0;
  bool scroll_guard_ = false;
  value_column values_ = value_column::editable;
};
