#include "datawindow/datawindow.h"

#include <QCoreApplication>
#include <new>

#include "base/number_format.h"
#include "base/user_interface.h"
#include "datawindow/dwf.h"
#include "platform/mdi_host.h"
#include "widgets/flexgrid.h"

namespace {

// Column widths in twips.
constexpr int twips_per_character = 150;
constexpr std::uint64_t most_characters = 40;
constexpr int timestamp_width = 2100;
constexpr int date_width = 1650;
constexpr int other_width = 1250;

int width_of(int sql_type, std::uint64_t precision) {
  switch (sql_type) {
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
      return static_cast<int>(std::min(precision, most_characters)) * twips_per_character;
    case SQL_TIMESTAMP:
      return timestamp_width;
    case SQL_DATE:
      return date_width;
    default:
      return other_width;
  }
}

Qt::Alignment alignment_of(int ctype) {
  return ctype == SQL_C_LONG || ctype == SQL_C_DOUBLE ? Qt::AlignRight : Qt::AlignLeft;
}

// IgnoreRowColChange for a scope.
class ignored_moves {
 public:
  explicit ignored_moves(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
  ~ignored_moves() { flag_ = before_; }
  ignored_moves(const ignored_moves&) = delete;
  ignored_moves& operator=(const ignored_moves&) = delete;

 private:
  bool& flag_;
  bool before_;
};

// A fetch starts in the midst of the grid's own key or mouse event: a message that waited there would let the window be
// closed under the grid's feet.
void tell_later(std::function<void()> tell) {
  QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(tell), Qt::QueuedConnection);
}

}  // namespace

std::shared_ptr<DataWindow> DataWindow::open(mdi_host& host) {
  std::shared_ptr<DataWindow> made(new DataWindow);
  made->form_ = new dwf(host);
  made->form_->Caller = made;
  host.show_child(made->form_);
  return made;
}

dwf* DataWindow::form() const { return form_; }

void DataWindow::SetStatement(std::string text, std::shared_ptr<odbcstmt> statement) {
  text_ = std::move(text);
  statement_ = std::move(statement);
  generation_ = statement_ == nullptr ? 0 : statement_->generation();
}

void DataWindow::SetHeaders() {
  if (form_.isNull() || statement_ == nullptr) return;
  flexgrid& grid = form_->grid();
  const ignored_moves ignored(IgnoreRowColChange);
  const redraw_off still(grid);
  grid.SetFixedRows(0);
  grid.SetRows(1);
  grid.SetCols(statement_->NCols() + 1);
  grid.SetFixedCols(1);
  for (int i = 1; i <= statement_->NCols(); ++i) {
    grid.set_text(0, i, statement_->ColName(i));
    grid.set_column_width(i, width_of(statement_->ColType(i), statement_->ColPrecision(i)));
    grid.set_alignment(i, alignment_of(statement_->ColCType(i)));
  }
  grid.set_current(0, statement_->NCols());
}

void DataWindow::FetchFirst(std::int64_t rows) {
  if (form_.isNull() || statement_ == nullptr) return;
  flexgrid& grid = form_->grid();
  const ignored_moves ignored(IgnoreRowColChange);
  const redraw_off still(grid);
  append_rows(rows);
  if (grid.Rows() > 1) {
    grid.SetFixedRows(1);
    grid.set_current(1, 1);
  }
  RowsFetched = std::max<std::int64_t>(rows, 0);
}

void DataWindow::FetchMore() {
  if (!MoreRows || form_.isNull() || statement_ == nullptr) return;
  notice_lost_result();
  if (!MoreRows) return;
  try {
    fetch_block();
  } catch (const std::bad_alloc&) {
    MoreRows = false;
    tell_later(
        [] { show_user_error("There is no memory for more rows. Those that were fetched stay.", "Program Error"); });
  }
}

void DataWindow::fetch_block() {
  std::int64_t rows = 0;
  const bool in_blocks = statement_->RowSetSize() > 1;
  if (!statement_->ExtFetchNext(rows)) {
    MoreRows = false;
    if (!in_blocks || statement_->Result() == SQL_NO_DATA_FOUND) return;
    tell_later([record = statement_->ErrData()] { show_diagnostic(record); });
    return;
  }
  if (rows == 0) MoreRows = false;
  const ignored_moves ignored(IgnoreRowColChange);
  const redraw_off still(form_->grid());
  append_rows(rows);
  RowsFetched += rows;
}

// The texts go straight from the statement's buffer into the grid's store.
void DataWindow::append_rows(std::int64_t rows) {
  flexgrid& grid = form_->grid();
  const busy_section busy;
  const int columns = statement_->NCols();
  for (std::int64_t row = 0; row < rows; ++row) {
    grid.append_row();
    append_integer(RowsFetched + row + 1, grid.open_cell());
    grid.close_cell();
    for (int column = 1; column <= columns; ++column) {
      std::string& text = grid.open_cell();
      if (!statement_->append_text(column, row, text)) text += null_text;
      grid.close_cell();
    }
  }
}

void DataWindow::RowPicked(int row, int col) { emit RowSelected(row, col); }

void DataWindow::notice_lost_result() {
  if (!MoreRows || form_.isNull() || statement_ == nullptr || statement_->generation() == generation_) return;
  MoreRows = false;
  form_->setWindowTitle(statement_->Free() ? "Data Window (the statement was closed; no more rows)"
                                           : "Data Window (the statement was prepared anew; no more rows)");
}
