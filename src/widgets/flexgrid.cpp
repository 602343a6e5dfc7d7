#include "widgets/flexgrid.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

#include "widgets/grid_cell_painter.h"
#include "widgets/grid_model.h"
#include "widgets/grid_text.h"
#include "widgets/row_header.h"
#include "widgets/twips.h"

namespace {

constexpr int row_margin = 6;  // pixels between the lines of text of two rows
constexpr int twips_per_inch = 1440;

// A cell of the clipboard's text.
void append_clip_cell(std::string_view text, std::string& out) {
  if (text.find_first_of("\t\r\n") == std::string_view::npos) {
    out += text;
    return;
  }
  out += '"';
  for (const char c : text) out.append(c == '"' ? 2 : 1, c);
  out += '"';
}

}  // namespace

flexgrid::flexgrid(QWidget* parent)
    : QTableView(parent), model_(new grid_model(this)), painter_(new grid_cell_painter(*model_, this)),
      row_header_(new row_header(this)) {
  setModel(model_);
  setItemDelegate(painter_);
  setShowGrid(false);  // the painter draws the lines, which merged cells do not have
  setWordWrap(false);
  setTabKeyNavigation(false);
  setEditTriggers(NoEditTriggers);
  setSelectionMode(ContiguousSelection);
  setHorizontalScrollMode(ScrollPerPixel);
  horizontalHeader()->setMinimumSectionSize(0);
  horizontalHeader()->setDefaultSectionSize(twips_to_pixels(default_column_width, *this));
  horizontalHeader()->hide();
  setVerticalHeader(row_header_);
  verticalHeader()->hide();
  fit_row_height();
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int section, int, int pixels) {
    if (!applying_widths_) widths_[section + FixedCols()] = pixels * twips_per_inch / logicalDpiX();
  });
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &flexgrid::scrolled);
  connect(verticalScrollBar(), &QScrollBar::sliderReleased, this, &flexgrid::scrolled);
}

cell_store& flexgrid::cells() const { return model_->cells; }
int flexgrid::Rows() const { return static_cast<int>(cells().rows()); }
int flexgrid::Cols() const { return static_cast<int>(cells().columns()); }
int flexgrid::FixedRows() const { return model_->fixed_rows; }
int flexgrid::FixedCols() const { return model_->fixed_columns; }

bool flexgrid::inside(int row, int column) const { return row >= 0 && row < Rows() && column >= 0 && column < Cols(); }

QModelIndex flexgrid::index_of(int row, int column) const {
  return model_->index(row - FixedRows(), column - FixedCols());
}

void flexgrid::keep_a_cell_unfixed() {
  model_->fixed_rows = qBound(0, model_->fixed_rows, qMax(0, qMin(1, Rows() - 1)));
  model_->fixed_columns = qBound(0, model_->fixed_columns, qMax(0, qMin(1, Cols() - 1)));
}

void flexgrid::SetRows(int rows) {
  cells().resize_rows(static_cast<std::size_t>(qMax(0, rows)));
  shape_changed();
}

void flexgrid::SetCols(int columns) {
  cells().resize_columns(static_cast<std::size_t>(qMax(0, columns)));
  shape_changed();
}

void flexgrid::SetFixedRows(int rows) {
  model_->fixed_rows = rows;
  shape_changed();
}

void flexgrid::SetFixedCols(int columns) {
  model_->fixed_columns = columns;
  shape_changed();
}

QString flexgrid::text(int row, int column) const { return readable_text(bytes(row, column)); }

std::string_view flexgrid::bytes(int row, int column) const { return model_->grid_text(row, column); }

void flexgrid::set_text(int row, int column, const QString& text) { set_text(row, column, text.toStdString()); }

void flexgrid::set_text(int row, int column, std::string_view utf8) {
  if (!inside(row, column)) return;
  cells().set(static_cast<std::size_t>(row), static_cast<std::size_t>(column), utf8);
  if (!redraw_) return;
  viewport()->update();
  if (row < FixedRows()) horizontalHeader()->viewport()->update();
  if (column < FixedCols()) verticalHeader()->viewport()->update();
}

void flexgrid::AddItem(const QString& tab_separated, int before) {
  const int row = before < 0 || before > Rows() ? Rows() : before;
  cells().insert_row(static_cast<std::size_t>(row));
  const QStringList texts = tab_separated.split('\t');
  for (int i = 0; i < qMin(Cols(), static_cast<int>(texts.size())); ++i) {
    cells().set(static_cast<std::size_t>(row), static_cast<std::size_t>(i), texts[i].toStdString());
  }
  shape_changed();
}

