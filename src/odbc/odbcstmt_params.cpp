// The parameter half of odbcstmt: markers described, given values, and read back.
#include "base/clock.h"
#include "base/conversions.h"
#include "base/text.h"
#include "odbc/layer_error.h"
#include "odbc/odbcstmt.h"
#include "odbc/struct_cells.h"

namespace {

// C types of ODBC 2 whose codes are SQL type codes as well.
bool is_ctype_too(SQLSMALLINT sql_type) {
  switch (sql_type) {
    case SQL_CHAR:
    case SQL_INTEGER:
    case SQL_SMALLINT:
    case SQL_REAL:
    case SQL_DOUBLE:
    case SQL_DATE:
    case SQL_TIME:
    case SQL_TIMESTAMP:
    case SQL_BINARY:
    case SQL_TINYINT:
    case SQL_BIT:
      return true;
    default:
      return false;
  }
}

// Bytes of a C type's structure; 1 for text.
std::size_t ctype_bytes(SQLSMALLINT ctype) {
  switch (ctype) {
    case SQL_C_LONG:
      return 4;
    case SQL_C_DOUBLE:
      return 8;
    case SQL_C_DATE:
    case SQL_C_TIME:
      return 6;
    case SQL_C_TIMESTAMP:
      return 16;
    default:
      return 1;
  }
}

}  // namespace

void odbcstmt::describe_parameters(int count) {
  markers.assign(static_cast<std::size_t>(count), {});
  for (std::size_t i = 0; i < markers.size(); ++i) {
    marker_layout& marker = markers[i];
    check(SQLDescribeParam(hstmt, static_cast<SQLUSMALLINT>(i + 1), &marker.sql_type, &marker.precision, &marker.scale,
                           &marker.nullable),
          odbc_fault::describe_parameter);
  }
  lay_out_markers(&parameter_layout::single, 1);
  nparms = count;
}

std::size_t odbcstmt::lay_out_markers(marker_cell parameter_layout::*which, std::size_t rows) {
  std::size_t total = 0;
  for (marker_layout& marker : markers) {
    marker.offset = total;
    const parameter_layout* described = find_type(parameter_layouts, marker.sql_type);
    if (described == nullptr) continue;
    const marker_cell& cell = described->*which;
    marker.kind = described->kind;
    marker.ctype = cell.ctype;
    marker.width = width_in_bytes(cell.width, marker.precision);
    marker.max_chars = marker.width;
    if (marker.kind == parameter_kind::text) {
      marker.max_chars = std::min<std::size_t>(marker.precision, widest_text_characters);
    } else if (marker.ctype == SQL_C_CHAR) {
      marker.max_chars = marker.width - 1;
    }
    total += marker.width * rows;
  }
  cell_rows = rows;
  param_len.assign(markers.size() * rows, SQL_NULL_DATA);
  return total;
}

void odbcstmt::bind_marker(std::size_t index, std::size_t buffer_length, odbc_fault fault) {
  const marker_layout& marker = markers[index];
  check(SQLBindParameter(hstmt, static_cast<SQLUSMALLINT>(index + 1), block_io, marker.ctype, marker.sql_type,
                         marker.precision, marker.scale, param_data.data() + marker.offset,
                         static_cast<SQLLEN>(buffer_length), &param_len[index * cell_rows]),
        fault);
}

void odbcstmt::bind_procedure_parameters() {
  const marker_layout& last = markers.back();
  param_data.assign(last.offset + last.width + write_back_room);
  for (std::size_t i = 0; i < markers.size(); ++i)
    bind_marker(i, markers[i].width, odbc_fault::bind_procedure_parameter);
  layout = cell_layout::procedure;
}

bool odbcstmt::BindV(std::span<const value> values) {
  return trap(last_err, [&] { BindV_XX(values); });
}

