// The fetching half of odbcstmt: rows into the bound buffer, and cells out of it.
#include "base/matrix.h"
#include "base/number_format.h"
#include "base/text.h"
#include "base/user_interface.h"
#include "odbc/layer_error.h"
#include "odbc/odbcstmt.h"
#include "odbc/struct_cells.h"

bool odbcstmt::Fetch() {
  return trap(last_err, [&] { Fetch_XX(); });
}

void odbcstmt::Fetch_XX() {
  const busy_section busy;
  // With a larger rowset on the handle some drivers fetch it whole, and the driver manager, standing in for a driver
  // without SQLFetch, gives it a status array of one row.
  set_rowset_option(1);
  check(SQLFetch(hstmt), odbc_fault::fetch);
}

bool odbcstmt::ExtFetchNext(std::int64_t& rows) {
  rows = 0;
  if (!in_use || rowset_size < 2) return false;
  if (!trap(last_err, [&] { set_rowset_option(rowset_size); })) return false;
  SQLULEN fetched = 0;
  record(SQLExtendedFetch(hstmt, SQL_FETCH_NEXT, 1, &fetched, row_status.data()));
  if (!OK()) return false;
  rows = static_cast<std::int64_t>(std::min<SQLULEN>(fetched, static_cast<SQLULEN>(rowset_size)));
  return true;
}

int odbcstmt::RowStatus(std::int64_t row) const {
  if (rowset_size < 2 || row < 0 || row >= rowset_size) return 0;
  return row_status[static_cast<std::size_t>(row)];
}

value odbcstmt::cell(std::size_t column_index, std::size_t row) const {
  const column_info& at = columns[column_index];
  const SQLLEN length = length_word(column_index, row);
  if (length == SQL_NULL_DATA) return null_t{};
  const unsigned char* bytes = row_data.data() + at.offset + row * at.width;
  switch (at.ctype) {
    case SQL_C_CHAR:
      return std::string(trim_blanks(cell_text(bytes, at.width, length)));
    case SQL_C_LONG:
      return cfgetd(bytes);
    case SQL_C_DOUBLE:
      return cfgetf(bytes);
    default:
      return moment_cell(at.ctype, bytes, impossible_date);
  }
}

value odbcstmt::Getc(int column_number, std::int64_t row) const {
  if (row < 0 || row >= rowset_size || column_number < 1 || column_number > ncols) return {};
  return cell(static_cast<std::size_t>(column_number - 1), static_cast<std::size_t>(row));
}

bool odbcstmt::append_text(int column_number, std::int64_t row, std::string& out) const {
  if (row < 0 || row >= rowset_size || column_number < 1 || column_number > ncols) return true;
  const column_info& at = described(column_number);
  const auto index = static_cast<std::size_t>(row);
  const SQLLEN length = length_word(static_cast<std::size_t>(column_number - 1), index);
  if (length == SQL_NULL_DATA) return false;
  const unsigned char* bytes = row_data.data() + at.offset + index * at.width;
  switch (at.ctype) {
    case SQL_C_CHAR:
      append_trimmed_cell_text(bytes, at.width, length, out);
      break;
    case SQL_C_LONG:
      append_integer(cfgetd(bytes), out);
      break;
    case SQL_C_DOUBLE:
      append_number_text(cfgetf(bytes), out);
      break;
    default:
      append_moment_cell(at.ctype, bytes, impossible_date, out);
  }
  return true;
}

bool odbcstmt::Cut(int column_number, std::int64_t row) const {
  if (row < 0 || row >= rowset_size || column_number < 1 || column_number > ncols) return false;
  const column_info& at = described(column_number);
  if (at.ctype != SQL_C_CHAR) return false;
  const SQLLEN length = length_word(static_cast<std::size_t>(column_number - 1), static_cast<std::size_t>(row));
  return length == SQL_NO_TOTAL || (length > 0 && static_cast<std::size_t>(length) >= at.width);
}

value odbcstmt::GetRow(std::int64_t row) const {
  if (row < 0 || row >= rowset_size) return {};
  array cells{1, {}};
  // Columns described by a preparation that then failed have no cells.
  for (int number = 1; number <= ncols; ++number) cells.items.push_back(Getc(number, row));
  return cells;
}

value odbcstmt::GetRows(std::int64_t first, std::int64_t last) const {
  if (first < 0 || last >= rowset_size || first > last) return {};
  matrix rows(ncols, {1, static_cast<int>(first)});
  rows.grow(static_cast<std::size_t>(last - first + 1));
  for (auto row = static_cast<std::size_t>(first); row <= static_cast<std::size_t>(last); ++row) {
    for (int number = 1; number <= ncols; ++number)
      rows.at(number, row) = cell(static_cast<std::size_t>(number - 1), row);
  }
  return rows;
}

value odbcstmt::FetchAll(std::optional<std::int64_t> max) {
  const std::int64_t most = max.value_or(999'999'999);
  if (most < 1) return error_value{1};
  matrix all(ncols);
  std::int64_t total = 0;
  while (total < most) {
    std::int64_t got = 1;
    if (!(rowset_size < 2 ? Fetch() : ExtFetchNext(got))) break;
    const std::int64_t take = std::min(got, most - total);
    all.grow(static_cast<std::size_t>(take));
    for (std::int64_t k = 0; k < take; ++k) {
      for (int number = 1; number <= ncols; ++number) {
        all.at(number, static_cast<std::size_t>(total + k)) =
            cell(static_cast<std::size_t>(number - 1), static_cast<std::size_t>(k));
      }
    }
    total += take;
  }
  if (total == 0) return null_t{};
  return all;
}
