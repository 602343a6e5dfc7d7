#include "convert.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace scripted {

namespace {

// Length and display size by the ODBC 2 rules.
constexpr std::array<type_traits_row, 17> known_types = {{
    {SQL_CHAR, "CHAR", SQL_C_CHAR, false, 0, 0, 0},
    {SQL_VARCHAR, "VARCHAR", SQL_C_CHAR, false, 0, 0, 0},
    {SQL_LONGVARCHAR, "LONG VARCHAR", SQL_C_CHAR, false, 0, 0, 0},
    {SQL_DECIMAL, "DECIMAL", SQL_C_CHAR, true, 0, 0, 2},
    {SQL_NUMERIC, "NUMERIC", SQL_C_CHAR, true, 0, 0, 2},
    {SQL_SMALLINT, "SMALLINT", SQL_C_SHORT, true, 2, 6, 0},
    {SQL_INTEGER, "INTEGER", SQL_C_LONG, true, 4, 11, 0},
    {SQL_BIGINT, "BIGINT", SQL_C_CHAR, true, 20, 20, 0},
    {SQL_REAL, "REAL", SQL_C_FLOAT, true, 4, 13, 0},
    {SQL_FLOAT, "FLOAT", SQL_C_DOUBLE, true, 8, 22, 0},
    {SQL_DOUBLE, "DOUBLE", SQL_C_DOUBLE, true, 8, 22, 0},
    {SQL_DATE, "DATE", SQL_C_DATE, false, 6, 10, 0},
    {SQL_TIME, "TIME", SQL_C_TIME, false, 6, 8, 0},
    {SQL_TIMESTAMP, "TIMESTAMP", SQL_C_TIMESTAMP, false, 16, 0, 0},
    {SQL_BINARY, "CHAR FOR BIT DATA", SQL_C_BINARY, false, 0, 0, 0},
    {SQL_VARBINARY, "VARCHAR FOR BIT DATA", SQL_C_BINARY, false, 0, 0, 0},
    {SQL_LONGVARBINARY, "BLOB", SQL_C_BINARY, false, 0, 0, 0},
}};

struct c_type_row {
  SQLSMALLINT c_type;
  std::size_t size;  // 0: as long as the buffer
};
constexpr std::array<c_type_row, 14> known_c_types = {{
    {SQL_C_CHAR, 0},
    {SQL_C_BINARY, 0},
    {SQL_C_DEFAULT, 0},
    {SQL_C_BIT, 1},
    {SQL_C_TINYINT, 1},
    {SQL_C_LONG, sizeof(SQLINTEGER)},
    {SQL_C_SLONG, sizeof(SQLINTEGER)},
    {SQL_C_SHORT, sizeof(SQLSMALLINT)},
    {SQL_C_SSHORT, sizeof(SQLSMALLINT)},
    {SQL_C_FLOAT, sizeof(float)},
    {SQL_C_DOUBLE, sizeof(double)},
    {SQL_C_DATE, sizeof(DATE_STRUCT)},
    {SQL_C_TIME, sizeof(TIME_STRUCT)},
    {SQL_C_TIMESTAMP, sizeof(TIMESTAMP_STRUCT)},
}};

const c_type_row* find_c_type(SQLSMALLINT c_type) {
  const auto* found = std::find_if(known_c_types.begin(), known_c_types.end(),
                                   [&](const c_type_row& row) { return row.c_type == c_type; });
  return found == known_c_types.end() ? nullptr : found;
}

[[noreturn]] void no_such_conversion() { throw call_stopped("07006", "the cell has no conversion to the bound type"); }

std::string fraction_text(SQLUINTEGER billionths) {
  return billionths == 0 ? "" : fmt::format(".{:06}", billionths / 1000);
}

std::string text_of(const DATE_STRUCT& d) { return fmt::format("{:04}-{:02}-{:02}", d.year, d.month, d.day); }
std::string text_of(const TIME_STRUCT& t) { return fmt::format("{:02}:{:02}:{:02}", t.hour, t.minute, t.second); }
std::string text_of(const TIMESTAMP_STRUCT& s) {
  return text_of(DATE_STRUCT{s.year, s.month, s.day}) + ' ' + text_of(TIME_STRUCT{s.hour, s.minute, s.second}) +
         fraction_text(s.fraction);
}

// The cell as characters; scratch carries those that are not text already.
std::string_view characters(const cell& from, std::string& scratch) {
  if (const auto* text = std::get_if<std::string>(&from.value)) return *text;
  std::visit(
      [&](const auto& value) {
        using type = std::decay_t<decltype(value)>;
        if constexpr (std::is_arithmetic_v<type>) {
          std::array<char, 32> digits{};
          scratch.assign(digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr);
        } else if constexpr (!std::is_same_v<type, std::monostate> && !std::is_same_v<type, std::string>) {
          scratch = text_of(value);
        }
      },
      from.value);
  return scratch;
}

// The cell's own bytes.
std::string_view raw_bytes(const cell& from) {
  return std::visit(
      [](const auto& value) -> std::string_view {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::string>)
          return value;
        else
          return {reinterpret_cast<const char*>(&value), sizeof value};
      },
      from.value);
}

