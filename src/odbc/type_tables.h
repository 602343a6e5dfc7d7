#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "odbc/odbc_headers.h"

// SQL type code -> display name; shown to the user and written into generated text, hence the odd spellings.
struct type_name {
  int sql_type;
  std::string_view name;
};
inline constexpr std::array<type_name, 19> type_names{{
    {SQL_CHAR, "Char"},
    {SQL_NUMERIC, "Numeric"},
    {SQL_DECIMAL, "Decimal"},
    {SQL_INTEGER, "Integer"},
    {SQL_SMALLINT, "Smallint"},
    {SQL_FLOAT, "Float"},
    {SQL_REAL, "Real"},
    {SQL_DOUBLE, "Double"},
    {SQL_DATE, "Date"},
    {SQL_TIME, "Time"},
    {SQL_TIMESTAMP, "Timestamp"},
    {SQL_VARCHAR, "Varchar"},
    {SQL_LONGVARCHAR, "Long Varchar"},
    {SQL_BINARY, "Binary"},
    {SQL_VARBINARY, "Var Binary"},
    {SQL_LONGVARBINARY, "LongVarBinary"},
    {SQL_BIGINT, "BigInt"},
    {SQL_TINYINT, "TinyInt"},
    {SQL_BIT, "Bit"},
}};

// How wide a cell is: a fixed number of bytes, or room for as many characters as the precision says and a zero byte.
struct cell_width {
  std::size_t fixed = 0;
  bool by_precision = false;
};
inline constexpr cell_width by_precision{0, true};

// Result columns of these two types are bound one way by a plain preparation and another by a procedure's.
enum class column_rule { plain, procedure };

inline constexpr std::size_t long_text_bytes = 32001;  // at most 32,000 bytes of a long value are returned

// SQL type code -> how a result column is bound. A type without a row (or without a C type under the procedure rule) is
// not supported.
struct column_binding {
  int sql_type;
  SQLSMALLINT ctype;
  cell_width plain;
  cell_width procedure;
  bool procedure_supported = true;
};
inline constexpr std::array<column_binding, 15> column_bindings{{
    {SQL_BIGINT, SQL_C_LONG, {4}, {4}},
    {SQL_INTEGER, SQL_C_LONG, {4}, {4}},
    {SQL_SMALLINT, SQL_C_LONG, {4}, {4}},
    {SQL_CHAR, SQL_C_CHAR, by_precision, by_precision},
    {SQL_VARCHAR, SQL_C_CHAR, by_precision, by_precision},
    {SQL_LONGVARCHAR, SQL_C_CHAR, {long_text_bytes}, by_precision},
    {SQL_LONGVARBINARY, SQL_C_CHAR, {long_text_bytes}, {}, false},
    {SQL_NUMERIC, SQL_C_DOUBLE, {8}, {8}},
    {SQL_DECIMAL, SQL_C_DOUBLE, {8}, {8}},
    {SQL_FLOAT, SQL_C_DOUBLE, {8}, {8}},
    {SQL_REAL, SQL_C_DOUBLE, {8}, {8}},
    {SQL_DOUBLE, SQL_C_DOUBLE, {8}, {8}},
    {SQL_DATE, SQL_C_DATE, {6}, {6}},
    {SQL_TIME, SQL_C_TIME, {6}, {6}},
    {SQL_TIMESTAMP, SQL_C_TIMESTAMP, {16}, {16}},
}};

// What a parameter marker's cell holds.
enum class parameter_kind : std::int16_t {
  unsupported = 0,
  integer = 1,
  real = 2,
  text = 3,
  date = 4,
  time = 5,
  timestamp = 6
};

// A marker's cell: the C type it is bound with and its bytes per row.
struct marker_cell {
  SQLSMALLINT ctype;
  cell_width width;
};

// SQL type code -> how a described parameter marker is laid out, for one row and for an array of rows, where dates
// travel as text ("yyyy-mm-dd", "yyyy-mm-dd hh:mm:ss.000000"); a type without a row is unsupported and takes no bytes.
struct parameter_layout {
  int sql_type;
  parameter_kind kind;
  marker_cell single;
  marker_cell rows;
};
inline constexpr marker_cell long_cell{SQL_C_LONG, {4}};
inline constexpr marker_cell double_cell{SQL_C_DOUBLE, {8}};
inline constexpr marker_cell char_cell{SQL_C_CHAR, by_precision};
inline constexpr std::array<parameter_layout, 16> parameter_layouts{{
    {SQL_BIT, parameter_kind::integer, long_cell, long_cell},
    {SQL_TINYINT, parameter_kind::integer, long_cell, long_cell},
    {SQL_BIGINT, parameter_kind::integer, long_cell, long_cell},
    {SQL_INTEGER, parameter_kind::integer, long_cell, long_cell},
    {SQL_SMALLINT, parameter_kind::integer, long_cell, long_cell},
    {SQL_CHAR, parameter_kind::text, char_cell, char_cell},
    {SQL_VARCHAR, parameter_kind::text, char_cell, char_cell},
    {SQL_LONGVARCHAR, parameter_kind::text, char_cell, char_cell},
    {SQL_NUMERIC, parameter_kind::real, double_cell, double_cell},
    {SQL_DECIMAL, parameter_kind::real, double_cell, double_cell},
    {SQL_FLOAT, parameter_kind::real, double_cell, double_cell},
    {SQL_REAL, parameter_kind::real, double_cell, double_cell},
    {SQL_DOUBLE, parameter_kind::real, double_cell, double_cell},
    {SQL_DATE, parameter_kind::date, {SQL_C_DATE, {6}}, {SQL_C_CHAR, {11}}},
    {SQL_TIME, parameter_kind::time, {SQL_C_TIME, {6}}, {SQL_C_TIME, {6}}},
    {SQL_TIMESTAMP, parameter_kind::timestamp, {SQL_C_TIMESTAMP, {16}}, {SQL_C_CHAR, {27}}},
}};

// The row of a table for a SQL type code, or nullptr.
template <typename Row, std::size_t N>
constexpr const Row* find_type(const std::array<Row, N>& table, int sql_type) {
  for (const Row& row : table) {
    if (row.sql_type == sql_type) return &row;
  }
  return nullptr;
}

// Characters that a text cell makes room for at the most: what a driver describes beyond it (2 GB for a type without a
// limit of its own) is not allocated, and longer values are cut as in any cell.
inline constexpr std::size_t widest_text_characters = 1'048'576;

// Markers are bound as input/output, and a driver that writes back writes its C type whole, also over the one byte of a
// Null: the parameter buffer's end leaves room for the widest C structure.
inline constexpr std::size_t write_back_room = 32;

// Bytes of a cell in the code page in force.
std::size_t width_in_bytes(cell_width width, std::size_t precision);