void flexgrid::RemoveItem(int row) {
  if (row < 0 || row >= Rows()) return;
  cells().erase_row(static_cast<std::size_t>(row));
  shape_changed();
}

void flexgrid::append_row() {
  cells().append_row();
  shape_changed();
}

void flexgrid::append_cell(std::string_view utf8) { cells().append_cell(utf8); }

std::string& flexgrid::open_cell() { return cells().open_cell(); }
void flexgrid::close_cell() { cells().close_cell(); }

void flexgrid::shape_changed() {
  if (redraw_) publish();
}

void flexgrid::publish() {
  keep_a_cell_unfixed();
  const grid_model::news told = model_->publish();
  if (told == grid_model::news::none) return;
  if (told == grid_model::news::rows_added) {
    fit_fixed_column();
    return;
  }
  horizontalHeader()->setVisible(FixedRows() > 0);
  verticalHeader()->setVisible(FixedCols() > 0);
  apply_widths();
  fit_fixed_column();
  show_merging();
  place_current();
}

// After a reset the view has forgotten its current cell; the grid has not.
void flexgrid::place_current() {
  row_ = qBound(0, row_, qMax(0, Rows() - 1));
  column_ = qBound(0, column_, qMax(0, Cols() - 1));
  const QModelIndex index = index_of(row_, column_);
  if (index.isValid() && index != currentIndex()) selectionModel()->setCurrentIndex(index, QItemSelectionModel::Select);
}

void flexgrid::set_redraw(bool on) {
  if (on == redraw_) return;
  redraw_ = on;
  if (on) publish();
  setAutoScroll(on);
  setUpdatesEnabled(on);
}

void flexgrid::set_current(int row, int column) {
  publish();
  row = qBound(0, row, qMax(0, Rows() - 1));
  column = qBound(0, column, qMax(0, Cols() - 1));
  const bool moved = row != row_ || column != column_;
  row_ = row;
  column_ = column;
  const QModelIndex index = index_of(row, column);
  if (index.isValid()) {
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  } else {
    selectionModel()->clear();
  }
  if (moved) emit row_col_changed();
}

void flexgrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  const int row = current.row() + FixedRows();
  const int column = current.column() + FixedCols();
  const bool moved = current.isValid() && (row != row_ || column != column_);
  if (moved) {
    row_ = row;
    column_ = column;
  }
  QTableView::currentChanged(current, previous);
  if (moved) emit row_col_changed();
}

void flexgrid::select_to(int row, int column) {
  publish();
  const QModelIndex from = index_of(row_, column_);
  const QModelIndex to =
      index_of(qBound(FixedRows(), row, qMax(0, Rows() - 1)), qBound(FixedCols(), column, qMax(0, Cols() - 1)));
  if (!from.isValid() || !to.isValid()) return;
  const QModelIndex top_left = model_->index(qMin(from.row(), to.row()), qMin(from.column(), to.column()));
  const QModelIndex bottom_right = model_->index(qMax(from.row(), to.row()), qMax(from.column(), to.column()));
  selectionModel()->select(QItemSelection(top_left, bottom_right), QItemSelectionModel::ClearAndSelect);
}

QRect flexgrid::selected_cells() const {
  QRect cells_selected;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    cells_selected |=
        QRect(QPoint(range.left() + FixedCols(), range.top() + FixedRows()), QSize(range.width(), range.height()));
  }
  return cells_selected;
}

int flexgrid::row_sel() const {
  const QRect selected = selected_cells();
  if (selected.isEmpty()) return row_;
  return row_ == selected.top() ? selected.bottom() : selected.top();
}

int flexgrid::column_sel() const {
  const QRect selected = selected_cells();
  if (selected.isEmpty()) return column_;
  return column_ == selected.left() ? selected.right() : selected.left();
}

QString flexgrid::clip() const {
  const QRect selected = selected_cells();
  std::string text;
  for (int row = selected.top(); row <= selected.bottom(); ++row) {
    if (row > selected.top()) text += '\r';
    for (int column = selected.left(); column <= selected.right(); ++column) {
      if (column > selected.left()) text += '\t';
      append_clip_cell(bytes(row, column), text);
    }
  }
  return readable_text(text);
}

int flexgrid::column_width(int column) const { return widths_.value(column, default_column_width); }

void flexgrid::set_column_width(int column, int twips) {
  if (column < 0) return;
  widths_[column] = qMax(0, twips);
  if (redraw_) {
    apply_widths();
    fit_fixed_column();
  }
}