void odbcstmt::BindV_XX(std::span<const value> values) {
  if (values.empty()) {
    if (nparms != 0) raise_error(odbc_fault::no_values);
    return;
  }
  if (Free()) raise_error(odbc_fault::bind_without_handle);
  if (values.size() != static_cast<std::size_t>(nparms)) raise_error(odbc_fault::value_count);
  if (param_rows > 1) raise_error(odbc_fault::bind_on_rows);
  record(SQLFreeStmt(hstmt, SQL_RESET_PARAMS));
  layout = cell_layout::by_value;
  cell_rows = 1;
  forget_blocks();
  param_len.assign(markers.size(), SQL_NULL_DATA);

  param_data.assign(lay_out_values(values) + write_back_room);
  for (std::size_t i = 0; i < values.size(); ++i) place_value(values[i], i);
  for (std::size_t i = 0; i < values.size(); ++i) {
    // A text's buffer length is its length alone; a Null offers the one byte that it has.
    const std::size_t offered = values[i].is_text() ? static_cast<std::size_t>(param_len[i]) : markers[i].width;
    bind_marker(i, offered, odbc_fault::bind_parameter);
  }
}

std::size_t odbcstmt::lay_out_values(std::span<const value> values) {
  std::size_t total = 0;
  try {
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::size_t taken = lay_out_value(values[i], i);
      markers[i].offset = total;
      markers[i].width = taken;
      total += taken;
    }
  } catch (...) {
    // The markers before the refused value have no cells of their new layout.
    param_len.assign(markers.size(), SQL_NULL_DATA);
    throw;
  }
  return total;
}

std::size_t odbcstmt::lay_out_value(const value& given, std::size_t index) {
  marker_layout& marker = markers[index];
  const auto fixed = [&](SQLSMALLINT ctype, std::size_t bytes) {
    marker.ctype = ctype;
    param_len[index] = static_cast<SQLLEN>(bytes);
    return bytes;
  };
  switch (given.type()) {
    case value::kind::null:
      // A marker without a value is bound by its own type's code; where that is no C type the driver manager would
      // refuse it.
      marker.ctype = is_ctype_too(marker.sql_type) ? marker.sql_type : static_cast<SQLSMALLINT>(SQL_C_CHAR);
      param_len[index] = SQL_NULL_DATA;
      return 1;
    case value::kind::int16:
    case value::kind::int32:
      return fixed(SQL_C_LONG, 4);
    case value::kind::single:
    case value::kind::real:
    case value::kind::money:
      return fixed(SQL_C_DOUBLE, 8);
    case value::kind::moment:
      return fixed(SQL_C_TIMESTAMP, 16);
    case value::kind::text: {
      const auto bytes = current_code_page().from_utf8(given.text());
      if (!bytes) {
        last_rc = rc_not_sendable;
        raise_error(odbc_fault::text_not_sendable);
      }
      return fixed(SQL_C_CHAR, bytes->size()) + 1;
    }
    default:
      raise_error(odbc_fault::value_type);
  }
}

void odbcstmt::place_value(const value& given, std::size_t index) {
  const marker_layout& marker = markers[index];
  unsigned char* cell_start = param_data.data() + marker.offset;
  if (given.is_null()) {
    *cell_start = 0;
    return;
  }
  switch (marker.ctype) {
    case SQL_C_CHAR: {
      const std::string bytes = current_code_page().from_utf8(given.text()).value();
      cfmove(bytes.data(), cell_start, bytes.size());
      cell_start[bytes.size()] = 0;
      break;
    }
    case SQL_C_LONG:
      cfputd(cell_start, int32_of(given).value());
      break;
    case SQL_C_DOUBLE:
      cfputf(cell_start, double_of(given).value());
      break;
    case SQL_C_TIMESTAMP:
      put_timestamp_cell(cell_start, *given.get<date_time>());
      break;
    default:
      raise_error(odbc_fault::unexpected_ctype);
  }
}

