// Parameter arrays of odbcstmt: many rows of values for one execution.
#include <fmt/format.h>

#include <array>

#include "base/conversions.h"
#include "base/text.h"
#include "odbc/layer_error.h"
#include "odbc/odbcstmt.h"
#include "odbc/struct_cells.h"

namespace {

constexpr int most_rows_per_block = 1000;
// Beyond it the cells of long texts begin narrow: a driver that describes every marker as a text of 65,536 characters
// would have a block of 500 rows and five markers take 655 MB, of which little is ever used.
constexpr std::size_t roomy_blocks = 16'777'216;
constexpr std::size_t first_text_bytes = 64;

// How drivers of either ODBC version say that they can not do it, or not with this kind of parameter.
constexpr std::array<std::string_view, 4> refusal_states{"S1C00", "S1105", "HYC00", "HY105"};

constexpr std::size_t most_moment_bytes = 32;

std::size_t write_day(std::array<char, most_moment_bytes>& text, date_time moment) {
  const date_fields at = fields_of(moment);
  return fmt::format_to_n(text.data(), text.size(), "{:04}-{:02}-{:02}", at.year, at.month, at.day).size;
}

std::size_t write_moment(std::array<char, most_moment_bytes>& text, date_time moment) {
  const date_fields at = fields_of(moment);
  return fmt::format_to_n(text.data(), text.size(), "{:04}-{:02}-{:02} {:02}:{:02}:{:02}.000000", at.year, at.month,
                          at.day, at.hour, at.minute, at.second)
      .size;
}

template <typename T>
const T& converted(const std::optional<T>& result) {
  if (!result) throw layer_error(type_mismatch);
  return *result;
}

// Bytes that the longest text of a matrix may take in the code page in force.
std::size_t longest_text(const matrix& values) {
  std::size_t longest = 0;
  for (std::size_t row = 0; row < values.second_count(); ++row) {
    for (int first = values.first_lower(); first <= values.first_upper(); ++first) {
      const value& each = values(first, row + static_cast<std::size_t>(values.second_lower()));
      if (each.is_text()) longest = std::max(longest, each.text().size());
    }
  }
  const code_page& page = current_code_page();
  return page.is_utf8() ? longest : longest * page.max_bytes_per_char();
}

}  // namespace

bool odbcstmt::MrPrep(std::string_view text, int rows) {
  return trap(last_err, [&] { MrPrep_XX(text, rows); });
}

void odbcstmt::MrPrep_XX(std::string_view text, int rows) {
  if (rows < 1 || rows > most_rows_per_block) raise_error(odbc_fault::rowset_range);
  const std::string bytes = sendable(text);
  cancel_previous();
  send_text(bytes);
  rowset_size = 0;
  param_rows = rows;
  SQLSMALLINT count = 0;
  check(SQLNumParams(hstmt, &count), odbc_fault::count_parameters);
  if (count < 1) return;
  describe_parameters(count);
  lay_out_blocks(&parameter_layout::rows, static_cast<std::size_t>(rows), first_text_bytes);
  check(SQLFreeStmt(hstmt, SQL_RESET_PARAMS), odbc_fault::bind_rows);
  bind_blocks(odbc_fault::bind_rows);
  layout = cell_layout::rows;
}

void odbcstmt::lay_out_blocks(marker_cell parameter_layout::*which, std::size_t rows, std::size_t text_bytes) {
  if (lay_out_markers(which, rows) > roomy_blocks) {
    for (marker_layout& marker : markers) {
      if (marker.kind == parameter_kind::text) marker.width = std::min(marker.width, text_bytes);
    }
  }
  place_blocks();
}

void odbcstmt::place_blocks() {
  std::size_t total = 0;
  for (marker_layout& marker : markers) {
    marker.offset = total;
    total += marker.width * cell_rows;
  }
  param_data.assign(total + write_back_room);
}

// The stored cells move into a buffer of their own width; the driver learns of it before the next execution.
void odbcstmt::widen_text_cells(std::size_t index, std::size_t wanted) {
  const std::vector<marker_layout> before = markers;
  zeroed_buffer narrow = std::move(param_data);
  markers[index].width =
      std::max(wanted, std::min(2 * markers[index].width, width_in_bytes(by_precision, markers[index].precision)));
  try {
    place_blocks();
  } catch (...) {
    param_data = std::move(narrow);
    markers = before;
    throw;
  }
  blocks_moved = true;
  for (std::size_t i = 0; i < markers.size(); ++i) {
    for (std::size_t row = 0; row < cell_rows; ++row) {
      const SQLLEN length = param_len[i * cell_rows + row];
      if (length == SQL_NULL_DATA) continue;
      const std::size_t width = before[i].width;
      const std::size_t used = before[i].ctype == SQL_C_CHAR
                                   ? std::min(static_cast<std::size_t>(std::max<SQLLEN>(length, 0)) + 1, width)
                                   : width;
      cfmove(narrow.data() + before[i].offset + row * width,
             param_data.data() + markers[i].offset + row * markers[i].width, used);
    }
  }
}

