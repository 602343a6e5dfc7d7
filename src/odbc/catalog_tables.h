#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "odbc/odbc_headers.h"
#include "odbc/type_tables.h"

// The catalog functions of ODBC 2.x as data: which result columns each has and how they are bound, and how each takes
// its text arguments.

// How a result column's cell is bound: its C type and its width, zero byte included.
struct catalog_cell {
  SQLSMALLINT ctype;
  // Of a name: as many characters, in the code page in force. Of any other: bytes.
  std::size_t width;
  bool counts_characters = false;
};
namespace catalog_cells {
inline constexpr catalog_cell name{SQL_C_CHAR, 128, true};
inline constexpr catalog_cell remarks{SQL_C_CHAR, 255};
inline constexpr catalog_cell yes_no{SQL_C_CHAR, 4};
inline constexpr catalog_cell one_character{SQL_C_CHAR, 2};
inline constexpr catalog_cell int16{SQL_C_SHORT, 2};
inline constexpr catalog_cell int32{SQL_C_LONG, 4};
}  // namespace catalog_cells

struct catalog_column {
  std::string_view name;
  catalog_cell cell;
  bool returned = true;  // whether it is a column of the operation's result, or bound only
};

// When a text argument is not given to the driver (a null pointer) rather than passed with its length.
enum class absent_argument { when_null, when_empty, never };

struct catalog_operation {
  absent_argument absent;
  std::span<const catalog_column> columns;  // in the order of the ODBC result set

  // Columns of the result.
  [[nodiscard]] constexpr int returned() const {
    int count = 0;
    for (const catalog_column& each : columns) count += each.returned ? 1 : 0;
    return count;
  }
};

// Bytes of a cell in the code page in force.
inline std::size_t width_in_bytes(const catalog_cell& cell) {
  return cell.counts_characters ? width_in_bytes(by_precision, cell.width) : cell.width;
}

namespace catalog_columns {
using namespace catalog_cells;

inline constexpr catalog_column tables[] = {
    {"TABLE_QUALIFIER", name}, {"TABLE_OWNER", name}, {"TABLE_NAME", name}, {"TABLE_TYPE", name}, {"REMARKS", remarks}};
inline constexpr catalog_column table_privileges[] = {
    {"TABLE_QUALIFIER", name}, {"TABLE_OWNER", name}, {"TABLE_NAME", name},    {"GRANTOR", name},
    {"GRANTEE", name},         {"PRIVILEGE", name},   {"IS_GRANTABLE", yes_no}};
inline constexpr catalog_column primary_keys[] = {{"TABLE_QUALIFIER", name}, {"TABLE_OWNER", name},
                                                  {"TABLE_NAME", name},      {"COLUMN_NAME", name},
                                                  {"KEY_SEQ", int16},        {"PK_NAME", name}};
inline constexpr catalog_column foreign_keys[] = {{"PKTABLE_QUALIFIER", name},
                                                  {"PKTABLE_OWNER", name},
                                                  {"PKTABLE_NAME", name},
                                                  {"PKCOLUMN_NAME", name},
                                                  {"FKTABLE_QUALIFIER", name},
                                                  {"FKTABLE_OWNER", name},
                                                  {"FKTABLE_NAME", name},
                                                  {"FKCOLUMN_NAME", name},
                                                  {"KEY_SEQ", name},
                                                  {"UPDATE_RULE", int16},
                                                  {"DELETE_RULE", int16},
                                                  {"FK_NAME", name},
                                                  {"PK_NAME", name}};
inline constexpr catalog_column special_columns[] = {{"SCOPE", int16},    {"COLUMN_NAME", name},   {"DATA_TYPE", int16},
                                                     {"TYPE_NAME", name}, {"PRECISION", int32},    {"LENGTH", int32},
                                                     {"SCALE", int16},    {"PSEUDO_COLUMN", int16}};
inline constexpr catalog_column statistics[] = {
    {"TABLE_QUALIFIER", name}, {"TABLE_OWNER", name},        {"TABLE_NAME", name},   {"NON_UNIQUE", int16},
    {"INDEX_QUALIFIER", name}, {"INDEX_NAME", name},         {"TYPE", int16},        {"SEQ_IN_INDEX", int16},
    {"COLUMN_NAME", name},     {"COLLATION", one_character}, {"CARDINALITY", int32}, {"PAGES", int32},
    {"FILTER_CONDITION", name}};
inline constexpr catalog_column columns[] = {{"TABLE_QUALIFIER", name}, {"TABLE_OWNER", name}, {"TABLE_NAME", name},
                                             {"COLUMN_NAME", name},     {"DATA_TYPE", int16},  {"TYPE_NAME", name},
                                             {"PRECISION", int32},      {"LENGTH", int32},     {"SCALE", int16},
                                             {"RADIX", int16},          {"NULLABLE", int16},   {"REMARKS", remarks}};
inline constexpr catalog_column procedures[] = {{"PROCEDURE_QUALIFIER", name},
                                                {"PROCEDURE_OWNER", name},
                                                {"PROCEDURE_NAME", name},
                                                {"NUM_INPUT_PARAMS", int32, false},
                                                {"NUM_OUTPUT_PARAMS", int32, false},
                                                {"NUM_RESULT_SETS", int32, false},
                                                {"REMARKS", remarks},
                                                {"PROCEDURE_TYPE", int16}};
inline constexpr catalog_column procedure_columns[] = {{"PROCEDURE_QUALIFIER", name},
                                                       {"PROCEDURE_OWNER", name},
                                                       {"PROCEDURE_NAME", name},
                                                       {"COLUMN_NAME", name},
                                                       {"COLUMN_TYPE", int16},
                                                       {"DATA_TYPE", int16},
                                                       {"TYPE_NAME", name},
                                                       {"PRECISION", int32},
                                                       {"LENGTH", int32},
                                                       {"SCALE", int16},
                                                       {"RADIX", int16},
                                                       {"NULLABLE", one_character},
                                                       {"REMARKS", remarks}};
}  // namespace catalog_columns

namespace catalog_operations {
inline constexpr catalog_operation tables{absent_argument::when_null, catalog_columns::tables};
inline constexpr catalog_operation table_privileges{absent_argument::never, catalog_columns::table_privileges};
inline constexpr catalog_operation primary_keys{absent_argument::never, catalog_columns::primary_keys};
inline constexpr catalog_operation foreign_keys{absent_argument::when_empty, catalog_columns::foreign_keys};
inline constexpr catalog_operation special_columns{absent_argument::when_empty, catalog_columns::special_columns};
inline constexpr catalog_operation statistics{absent_argument::never, catalog_columns::statistics};
inline constexpr catalog_operation columns{absent_argument::when_null, catalog_columns::columns};
inline constexpr catalog_operation procedures{absent_argument::never, catalog_columns::procedures};
inline constexpr catalog_operation procedure_columns{absent_argument::never, catalog_columns::procedure_columns};
}  // namespace catalog_operations
