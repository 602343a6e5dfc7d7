// The catalog half of odbcstmt: one algorithm for the nine operations, which differ in their tables and their call.
#include "base/matrix.h"
#include "base/user_interface.h"
#include "odbc/catalog_tables.h"
#include "odbc/layer_error.h"
#include "odbc/odbcstmt.h"
#include "odbc/struct_cells.h"
#include "odbc/text_argument.h"

namespace {

// Room for the widest row of any operation. The bindings of a call that failed keep pointing into it.
std::size_t widest_row() {
  const std::size_t name = width_in_bytes(catalog_cells::name);
  return catalog_operations::foreign_keys.columns.size() * name;
}

// Rows that a result has room for at first. It grows by large steps: moving values costs more than room that stays
// untouched.
constexpr std::size_t first_room = 256;

bool is_absent(absent_argument rule, const value& given) {
  if (rule == absent_argument::when_null) return given.is_null();
  return rule == absent_argument::when_empty && to_text(given).empty();
}

void append_cell(matrix& into, const code_page& page, const catalog_cell& cell, std::size_t width,
                 const unsigned char* bytes, SQLLEN length) {
  if (length == SQL_NULL_DATA) {
    into.append(null_t{});
  } else if (cell.ctype == SQL_C_SHORT) {
    into.append(std::int32_t{cfgetw(bytes)});
  } else if (cell.ctype == SQL_C_LONG) {
    into.append(cfgetd(bytes));
  } else {
    const std::string_view text = cell_bytes(bytes, width, length);
    if (page.is_utf8()) {
      into.append(text);
    } else {
      into.append(page.to_utf8(text));
    }
  }
}

}  // namespace

// A text as a driver takes it: pointer and length, both zero when it is not given.
class catalog_text {
 public:
  catalog_text() = default;
  explicit catalog_text(std::string_view text) : given_(text) {}
  SQLCHAR* data() { return given_ ? given_->data() : nullptr; }
  [[nodiscard]] SQLSMALLINT length() const { return given_ ? given_->length() : SQLSMALLINT{0}; }

 private:
  std::optional<text_argument> given_;
};

template <typename Call>
value odbcstmt::catalog(const catalog_operation& operation, std::initializer_list<value> arguments, Call call) {
  const busy_section busy;
  if (in_use && !Cancel()) return catalog_call_failed;
  std::vector<catalog_text> texts;
  texts.reserve(arguments.size());
  for (const value& each : arguments) {
    const bool made = is_absent(operation.absent, each) ? (texts.emplace_back(), true)
                                                        : trap(last_err, [&] { texts.emplace_back(to_text(each)); });
    if (made) continue;
    last_rc = rc_not_sendable;
    return catalog_call_failed;
  }
  if (!sql_ok(record(call(texts.data())))) return catalog_call_failed;
  value rows;
  if (trap(last_err, [&] { rows = catalog_rows(operation); })) return rows;
  Cancel_unc();
  return catalog_fetch_failed;
}

value odbcstmt::catalog_rows(const catalog_operation& operation) {
  const std::span<const catalog_column> bound = operation.columns;
  if (catalog_row.size() < widest_row()) catalog_row.resize(widest_row());
  catalog_len.fill(SQL_NULL_DATA);
  std::array<std::size_t, most_catalog_columns> widths{};
  std::size_t total = 0;
  for (std::size_t i = 0; i < bound.size(); ++i) {
    widths.at(i) = width_in_bytes(bound[i].cell);
    const auto number = static_cast<SQLUSMALLINT>(i + 1);
    if (!sql_ok(record(SQLBindCol(hstmt, number, bound[i].cell.ctype, catalog_row.data() + total,
                                  static_cast<SQLLEN>(widths.at(i)), &catalog_len.at(i))))) {
      return error_value{catalog_binding_failed.code + number};
    }
    total += widths.at(i);
  }

  matrix all(operation.returned());
  std::size_t room = first_room;
  all.reserve(room);
  const code_page& page = current_code_page();
  const bool single_rows = trap(last_err, [&] { set_rowset_option(1); });
  while (single_rows && sql_ok(record(SQLFetch(hstmt)))) {
    if (all.second_count() == room) all.reserve(room *= 16);
    const unsigned char* bytes = catalog_row.data();
    for (std::size_t i = 0; i < bound.size(); ++i) {
      if (bound[i].returned) append_cell(all, page, bound[i].cell, widths[i], bytes, catalog_len[i]);
      bytes += widths[i];
    }
    catalog_len.fill(SQL_NULL_DATA);  // a cell that the driver passes over must not show the row before
  }
  if (last_rc == SQL_NO_DATA_FOUND) {
    Cancel_unc();
    if (all.second_count() == 0) return null_t{};
    return all;
  }
  // The cancel would wipe out what the driver said of the failure.
  if (single_rows) last_err = error_number(odbc_fault::fetch);
  const std::int32_t failed = last_rc;
  diagnostic_record said = ErrData();
  Cancel_unc();
  last_rc = failed;
  held_diagnostic = std::move(said);
  return catalog_fetch_failed;
}