bool odbcstmt::MrBindParm(const value& given, int marker, int row) {
  if (layout != cell_layout::rows || marker < 1 || marker > nparms || row < 0 || row >= param_rows) return false;
  bool placed = false;
  return trap(last_err,
              [&] {
                placed = place_row_value(given, static_cast<std::size_t>(marker - 1), static_cast<std::size_t>(row));
              }) &&
         placed;
}

bool odbcstmt::place_row_value(const value& given, std::size_t index, std::size_t row) {
  const marker_layout& marker = markers[index];
  SQLLEN& length = param_len[index * cell_rows + row];
  if (given.is_null()) {
    length = SQL_NULL_DATA;
    return true;
  }
  unsigned char* cell_start = param_data.data() + marker.offset + row * marker.width;
  std::array<char, most_moment_bytes> moment_text{};
  switch (marker.kind) {
    case parameter_kind::integer: {
      const auto number = int32_of(given);
      if (!number) return false;
      cfputd(cell_start, *number);
      length = 4;
      return true;
    }
    case parameter_kind::real: {
      const auto number = double_of(given);
      if (!number) return false;
      cfputf(cell_start, *number);
      length = 8;
      return true;
    }
    case parameter_kind::text:
      if (given.is_error() || given.is(value::kind::list) || given.is(value::kind::table)) return false;
      return given.is_text() ? place_row_text(given.text(), index, row) : place_row_text(to_text(given), index, row);
    case parameter_kind::date:
    case parameter_kind::timestamp: {
      const auto moment = date_of(given);
      if (!moment) return false;
      const std::size_t written =
          marker.kind == parameter_kind::date ? write_day(moment_text, *moment) : write_moment(moment_text, *moment);
      return place_row_text({moment_text.data(), written}, index, row);
    }
    case parameter_kind::time:
    case parameter_kind::unsupported:
      break;
  }
  return false;
}

bool odbcstmt::place_row_text(std::string_view text, std::size_t index, std::size_t row) {
  const marker_layout& marker = markers[index];
  if (text.size() > marker.max_chars && count_characters(text) > marker.max_chars) return false;
  std::optional<std::string> in_code_page;
  std::string_view bytes = text;
  if (const code_page& page = current_code_page(); !page.is_utf8()) {
    in_code_page = page.from_utf8(text);
    if (!in_code_page) return false;
    bytes = *in_code_page;
  }
  if (bytes.size() >= marker.width) {
    if (bytes.size() >= width_in_bytes(by_precision, marker.precision)) return false;
    widen_text_cells(index, bytes.size() + 1);
  }
  unsigned char* cell_start = param_data.data() + marker.offset + row * marker.width;
  cfmove(bytes.data(), cell_start, bytes.size());
  cell_start[bytes.size()] = 0;
  param_len[index * cell_rows + row] = static_cast<SQLLEN>(bytes.size());
  return true;
}

bool odbcstmt::MrExecute(int rows) {
  return trap(last_err, [&] {
    if (rows < 1 || rows > param_rows) raise_error(odbc_fault::rowset_range);
    set_block(static_cast<SQLULEN>(rows));
    block_rows = static_cast<SQLULEN>(rows);
    param_row = 0;
    Execute_XX();
  });
}

void odbcstmt::set_block(SQLULEN rows) {
  check(SQLParamOptions(hstmt, rows, &param_row), odbc_fault::parameter_options);
  handle_block = rows;
}

void odbcstmt::forget_blocks() {
  block_rows = 1;
  blocks_moved = false;
  block_io = SQL_PARAM_INPUT_OUTPUT;
}

void odbcstmt::bind_blocks(odbc_fault fault) {
  const auto bind_all = [&] {
    for (std::size_t i = 0; i < markers.size(); ++i) bind_marker(i, markers[i].width, fault);
  };
  try {
    bind_all();
  } catch (const layer_error&) {
    if (!refused_in_out()) throw;
    block_io = SQL_PARAM_INPUT;
    bind_all();
  }
  blocks_moved = false;
}

