#include "odbc/odbcstmt.h"

#include <limits>
#include <new>

#include "base/text.h"
#include "base/user_interface.h"
#include "odbc/layer_error.h"
#include "odbc/struct_cells.h"
#include "odbc/text_argument.h"

namespace {

constexpr int most_rows_per_block = 1000;
constexpr std::size_t buffer_limit = 1'048'576;
constexpr std::size_t widest_buffer = std::size_t{1} << 30U;  // beyond it the description is no honest one
constexpr std::size_t name_bytes = 513;
constexpr SQLSMALLINT name_offered = 512;

}  // namespace

SQLRETURN odbcstmt::record(SQLRETURN rc) {
  last_rc = rc;
  held_diagnostic.reset();  // a call clears what the one before it had to say
  return rc;
}

void odbcstmt::check(SQLRETURN rc, odbc_fault fault) {
  if (!sql_ok(record(rc))) raise_error(fault);
}

void odbcstmt::reset_descriptions() {
  ++preparation;
  ncols = 0;
  nparms = 0;
  rowset_size = 1;
  param_rows = 1;
  columns.clear();
  row_data.assign(1, 0);
  row_len.assign(1, 0);
  row_status.assign(1, 0);
  markers.clear();
  layout = cell_layout::by_value;
  param_data.assign(1);
  param_len.assign(1, 0);
  cell_rows = 1;
  forget_blocks();
}

// The text in the code page; raises where it cannot be sent.
std::string odbcstmt::sendable(std::string_view text) {
  auto bytes = text.find('\0') == std::string_view::npos ? current_code_page().from_utf8(text) : std::nullopt;
  if (!bytes) {
    last_rc = rc_not_sendable;
    raise_error(odbc_fault::text_not_sendable);
  }
  return *std::move(bytes);
}

bool odbcstmt::Make(odbccon& con) {
  return trap(last_err, [&] { Make_XX(con); });
}

void odbcstmt::Make_XX(odbccon& con) {
  if (!Free()) Kill();
  SQLHSTMT allocated = nullptr;
  check(SQLAllocStmt(con.Handle(), &allocated), odbc_fault::allocate_statement);
  hstmt = allocated;
  handle_rowset = 1;
  handle_block = 1;
  connection = &con;
  con.AddStmt(*this);
}

bool odbcstmt::Kill() {
  return trap(last_err, [&] { Kill_XX(); });
}

void odbcstmt::Kill_XX() {
  if (Free()) return;
  const bool dropped = sql_ok(record(SQLFreeStmt(hstmt, SQL_DROP)));
  connection->DropStmt(hstmt);
  hstmt = nullptr;
  last_rc = 0;
  held_diagnostic.reset();
  in_use = false;
  connection = nullptr;
  reset_descriptions();
  if (!dropped) raise_error(odbc_fault::free_statement);
}

bool odbcstmt::Prep(std::string_view text, std::optional<std::int32_t> rowset) {
  return trap(last_err, [&] { Prep_XX(text, rowset); });
}
void odbcstmt::Prep_XX(std::string_view text, std::optional<std::int32_t> rowset) {
  prepare(text, rowset, column_rule::plain);
}

bool odbcstmt::ProcPrep(std::string_view text, std::optional<std::int32_t> rowset) {
  return trap(last_err, [&] { ProcPrep_XX(text, rowset); });
}
void odbcstmt::ProcPrep_XX(std::string_view text, std::optional<std::int32_t> rowset) {
  prepare(text, rowset, column_rule::procedure);
}

void odbcstmt::prepare(std::string_view text, std::optional<std::int32_t> rowset, column_rule rule) {
  const std::int32_t rows = rowset.value_or(1);
  if (rows < 1 || rows > most_rows_per_block) raise_error(odbc_fault::rowset_range);
  prepare_with(sendable(text), rows, rule);
}

void odbcstmt::prepare_with(const std::string& bytes, int rowset, column_rule rule) {
  cancel_previous();
  set_rowset_option(rowset);
  send_text(bytes);
  rowset_size = rowset;
  row_status.assign(static_cast<std::size_t>(rowset_size), 0);

  SQLSMALLINT column_count = 0;
  SQLSMALLINT marker_count = 0;
  check(SQLNumResultCols(hstmt, &column_count), odbc_fault::count_columns);
  check(SQLNumParams(hstmt, &marker_count), odbc_fault::count_parameters);
  if (column_count >= 1 && !describe_columns(column_count, rule, true)) {
    const std::size_t bytes_per_row =
        std::max<std::size_t>(lay_out_columns(rule) / static_cast<std::size_t>(rowset_size), 1);
    const auto lowered = static_cast<int>(std::max<std::size_t>(buffer_limit / bytes_per_row, 2));
    prepare_with(bytes, lowered, rule);
    return;
  }
  if (marker_count < 1) return;
  describe_parameters(marker_count);
  if (rule == column_rule::procedure) bind_procedure_parameters();
}