value odbcstmt::TableList(const value& qualifier, const value& owner, const value& table, const value& type) {
  return catalog(catalog_operations::tables, {qualifier, owner, table, type}, [this](catalog_text* text) {
    return SQLTables(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(), text[2].data(),
                     text[2].length(), text[3].data(), text[3].length());
  });
}

value odbcstmt::TablePrivilegeList(std::string_view qualifier, std::string_view owner, std::string_view table) {
  return catalog(catalog_operations::table_privileges, {qualifier, owner, table}, [this](catalog_text* text) {
    return SQLTablePrivileges(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(), text[2].data(),
                              text[2].length());
  });
}

value odbcstmt::PrimaryKeyList(std::string_view qualifier, std::string_view owner, std::string_view table) {
  return catalog(catalog_operations::primary_keys, {qualifier, owner, table}, [this](catalog_text* text) {
    return SQLPrimaryKeys(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(), text[2].data(),
                          text[2].length());
  });
}

value odbcstmt::ForeignKeyList(const table_name& primary, const table_name& foreign) {
  return catalog(catalog_operations::foreign_keys,
                 {primary.qualifier, primary.owner, primary.table, foreign.qualifier, foreign.owner, foreign.table},
                 [this](catalog_text* text) {
                   return SQLForeignKeys(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(),
                                         text[2].data(), text[2].length(), text[3].data(), text[3].length(),
                                         text[4].data(), text[4].length(), text[5].data(), text[5].length());
                 });
}

value odbcstmt::SpecialColumns(std::uint16_t column_type, std::string_view qualifier, std::string_view owner,
                               std::string_view table, std::uint16_t scope, std::uint16_t nullable) {
  return catalog(catalog_operations::special_columns, {qualifier, owner, table}, [&](catalog_text* text) {
    return SQLSpecialColumns(hstmt, column_type, text[0].data(), text[0].length(), text[1].data(), text[1].length(),
                             text[2].data(), text[2].length(), scope, nullable);
  });
}

value odbcstmt::Statistics(std::string_view qualifier, std::string_view owner, std::string_view table,
                           std::uint16_t unique, std::uint16_t accuracy) {
  return catalog(catalog_operations::statistics, {qualifier, owner, table}, [&](catalog_text* text) {
    return SQLStatistics(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(), text[2].data(),
                         text[2].length(), unique, accuracy);
  });
}

value odbcstmt::ColumnList(const value& qualifier, const value& owner, const value& table, const value& column) {
  return catalog(catalog_operations::columns, {qualifier, owner, table, column}, [this](catalog_text* text) {
    return SQLColumns(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(), text[2].data(),
                      text[2].length(), text[3].data(), text[3].length());
  });
}

value odbcstmt::ProcedureList(std::string_view qualifier, std::string_view owner, std::string_view procedure) {
  return catalog(catalog_operations::procedures, {qualifier, owner, procedure}, [this](catalog_text* text) {
    return SQLProcedures(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(), text[2].data(),
                         text[2].length());
  });
}

value odbcstmt::ProcColumns(std::string_view qualifier, std::string_view owner, std::string_view procedure,
                            std::string_view column) {
  return catalog(catalog_operations::procedure_columns, {qualifier, owner, procedure, column},
                 [this](catalog_text* text) {
                   return SQLProcedureColumns(hstmt, text[0].data(), text[0].length(), text[1].data(), text[1].length(),
                                              text[2].data(), text[2].length(), text[3].data(), text[3].length());
                 });
}