template <class Number>
Number narrowed(auto wide) {
  using limits = std::numeric_limits<Number>;
  if constexpr (std::is_integral_v<Number> && std::is_floating_point_v<decltype(wide)>) {
    const double whole = std::trunc(wide);
    if (!(whole >= static_cast<double>(limits::min()) && whole <= static_cast<double>(limits::max())))
      throw call_stopped("22003", "numeric value out of range");
    return static_cast<Number>(whole);
  } else {
    if constexpr (std::is_integral_v<Number>) {
      if (wide < limits::min() || wide > limits::max()) throw call_stopped("22003", "numeric value out of range");
    }
    return static_cast<Number>(wide);
  }
}

double number_in(const std::string& text) {
  const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
  const std::size_t end = text.find_last_not_of(' ') + 1;
  double number = 0;
  const auto [stop, error] = std::from_chars(text.data() + start, text.data() + std::max(start, end), number);
  if (error != std::errc{} || stop != text.data() + end)
    throw call_stopped("22005", fmt::format("not a number: {}", text));
  return number;
}

template <class Number>
Number number_of(const cell& from) {
  return std::visit(
      [](const auto& value) -> Number {
        using type = std::decay_t<decltype(value)>;
        if constexpr (std::is_arithmetic_v<type>)
          return narrowed<Number>(value);
        else if constexpr (std::is_same_v<type, std::string>)
          return narrowed<Number>(number_in(value));
        else
          no_such_conversion();
      },
      from.value);
}

// A time alone leaves the date at zero.
TIMESTAMP_STRUCT stamp_of(const cell& from) {
  if (const auto* stamp = std::get_if<TIMESTAMP_STRUCT>(&from.value)) return *stamp;
  if (const auto* date = std::get_if<DATE_STRUCT>(&from.value)) return {date->year, date->month, date->day, 0, 0, 0, 0};
  if (const auto* time = std::get_if<TIME_STRUCT>(&from.value))
    return {0, 0, 0, time->hour, time->minute, time->second, 0};
  no_such_conversion();
}

template <class Value>
SQLLEN write_fixed(void* buffer, Value value) {
  std::memcpy(buffer, &value, sizeof value);
  return sizeof value;
}

