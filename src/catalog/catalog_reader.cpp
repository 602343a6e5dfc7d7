#include "catalog/catalog_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>

#include "base/code_page.h"
#include "base/conversions.h"
#include "base/text.h"
#include "base/user_interface.h"

namespace {

// Result columns that name the table which a row tells of.
struct naming_columns {
  int qualifier;
  int library;
  int table;
};
constexpr naming_columns first_three{1, 2, 3};
constexpr naming_columns foreign_table{5, 6, 7};

constexpr int tables_qualifier = 1;
constexpr int tables_library = 2;
constexpr int statistics_non_unique = 4;

// The name as a search pattern that matches it and little else, with any driver: '_' stands for each character that
// might have a meaning of its own.
std::string as_pattern(std::string name) {
  for (char& each : name) {
    if (each == '%' || each == '\\') each = '_';
  }
  return name;
}

enum class likeness { none, but_for_case, exact };

likeness compare(const value& cell, std::string_view wanted) {
  if (cell.is_null()) return likeness::exact;  // the driver does not say
  const std::string text = to_text(cell);
  const std::string_view name = trim_blanks(text);
  if (name == trim_blanks(wanted)) return likeness::exact;
  return upper_case(name) == upper_case(trim_blanks(wanted)) ? likeness::but_for_case : likeness::none;
}

// A typed name may differ in case from the one that the driver found for it.
likeness compare(const matrix& found, std::size_t row, const naming_columns& at, const table_key& wanted) {
  const likeness table = compare(found(at.table, row), wanted.table);
  if (wanted.library.empty() || wanted.library_is_pattern) return table;
  return std::min(table, compare(found(at.library, row), wanted.library));
}

// The rows of `result` that tell of the wanted table, and of one table only.
std::vector<std::size_t> rows_of_table(const value& result, const naming_columns& at, const table_key& wanted) {
  std::vector<std::size_t> rows;
  if (!result.is(value::kind::table)) return rows;
  const matrix& found = result.table();
  std::size_t like = 0;
  likeness best = likeness::none;
  for (std::size_t row = 0; row < found.second_count() && best != likeness::exact; ++row) {
    const likeness here = compare(found, row, at, wanted);
    if (here <= best) continue;
    best = here;
    like = row;
  }
  if (best == likeness::none) return rows;
  for (std::size_t row = like; row < found.second_count(); ++row) {
    const bool same = found(at.qualifier, row) == found(at.qualifier, like) &&
                      found(at.library, row) == found(at.library, like) &&
                      found(at.table, row) == found(at.table, like);
    if (same) rows.push_back(row);
  }
  return rows;
}

std::vector<value> cells_of(const matrix& found, std::size_t row, std::initializer_list<int> columns) {
  std::vector<value> cells;
  cells.reserve(columns.size() + 1);
  for (const int column : columns) cells.push_back(found(column, row));
  return cells;
}

value unique_flag(const value& non_unique) {
  const auto* number = non_unique.get<std::int32_t>();
  if (number == nullptr || *number < 0 || *number > 1) return "";
  return *number == 0 ? "Y" : "N";
}

value distinct(const value& result, int column) {
  if (!result.is(value::kind::table)) return null_t{};
  return distinct_values(result.table(), column);
}

}  // namespace

value catalog_reader::checked(value result) {
  if (!result.is_error()) return result;
  std::string said = diagnostic_text(statement_.ErrData());
  if (statement_.Result() == odbcstmt::rc_not_sendable) {
    said = fmt::format(
        "The name is too long or holds a character that the code page {} lacks, so the database can not be asked for "
        "it.",
        current_code_page().name());
  }
  if (std::find(failures_.begin(), failures_.end(), said) == failures_.end()) failures_.push_back(std::move(said));
  if (!statement_.Free()) statement_.Cancel_unc();
  return result;
}

void catalog_reader::tell_failures() {
  const std::vector<std::string> told = std::exchange(failures_, {});
  for (const std::string& text : told) show_message({text, {}, message_icon::none, message_buttons::ok, {}});
}

value catalog_reader::qualifiers() { return distinct(checked(statement_.TableList("%", "", "")), tables_qualifier); }

value catalog_reader::libraries() { return distinct(checked(statement_.TableList("", "%", "")), tables_library); }

void catalog_reader::tables(const table_key& within, const std::string& name_pattern,
                            const std::function<void(const matrix& found, std::size_t row)>& each) {
  const std::string library = within.library_is_pattern ? within.library : as_pattern(within.library);
  const value result = checked(statement_.TableList(within.qualifier, library, name_pattern));
  if (!result.is(value::kind::table)) return;
  const matrix& found = result.table();
  // A pattern that is none to the eye, such as A_B, may have found the tables of other libraries too.
  const bool any_library = within.library_is_pattern || library.find('_') == std::string::npos;
  for (std::size_t row = 0; row < found.second_count(); ++row) {
    if (any_library || compare(found(tables_library, row), within.library) != likeness::none) each(found, row);
  }
}

catalog_rows catalog_reader::columns(const table_key& of) {
  const std::string library = of.library_is_pattern ? of.library : as_pattern(of.library);
  const value result = checked(statement_.ColumnList(of.qualifier, library, as_pattern(of.table)));
  catalog_rows rows;
  for (const std::size_t row : rows_of_table(result, first_three, of)) {
    rows.push_back(cells_of(result.table(), row, {4, 6, 8, 9, 7, 11, 12}));
    rows.back().insert(rows.back().begin(), static_cast<std::int32_t>(rows.size()));
  }
  return rows;
}

catalog_rows catalog_reader::primary_key(const table_key& of) {
  const value result = checked(statement_.PrimaryKeyList(of.qualifier, of.library, of.table));
  catalog_rows rows;
  for (const std::size_t row : rows_of_table(result, first_three, of))
    rows.push_back(cells_of(result.table(), row, {5, 4, 6}));
  return rows;
}

catalog_rows catalog_reader::foreign_keys(const table_key& of) {
  const odbcstmt::table_name table{of.qualifier, of.library, of.table};
  const value into = checked(statement_.ForeignKeyList(table, {}));
  const value out = checked(statement_.ForeignKeyList({}, table));
  catalog_rows rows;
  const auto add = [&](const char* type, const value& result, const naming_columns& at,
                       std::initializer_list<int> columns) {
    for (const std::size_t row : rows_of_table(result, at, of)) {
      rows.push_back(cells_of(result.table(), row, columns));
      // The sequence number is read as text.
      if (const value number = to_int32(rows.back()[0]); number.is(value::kind::int32)) rows.back()[0] = number;
      rows.back().insert(rows.back().begin(), type);
    }
  };
  add("IN", into, first_three, {9, 4, 7, 8, 12});
  add("OUT", out, foreign_table, {9, 8, 3, 4, 13});
  return rows;
}

catalog_rows catalog_reader::indexes(const table_key& of) {
  const value result = checked(statement_.Statistics(of.qualifier, of.library, of.table));
  catalog_rows rows;
  for (const std::size_t row : rows_of_table(result, first_three, of)) {
    rows.push_back(cells_of(result.table(), row, {5, 6, statistics_non_unique, 8, 9, 10}));
    rows.back()[2] = unique_flag(rows.back()[2]);
  }
  return rows;
}