bool odbcstmt::BindA(const array& values) {
  if (values.items.empty()) return nparms == 0;
  return BindV(values.items);
}

void odbcstmt::BindA_XX(const array& values) {
  if (values.items.empty() && nparms != 0) raise_error(odbc_fault::no_array_values);
  BindV_XX(values.items);
}

bool odbcstmt::BindProcParm(const value& given, int marker) {
  if (marker < 1 || marker > nparms || layout != cell_layout::procedure) return false;
  const auto index = static_cast<std::size_t>(marker - 1);
  if (given.is_null()) {
    param_len[index] = SQL_NULL_DATA;
    return true;
  }
  bool placed = false;
  return trap(last_err, [&] { placed = place_procedure_value(given, index); }) && placed;
}

bool odbcstmt::place_procedure_value(const value& given, std::size_t index) {
  const marker_layout& marker = markers[index];
  unsigned char* cell_start = param_data.data() + marker.offset;
  switch (marker.kind) {
    case parameter_kind::integer: {
      const auto number = int32_of(given);
      if (!number) return false;
      cfputd(cell_start, *number);
      break;
    }
    case parameter_kind::real: {
      const auto number = double_of(given);
      if (!number) return false;
      cfputf(cell_start, *number);
      break;
    }
    case parameter_kind::text: {
      if (given.is_error()) return false;
      const std::string text = to_text(given);
      if (count_characters(text) > marker.max_chars) return false;
      const auto bytes = current_code_page().from_utf8(text);
      if (!bytes || bytes->size() >= marker.width) return false;
      cfmsetb(cell_start, 0, marker.width);
      cfmove(bytes->data(), cell_start, bytes->size());
      param_len[index] = static_cast<SQLLEN>(bytes->size());
      return true;
    }
    case parameter_kind::date:
    case parameter_kind::timestamp: {
      const auto moment = date_of(given);
      if (!moment) return false;
      if (marker.kind == parameter_kind::date) {
        put_date_cell(cell_start, *moment);
      } else {
        put_timestamp_cell(cell_start, *moment);
      }
      break;
    }
    case parameter_kind::time:
    case parameter_kind::unsupported:
      return false;
  }
  param_len[index] = static_cast<SQLLEN>(marker.width);
  return true;
}

value odbcstmt::GetParm(int marker) const {
  if (marker < 1 || marker > nparms) return no_such_marker;
  const auto index = static_cast<std::size_t>(marker - 1);
  const marker_layout& at = markers[index];
  const SQLLEN length = param_len[index * cell_rows];
  if (length == SQL_NULL_DATA) return null_t{};
  if (at.kind == parameter_kind::time || at.kind == parameter_kind::unsupported) return unsupported_marker;
  const unsigned char* bytes = param_data.data() + at.offset;
  if (at.width < ctype_bytes(at.ctype)) return unsupported_marker;
  switch (at.ctype) {  // the cell's own, which after BindV is the value's and not the described one
    case SQL_C_LONG:
      return cfgetd(bytes);
    case SQL_C_DOUBLE:
      return cfgetf(bytes);
    case SQL_C_CHAR:
      return std::string(trim_blanks(cell_text(bytes, at.width, length)));
    case SQL_C_DATE:
    case SQL_C_TIMESTAMP:
      return moment_cell(at.ctype, bytes, impossible_date);
    default:
      return unsupported_marker;
  }
}

value odbcstmt::ProcParmDefault(int marker) const {
  if (marker < 1 || marker > nparms) return no_such_marker;
  const marker_layout& at = parameter(marker);
  switch (at.kind) {
    case parameter_kind::integer:
    case parameter_kind::real:
      return std::int32_t{0};
    case parameter_kind::text:
      return std::string(at.max_chars, ' ');
    case parameter_kind::date:
    case parameter_kind::timestamp:
      return current_clock().now();
    case parameter_kind::time:
    case parameter_kind::unsupported:
      break;
  }
  return unsupported_marker;
}