// A new preparation on a statement in use first closes its cursor and releases its bindings; a statement that cannot be
// cancelled, or that has no handle, is not prepared.
void odbcstmt::cancel_previous() {
  if (in_use) {
    if (!Cancel()) raise_error(last_err);
    check(SQLFreeStmt(hstmt, SQL_UNBIND), odbc_fault::cancel);
  }
  if (!Free()) return;
  last_rc = rc_no_handle;
  raise_error(odbc_fault::prepare_without_handle);
}

void odbcstmt::send_text(const std::string& bytes) {
  {
    const busy_section busy;
    // The driver manager's declaration lacks the const; the text is only read.
    record(SQLPrepare(hstmt, reinterpret_cast<SQLCHAR*>(const_cast<char*>(bytes.c_str())), SQL_NTS));
  }
  if (!OK()) raise_error(odbc_fault::prepare);
  in_use = true;
}

// A driver may fetch a whole rowset on every fetch once the option stands above 1, so it goes back to 1 as well.
void odbcstmt::set_rowset_option(int rowset) {
  const auto wanted = static_cast<std::uint32_t>(rowset);
  if (wanted != handle_rowset) SetOption_XX(SQL_ROWSET_SIZE, wanted);
}

bool odbcstmt::describe_columns(int count, column_rule rule, bool may_lower) {
  columns.assign(static_cast<std::size_t>(count), {});
  for (int number = 1; number <= count; ++number) describe_column(number);
  const std::size_t total = lay_out_columns(rule);
  if (may_lower && total > buffer_limit && rowset_size >= 3) return false;
  if (total > widest_buffer) throw std::bad_alloc();
  row_data.assign(std::max<std::size_t>(total, 1), 0);
  row_len.assign(columns.size() * static_cast<std::size_t>(rowset_size), SQL_NULL_DATA);
  bind_columns();
  ncols = count;
  return true;
}

void odbcstmt::describe_column(int number) {
  column_info& into = columns[static_cast<std::size_t>(number - 1)];
  byte_buffer name(name_bytes, 0);
  SQLSMALLINT length = 0;
  check(SQLDescribeCol(hstmt, static_cast<SQLUSMALLINT>(number), cfrptr(name), name_offered, &length, &into.sql_type,
                       &into.precision, &into.scale, &into.nullable),
        odbc_fault::describe_column);
  into.name = cell_text(name.data(), name_offered, length);
}

std::size_t odbcstmt::lay_out_columns(column_rule rule) {
  std::size_t total = 0;
  for (column_info& each : columns) {
    const column_binding* binding = find_type(column_bindings, each.sql_type);
    if (binding == nullptr || (rule == column_rule::procedure && !binding->procedure_supported)) {
      last_rc = rc_column_type;
      raise_error(odbc_fault::column_type);
    }
    each.ctype = binding->ctype;
    each.width = width_in_bytes(rule == column_rule::plain ? binding->plain : binding->procedure, each.precision);
    each.offset = total;
    total += each.width * static_cast<std::size_t>(rowset_size);
  }
  return total;
}

void odbcstmt::bind_columns() {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    check(SQLBindCol(hstmt, static_cast<SQLUSMALLINT>(i + 1), columns[i].ctype, row_data.data() + columns[i].offset,
                     static_cast<SQLLEN>(columns[i].width), &row_len[i * static_cast<std::size_t>(rowset_size)]),
          odbc_fault::bind_column);
  }
}

bool odbcstmt::ProcSRS() {
  return trap(last_err, [&] {
    SQLSMALLINT count = 0;
    check(SQLNumResultCols(hstmt, &count), odbc_fault::count_columns);
    in_use = true;
    ncols = 0;
    columns.clear();
    if (count < 1) return;
    rowset_size = std::max(rowset_size, 1);  // a preparation for parameter arrays has none
    // Columns that the preparation may have bound must not point at the buffer that is about to be replaced.
    check(SQLFreeStmt(hstmt, SQL_UNBIND), odbc_fault::bind_column);
    describe_columns(count, column_rule::procedure, false);
  });
}

bool odbcstmt::Execute() {
  return trap(last_err, [&] { Execute_XX(); });
}

void odbcstmt::Execute_XX() {
  const busy_section busy;
  // The block size of parameter arrays outlives their bindings.
  if (handle_block != block_rows) set_block(block_rows);
  if (blocks_moved) bind_blocks(odbc_fault::bind_rows);
  SQLFreeStmt(hstmt, SQL_CLOSE);
  if (!sql_ok(record(SQLExecute(hstmt))) && !execute_as_input()) raise_error(odbc_fault::execute);
}