bool odbcstmt::refused_in_out() {
  if (block_io != SQL_PARAM_INPUT_OUTPUT) return false;
  held_diagnostic = ErrData();
  return std::find(refusal_states.begin(), refusal_states.end(), held_diagnostic->state) != refusal_states.end();
}

// An execution that failed because of input/output arrays, again with the markers as input alone; true when it
// succeeds.
bool odbcstmt::execute_as_input() {
  const bool arrays = layout == cell_layout::rows || layout == cell_layout::matrix;
  // A driver that is past its first row takes them.
  if (!arrays || param_row > 1 || !refused_in_out()) return false;
  block_io = SQL_PARAM_INPUT;
  bind_blocks(odbc_fault::bind_rows);
  param_row = 0;
  return sql_ok(record(SQLExecute(hstmt)));
}

bool odbcstmt::BindVM(const matrix& values) {
  return trap(last_err, [&] { BindVM_XX(values); });
}

void odbcstmt::BindVM_XX(const matrix& values) {
  if (Free()) raise_error(odbc_fault::matrix_without_handle);
  if (nparms < 1) raise_error(odbc_fault::matrix_without_markers);
  if (values.first_upper() - values.first_lower() + 1 != nparms) raise_error(odbc_fault::matrix_markers);
  if (param_rows > 1) raise_error(odbc_fault::bind_on_rows);
  record(SQLFreeStmt(hstmt, SQL_RESET_PARAMS));
  layout = cell_layout::by_value;
  forget_blocks();
  const std::size_t rows = values.second_count();
  if (rows < 1) raise_error(odbc_fault::parameter_block);
  set_block(rows);
  for (const marker_layout& marker : markers) {
    if (marker.kind == parameter_kind::unsupported) raise_error(odbc_fault::matrix_unsupported);
  }
  lay_out_blocks(&parameter_layout::single, rows, longest_text(values) + 1);
  for (std::size_t row = 0; row < rows; ++row) {
    for (int marker = 1; marker <= nparms; ++marker) {
      const marker_layout& at = parameter(marker);
      PutBD(static_cast<int>(row) + 1, marker,
            values(values.first_lower() + marker - 1, row + static_cast<std::size_t>(values.second_lower())),
            at.offset + row * at.width);
    }
  }
  bind_blocks(odbc_fault::bind_matrix);
  layout = cell_layout::matrix;
  block_rows = rows;
}

void odbcstmt::PutBD(int row, int marker, const value& given, std::size_t offset) {
  if (given.is_error()) raise_error(odbc_fault::put_error_value);
  const bool known = marker >= 1 && marker <= nparms && row >= 1 && static_cast<std::size_t>(row) <= cell_rows;
  const std::size_t needed = known ? parameter(marker).width : 0;
  const parameter_kind kind = known ? parameter(marker).kind : parameter_kind::unsupported;
  const bool in_place = offset <= param_data.size() && param_data.size() - offset >= needed + write_back_room;
  if (kind == parameter_kind::unsupported || layout == cell_layout::rows || !in_place)
    raise_error(odbc_fault::put_unsupported);
  unsigned char* cell_start = param_data.data() + offset;
  SQLLEN& length = param_len[static_cast<std::size_t>(marker - 1) * cell_rows + static_cast<std::size_t>(row - 1)];
  if (given.is_null()) {
    *cell_start = 0;
    length = SQL_NULL_DATA;
    return;
  }
  if (kind != parameter_kind::text) {
    put_fixed(given, kind, cell_start);
    length = static_cast<SQLLEN>(needed);
    return;
  }
  if (!given.is_text() || count_characters(given.text()) > parameter(marker).max_chars)
    raise_error(odbc_fault::put_no_text);
  const auto bytes = current_code_page().from_utf8(given.text());
  if (!bytes) {
    last_rc = rc_not_sendable;
    raise_error(odbc_fault::text_not_sendable);
  }
  if (bytes->size() >= needed) raise_error(odbc_fault::put_no_text);
  cfmove(bytes->data(), cell_start, bytes->size());
  cell_start[bytes->size()] = 0;
  length = static_cast<SQLLEN>(bytes->size());
}

void odbcstmt::put_fixed(const value& given, parameter_kind kind, unsigned char* cell_start) {
  switch (kind) {
    case parameter_kind::integer:
      return cfputd(cell_start, converted(int32_of(given)));
    case parameter_kind::real:
      return cfputf(cell_start, converted(double_of(given)));
    case parameter_kind::date:
      return put_date_cell(cell_start, converted(date_of(given)));
    case parameter_kind::time:
      return put_time_cell(cell_start, converted(date_of(given)));
    default:
      return put_timestamp_cell(cell_start, converted(date_of(given)));
  }
}