SQLLEN store_fixed(const cell& from, const binding& to) {
  switch (to.c_type) {
    case SQL_C_LONG:
    case SQL_C_SLONG:
      return write_fixed(to.buffer, number_of<SQLINTEGER>(from));
    case SQL_C_SHORT:
    case SQL_C_SSHORT:
      return write_fixed(to.buffer, number_of<SQLSMALLINT>(from));
    case SQL_C_FLOAT:
      return write_fixed(to.buffer, number_of<float>(from));
    case SQL_C_DOUBLE:
      return write_fixed(to.buffer, number_of<double>(from));
    default:
      break;
  }
  const TIMESTAMP_STRUCT stamp = stamp_of(from);
  switch (to.c_type) {
    case SQL_C_DATE:
      return write_fixed(to.buffer, DATE_STRUCT{stamp.year, stamp.month, stamp.day});
    case SQL_C_TIME:
      return write_fixed(to.buffer, TIME_STRUCT{stamp.hour, stamp.minute, stamp.second});
    case SQL_C_TIMESTAMP:
      return write_fixed(to.buffer, stamp);
    default:
      no_such_conversion();
  }
}

// Returns whether the bytes were cut; ends characters with a zero byte.
bool store_bytes(std::string_view bytes, const binding& to, bool terminated) {
  const auto room = static_cast<std::size_t>(std::max<SQLLEN>(to.buffer_length, 0));
  const std::size_t ending = terminated ? 1 : 0;
  if (room >= ending && room > 0) {
    const std::size_t copied = std::min(bytes.size(), room - ending);
    std::memcpy(to.buffer, bytes.data(), copied);
    if (terminated) static_cast<char*>(to.buffer)[copied] = '\0';
  }
  return bytes.size() + ending > room;
}

}  // namespace

void require_sound(const binding& bound) {
  const c_type_row* row = find_c_type(bound.c_type);
  if (!row) throw call_stopped("S1003", fmt::format("C type {}", bound.c_type));
  const SQLLEN size = bound.buffer_length;
  if (size < 0 || (size > 0 && static_cast<std::size_t>(size) < row->size))
    throw call_stopped("S1090", fmt::format("buffer length {}", size));
}

type_traits_row traits_of(SQLSMALLINT sql_type) {
  const auto* found = std::find_if(known_types.begin(), known_types.end(),
                                   [&](const type_traits_row& row) { return row.sql_type == sql_type; });
  return found == known_types.end() ? type_traits_row{} : *found;
}

SQLSMALLINT actual_c_type(SQLSMALLINT c_type, SQLSMALLINT sql_type) {
  return c_type == SQL_C_DEFAULT ? traits_of(sql_type).c_type : c_type;
}

std::size_t fixed_size(SQLSMALLINT c_type) {
  const c_type_row* row = find_c_type(c_type);
  return row ? row->size : 0;
}

binding at_row(const binding& bound, SQLSMALLINT c_type, SQLULEN row) {
  const std::size_t fixed = fixed_size(c_type);
  const std::size_t stride = fixed > 0 ? fixed : static_cast<std::size_t>(bound.buffer_length);
  return {c_type, bound.buffer ? static_cast<char*>(bound.buffer) + row * stride : nullptr, bound.buffer_length,
          bound.length ? bound.length + row : nullptr};
}

bool store(const cell& from, const binding& to) {
  SQLLEN length = SQL_NULL_DATA;
  bool cut = false;
  if (std::holds_alternative<std::monostate>(from.value)) {
    if (!to.length) throw call_stopped("22002", "Null without a length word to tell it");
  } else if (!to.buffer) {
    throw call_stopped("S1009", "no buffer for the value");
  } else if (to.c_type == SQL_C_CHAR || to.c_type == SQL_C_BINARY) {
    std::string scratch;
    const bool text = to.c_type == SQL_C_CHAR;
    const std::string_view bytes = text ? characters(from, scratch) : raw_bytes(from);
    length = static_cast<SQLLEN>(bytes.size());
    cut = store_bytes(bytes, to, text);
  } else {
    // SQL_C_DEFAULT tells its size only here.
    if (to.buffer_length > 0 && static_cast<std::size_t>(to.buffer_length) < fixed_size(to.c_type))
      throw call_stopped("S1090", fmt::format("buffer length {}", to.buffer_length));
    length = store_fixed(from, to);
  }
  put(to.length, from.reported_length.value_or(length));
  return cut;
}

}  // namespace scripted