bool odbcstmt::CEX(std::string_view text) {
  return trap(last_err, [&] { CEX_XX(text); });
}

void odbcstmt::CEX_XX(std::string_view text) {
  const busy_section busy;
  Prep_XX(text);
  Execute_XX();
}

std::int32_t odbcstmt::CEX_RCC(std::string_view text) {
  if (!CEX(text)) {
    if (connection != nullptr) connection->Rollback();
    return -1;
  }
  const std::int64_t count = RowCount();
  connection->Commit();
  return static_cast<std::int32_t>(std::min<std::int64_t>(count, std::numeric_limits<std::int32_t>::max()));
}

bool odbcstmt::Cancel() {
  return trap(last_err, [&] { Cancel_XX(); });
}

void odbcstmt::Cancel_XX() {
  if (!in_use) return;
  check(SQLCancel(hstmt), odbc_fault::cancel);
  record(SQLFreeStmt(hstmt, SQL_UNBIND));
  record(SQLFreeStmt(hstmt, SQL_RESET_PARAMS));
  record(SQLFreeStmt(hstmt, SQL_CLOSE));
  in_use = false;
  reset_descriptions();
  if (!OK()) raise_error(odbc_fault::close_cursor);
}

bool odbcstmt::Cancel_unc() {
  in_use = true;
  return Cancel();
}

bool odbcstmt::SetOption(std::uint16_t option, std::uint32_t setting) {
  return trap(last_err, [&] { SetOption_XX(option, setting); });
}
void odbcstmt::SetOption_XX(std::uint16_t option, std::uint32_t setting) {
  check(SQLSetStmtOption(hstmt, option, setting), odbc_fault::statement_option);
  if (option == SQL_ROWSET_SIZE) handle_rowset = setting;
}

bool odbcstmt::SetScrollOptions(std::uint16_t concurrency, std::int32_t keyset_size, std::uint16_t rowset) {
  return trap(last_err, [&] { SetScrollOptions_XX(concurrency, keyset_size, rowset); });
}
void odbcstmt::SetScrollOptions_XX(std::uint16_t concurrency, std::int32_t keyset_size, std::uint16_t rowset) {
  check(SQLSetScrollOptions(hstmt, concurrency, keyset_size, rowset), odbc_fault::scroll_options);
  handle_rowset = rowset;
}

bool odbcstmt::SetCursorName(std::string_view name) {
  return trap(last_err, [&] { SetCursorName_XX(name); });
}

void odbcstmt::SetCursorName_XX(std::string_view name) {
  sendable(name);
  text_argument argument(name);
  check(SQLSetCursorName(hstmt, argument.data(), argument.length()), odbc_fault::set_cursor_name);
}

value odbcstmt::GetCursorName() {
  value name;
  trap(last_err, [&] { name = GetCursorName_XX(); });
  return name;
}

std::string odbcstmt::GetCursorName_XX() {
  if (Free()) return {};
  byte_buffer name(name_bytes, 0);
  SQLSMALLINT length = 0;
  check(SQLGetCursorName(hstmt, cfrptr(name), name_offered, &length), odbc_fault::cursor_name);
  if (length < 0) raise_error(odbc_fault::cursor_name_length);
  return cell_text(name.data(), name_offered, length);
}

std::int64_t odbcstmt::Row_Count_XX() {
  if (!in_use) return 0;
  SQLLEN count = 0;
  check(SQLRowCount(hstmt, &count), odbc_fault::row_count);
  return count;
}

std::int64_t odbcstmt::RowCount() {
  std::int64_t count = -1;
  trap(last_err, [&] { count = Row_Count_XX(); });
  return count;
}

int odbcstmt::refused_column() const {
  if (last_rc != rc_column_type) return 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].width == 0) return static_cast<int>(i + 1);
  }
  return 0;
}

int odbcstmt::ancols() {
  SQLSMALLINT count = 0;
  return sql_ok(record(SQLNumResultCols(hstmt, &count))) ? count : -1;
}

int odbcstmt::GetColNum(std::string_view name) const {
  const std::string wanted = upper_case(trim_blanks(name));
  for (int number = 1; number <= ncols; ++number) {
    if (upper_case(trim_blanks(ColName(number))) == wanted) return number;
  }
  return 0;
}

diagnostic_record odbcstmt::ErrData() {
  if (Free()) return disconnected_record();
  if (held_diagnostic) {
    diagnostic_record record = *std::move(held_diagnostic);
    held_diagnostic.reset();
    return record;
  }
  return read_diagnostic(ODBCD::henv, connection->Handle(), hstmt);
}
std::int32_t odbcstmt::Errd() { return show_diagnostic(ErrData()); }
std::int32_t odbcstmt::Errnum() { return ErrData().native; }
