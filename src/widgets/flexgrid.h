#pragma once

#include <QHash>
#include <QTableView>

#include "widgets/generic_order.h"

class grid_cell_painter;
class grid_model;
class row_header;

// A grid of texts addressed by row and column, counted from 0. The first row and the first column can be fixed: they
// stay in view as headers while the rest scrolls. There is a current cell, and a selection that reaches from it to the
// selection's end. Hundreds of thousands of rows are its daily work: texts lie in a cell_store, rows are of one height,
// and only what is in view is laid out and painted.
//
// Texts are UTF-8; where a QString is given or answered, a zero byte and broken UTF-8 read as U+FFFD. Widths are in
// twips. Cells outside the grid are empty and take nothing.
class flexgrid : public QTableView {
  Q_OBJECT

 public:
  static constexpr int default_column_width = 960;

  explicit flexgrid(QWidget* parent = nullptr);

  [[nodiscard]] int Rows() const;
  [[nodiscard]] int Cols() const;
  // Texts of the rows and columns that stay are kept.
  void SetRows(int rows);
  void SetCols(int columns);
  // 0 or 1. At least one row, and one column, stays unfixed.
  [[nodiscard]] int FixedRows() const;
  [[nodiscard]] int FixedCols() const;
  void SetFixedRows(int rows);
  void SetFixedCols(int columns);

  [[nodiscard]] QString text(int row, int column) const;
  // The text as it was given, valid until the grid is changed.
  [[nodiscard]] std::string_view bytes(int row, int column) const;
  void set_text(int row, int column, const QString& text);
  void set_text(int row, int column, std::string_view utf8);

  // Adds a row whose cells are separated by tabs, at the end or in front of a row; takes a row out.
  void AddItem(const QString& tab_separated, int before = -1);
  void RemoveItem(int row);
  // Rows at the end, cell by cell: append_row, then append_cell for each column from 0 on. While redraw is on each row
  // is shown at once, so switch it off around a block.
  void append_row();
  void append_cell(std::string_view utf8);
  // The same without a string of the caller's: a cell's text is what is put at the end of this one until close_cell.
  std::string& open_cell();
  void close_cell();

  // The current cell, and the end of the selection.
  [[nodiscard]] int row() const { return row_; }
  [[nodiscard]] int column() const { return column_; }
  [[nodiscard]] int row_sel() const;
  [[nodiscard]] int column_sel() const;
  // Moves to a cell, which alone is selected then; a place outside moves to the nearest cell.
  void set_current(int row, int column);
  void select_to(int row, int column);

  // The selected cells as spreadsheets exchange them: cells of a row joined by tabs, rows by carriage returns. A text
  // with a tab or a line end in it stands between quotes, its own quotes doubled.
  [[nodiscard]] QString clip() const;

  // 0 makes a column invisible; the user can draw it wider.
  [[nodiscard]] int column_width(int column) const;
  void set_column_width(int column, int twips);
  void set_alignment(int column, Qt::Alignment alignment);
  // Of every row, in twips.
  [[nodiscard]] int row_height() const;
  // Where a cell that is not fixed stands in the viewport, in pixels.
  [[nodiscard]] QRect cell_rect(int row, int column) const;

  // While redraw is off nothing is painted, and moves of the current cell do not scroll.
  [[nodiscard]] bool redraw() const { return redraw_; }
  void set_redraw(bool on);

  // Sorts the rows of the selection by its columns. The current cell and the selection stay where they are.
  void sort(sort_direction direction);

  // Shows adjacent cells of a flagged column with equal text as one cell.
  void set_free_merging(bool on);
  void set_merge_column(int column, bool merged);
  [[nodiscard]] bool merges(int column) const;

  // A text that stands for the lack of a text, such as "#NULL#", is shown dimmed.
  void set_mark(std::string utf8);

  // Typing does not search: it would read every row.
  void keyboardSearch(const QString&) override {}

 signals:
  // The current cell is another one.
  void row_col_changed();
  // The user has scrolled to the end, or tries to go beyond it; while the scroll bar is dragged, when it is let go.
  void reached_bottom();

 protected:
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void changeEvent(QEvent* event) override;

 private:
  [[nodiscard]] cell_store& cells() const;
  [[nodiscard]] bool inside(int row, int column) const;
  [[nodiscard]] QModelIndex index_of(int row, int column) const;
  // The selected rectangle in the grid's numbers; empty without one.
  [[nodiscard]] QRect selected_cells() const;
  void keep_a_cell_unfixed();
  void shape_changed();
  void publish();
  void place_current();
  void apply_widths();
  void fit_fixed_column();
  void fit_row_height();
  void show_merging();
  void scrolled();

  grid_model* model_;
  grid_cell_painter* painter_;
  row_header* row_header_;
  int row_ = 0;
  int column_ = 0;
  bool redraw_ = true;
  bool applying_widths_ = false;
  bool free_merging_ = false;
  QHash<int, int> widths_;  // in twips, of columns that have not the default
  QSet<int> merge_flags_;
  std::pair<std::size_t, int> measured_width_{0, 0};  // of so many bytes, in pixels of the font in force
};

// Redraw off for a scope, and as it was afterwards.
class redraw_off {
 public:
  explicit redraw_off(flexgrid& grid) : grid_(grid), before_(grid.redraw()) { grid.set_redraw(false); }
  ~redraw_off() { grid_.set_redraw(before_); }
  redraw_off(const redraw_off&) = delete;
  redraw_off& operator=(const redraw_off&) = delete;

 private:
  flexgrid& grid_;
  bool before_;
};