void flexgrid::apply_widths() {
  applying_widths_ = true;
  for (int section = 0; section < model_->columnCount(); ++section) {
    const int pixels = twips_to_pixels(column_width(section + FixedCols()), *this);
    if (horizontalHeader()->sectionSize(section) != pixels) horizontalHeader()->resizeSection(section, pixels);
  }
  applying_widths_ = false;
}

// The fixed column is as wide as it was set, and wider where its longest text needs it.
void flexgrid::fit_fixed_column() {
  if (FixedCols() == 0) return;
  const std::size_t longest = cells().longest_first() + 2;
  if (measured_width_.first != longest) {
    measured_width_ = {longest, fontMetrics().horizontalAdvance(QString(static_cast<qsizetype>(longest), '0'))};
  }
  row_header_->set_width(qMax(twips_to_pixels(column_width(0), *this), qMin(measured_width_.second, width() / 2)));
}

void flexgrid::set_alignment(int column, Qt::Alignment alignment) {
  model_->alignments[column] = alignment;
  viewport()->update();
}

void flexgrid::fit_row_height() {
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + row_margin);
}

int flexgrid::row_height() const { return verticalHeader()->defaultSectionSize() * twips_per_inch / logicalDpiY(); }

QRect flexgrid::cell_rect(int row, int column) const { return visualRect(index_of(row, column)); }

void flexgrid::sort(sort_direction direction) {
  publish();
  const QRect selected = selected_cells();
  if (selected.height() < 2) return;
  const auto first = static_cast<std::size_t>(selected.top());
  const auto order =
      generic_order(cells(), first, static_cast<std::size_t>(selected.height()),
                    static_cast<std::size_t>(selected.left()), static_cast<std::size_t>(selected.right()), direction);
  cells().reorder(first, order);
  viewport()->update();
  verticalHeader()->viewport()->update();
}

void flexgrid::set_free_merging(bool on) {
  free_merging_ = on;
  show_merging();
}

void flexgrid::set_merge_column(int column, bool merged) {
  if (merged) {
    merge_flags_.insert(column);
  } else {
    merge_flags_.remove(column);
  }
  show_merging();
}

bool flexgrid::merges(int column) const { return free_merging_ && merge_flags_.contains(column); }

void flexgrid::show_merging() {
  painter_->merged_columns.clear();
  for (const int column : merge_flags_) {
    if (free_merging_) painter_->merged_columns.insert(column - FixedCols());
  }
  viewport()->update();
}

void flexgrid::set_mark(std::string utf8) { painter_->mark = std::move(utf8); }

// A second End at the end of a row goes on to the last row.
QModelIndex flexgrid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const bool at_end = currentIndex().column() == model_->columnCount() - 1;
  return QTableView::moveCursor(action, action == MoveEnd && at_end ? modifiers | Qt::ControlModifier : modifiers);
}

void flexgrid::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    QGuiApplication::clipboard()->setText(clip());
    return;
  }
  const QPoint before(column_, row_);
  QTableView::keyPressEvent(event);
  const bool down = event->key() == Qt::Key_Down || event->key() == Qt::Key_PageDown || event->key() == Qt::Key_End;
  if (down && before == QPoint(column_, row_) && row_ == Rows() - 1) emit reached_bottom();
}

void flexgrid::wheelEvent(QWheelEvent* event) {
  QTableView::wheelEvent(event);
  executeDelayedItemsLayout();
  const QScrollBar* bar = verticalScrollBar();
  if (event->angleDelta().y() < 0 && bar->value() == bar->maximum()) emit reached_bottom();
}

// Rows that came just now may wait for their layout, and the bar for its range.
void flexgrid::scrolled() {
  if (verticalScrollBar()->value() == verticalScrollBar()->maximum()) executeDelayedItemsLayout();
  const QScrollBar* bar = verticalScrollBar();
  if (bar->maximum() > 0 && bar->value() == bar->maximum() && !bar->isSliderDown()) emit reached_bottom();
}

void flexgrid::paintEvent(QPaintEvent* event) {
  painter_->first_visible_row = rowAt(0);
  QTableView::paintEvent(event);
}

// The row that comes to the top shows the text of the merged cell that it belongs to.
void flexgrid::scrollContentsBy(int dx, int dy) {
  QTableView::scrollContentsBy(dx, dy);
  if (dy != 0 && !painter_->merged_columns.isEmpty()) viewport()->update();
}

void flexgrid::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  fit_row_height();
  measured_width_ = {};
  fit_fixed_column();
}
