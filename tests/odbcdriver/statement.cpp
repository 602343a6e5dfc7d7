// Statements: preparation, execution, description of the result, options and cursor names.
#include "convert.h"
#include "driver_state.h"
#include "params.h"

#include <fmt/format.h>

#include <algorithm>

using namespace scripted;

namespace {

void prepare(statement& stmt, const std::string& text) {
  stmt.require_closed();
  stmt.forget_script();
  auto script = state().script_of(text);
  if (script->prepare_failure) stmt.raise(*script->prepare_failure);
  stmt.script = std::move(script);
  stmt.text = text;
}

void execute(statement& stmt) {
  if (!stmt.script) throw call_stopped("S1010", "execution without preparation");
  stmt.require_closed();
  const answer& script = *stmt.script;
  execution seen = read_parameters(stmt);
  if (script.execute_failure) {
    put(stmt.parameter_row, script.failing_parameter_row);
    stmt.raise(*script.execute_failure);
  }
  write_outputs(stmt);
  put(stmt.parameter_row, stmt.parameter_rows);
  stmt.executed = true;
  stmt.open = !script.columns.empty();
  stmt.mode = fetching::not_yet;
  stmt.next_row = 0;
  state().seen_executions.push_back(std::move(seen));
}

const std::vector<column>& result_columns(const statement& stmt) {
  static const std::vector<column> none;
  if (!stmt.script) throw call_stopped("S1010", "description without preparation");
  return stmt.script->columns_after_execute && !stmt.executed ? none : stmt.script->columns;
}

const column& result_column(const statement& stmt, SQLUSMALLINT number) {
  const auto& columns = result_columns(stmt);
  if (columns.empty()) throw call_stopped("24000", "the statement has no result columns");
  if (number == 0 || number > columns.size())
    throw call_stopped("S1002", fmt::format("column number {} of {}", number, columns.size()));
  return columns[number - 1U];
}

// Nothing when the attribute is a text.
std::optional<SQLLEN> number_attribute(const column& described, SQLUSMALLINT attribute) {
  const type_traits_row traits = traits_of(described.sql_type);
  switch (attribute) {
    case SQL_COLUMN_TYPE:
      return described.sql_type;
    case SQL_COLUMN_LENGTH:
      return traits.length > 0 ? traits.length : static_cast<SQLLEN>(described.precision);
    case SQL_COLUMN_PRECISION:
      return static_cast<SQLLEN>(described.precision);
    case SQL_COLUMN_SCALE:
      return described.scale;
    case SQL_COLUMN_DISPLAY_SIZE:
      return traits.display > 0 ? traits.display : static_cast<SQLLEN>(described.precision) + traits.extra_display;
    case SQL_COLUMN_NULLABLE:
      return described.nullable;
    case SQL_COLUMN_UNSIGNED:
    case SQL_COLUMN_CASE_SENSITIVE:
      return traits.number ? 0 : 1;
    case SQL_COLUMN_MONEY:
    case SQL_COLUMN_AUTO_INCREMENT:
      return 0;
    case SQL_COLUMN_UPDATABLE:
      return SQL_ATTR_READWRITE_UNKNOWN;
    case SQL_COLUMN_SEARCHABLE:
      return SQL_SEARCHABLE;
    default:
      return std::nullopt;
  }
}

std::string text_attribute(const column& described, SQLUSMALLINT attribute) {
  switch (attribute) {
    case SQL_COLUMN_NAME:
      return described.name;
    case SQL_COLUMN_LABEL:
      return described.label.empty() ? described.name : described.label;
    case SQL_COLUMN_TYPE_NAME:
      return described.type_name.empty() ? traits_of(described.sql_type).name : described.type_name;
    case SQL_COLUMN_TABLE_NAME:
    case SQL_COLUMN_OWNER_NAME:
    case SQL_COLUMN_QUALIFIER_NAME:
      return {};
    default:
      throw call_stopped("S1091", fmt::format("descriptor type {}", attribute));
  }
}

void name_cursor(statement& stmt, const std::string& name) {
  stmt.require_closed();
  for (const auto& one : state().live<statement>())
    if (one.second->owner == stmt.owner && one.second.get() != &stmt && one.second->cursor_name == name)
      throw call_stopped("3C000", fmt::format("duplicate cursor name {}", name));
  stmt.cursor_name = name;
}

}  // namespace

namespace scripted {

void statement::require_closed() const {
  if (open) throw call_stopped("24000", "a cursor is open on the statement");
}

void statement::forget_script() {
  script.reset();
  text.clear();
  prepared = executed = open = false;
}

void statement::close() {
  if (!prepared) forget_script();
  open = false;
}

SQLULEN statement::option(SQLUSMALLINT which) const {
  const auto found = options.find(which);
  if (found != options.end()) return found->second;
  const bool is_one = which == SQL_ROWSET_SIZE || which == SQL_CONCURRENCY || which == SQL_RETRIEVE_DATA;
  return is_one ? 1 : 0;
}

void statement::set_option(SQLUSMALLINT which, SQLULEN value) {
  if (which >= SQL_GET_BOOKMARK) throw call_stopped("S1092", fmt::format("statement option {}", which));
  if (which == SQL_ROWSET_SIZE && value == 0) throw call_stopped("S1009", "a rowset has at least one row");
  if (which == SQL_CURSOR_TYPE || which == SQL_CONCURRENCY) require_closed();
  const bool unable = (which == SQL_BIND_TYPE && value != SQL_BIND_BY_COLUMN) ||
                      (which == SQL_ASYNC_ENABLE && value != 0) || (which == SQL_USE_BOOKMARKS && value != 0) ||
                      (which == SQL_RETRIEVE_DATA && value == 0);
  if (unable) throw call_stopped("S1C00", fmt::format("statement option {} can't be {}", which, value));
  if (which == SQL_CURSOR_TYPE && value != SQL_CURSOR_FORWARD_ONLY) {
    value = SQL_CURSOR_FORWARD_ONLY;
    warn({SQL_SUCCESS_WITH_INFO, "01S02", 0, "[Sorvane][Scripted driver] Option value changed: forward only"});
  }
  options[which] = value;
}

}  // namespace scripted

SQLRETURN SQLPrepare(SQLHSTMT raw, SQLCHAR* text, SQLINTEGER length) {
  return on<statement>(raw, "SQLPrepare", args(show_text(text, length)), [&](statement& stmt) {
    prepare(stmt, given_text(text, length));
    stmt.prepared = true;
  });
}

SQLRETURN SQLExecute(SQLHSTMT raw) {
  return on<statement>(raw, "SQLExecute", {}, [](statement& stmt) { execute(stmt); });
}

SQLRETURN SQLExecDirect(SQLHSTMT raw, SQLCHAR* text, SQLINTEGER length) {
  return on<statement>(raw, "SQLExecDirect", args(show_text(text, length)), [&](statement& stmt) {
    prepare(stmt, given_text(text, length));
    execute(stmt);
  });
}

SQLRETURN SQLCancel(SQLHSTMT raw) {
  return on<statement>(raw, "SQLCancel", {}, [](statement& stmt) {
    if (stmt.open) stmt.close();
  });
}

SQLRETURN SQLNumResultCols(SQLHSTMT raw, SQLSMALLINT* count) {
  return on<statement>(raw, "SQLNumResultCols", {}, [&](statement& stmt) { put(count, result_columns(stmt).size()); });
}

SQLRETURN SQLDescribeCol(SQLHSTMT raw, SQLUSMALLINT number, SQLCHAR* name, SQLSMALLINT name_max,
                         SQLSMALLINT* name_length, SQLSMALLINT* type, SQLULEN* precision, SQLSMALLINT* scale,
                         SQLSMALLINT* nullable) {
  return on<statement>(raw, "SQLDescribeCol", args(number, name_max), [&](statement& stmt) {
    const column& described = result_column(stmt, number);
    put_text(stmt, described.name, name, name_max, name_length);
    put(type, described.sql_type);
    put(precision, described.precision);
    put(scale, described.scale);
    put(nullable, described.nullable);
  });
}

SQLRETURN SQLColAttributes(SQLHSTMT raw, SQLUSMALLINT number, SQLUSMALLINT attribute, SQLPOINTER text, SQLSMALLINT max,
                           SQLSMALLINT* length, SQLLEN* value) {
  return on<statement>(raw, "SQLColAttributes", args(number, attribute, max), [&](statement& stmt) {
    if (attribute == SQL_COLUMN_COUNT) {
      put(value, result_columns(stmt).size());
      return;
    }
    const column& described = result_column(stmt, number);
    if (const auto numeric = number_attribute(described, attribute))
      put(value, *numeric);
    else
      put_text(stmt, text_attribute(described, attribute), text, max, length);
  });
}

SQLRETURN SQLRowCount(SQLHSTMT raw, SQLLEN* count) {
  return on<statement>(raw, "SQLRowCount", {}, [&](statement& stmt) {
    if (!stmt.executed) throw call_stopped("S1010", "row count without execution");
    put(count, stmt.script->row_count);
  });
}

SQLRETURN SQLSetStmtOption(SQLHSTMT raw, SQLUSMALLINT option, SQLULEN value) {
  return on<statement>(raw, "SQLSetStmtOption", args(option, value),
                       [&](statement& stmt) { stmt.set_option(option, value); });
}

SQLRETURN SQLGetStmtOption(SQLHSTMT raw, SQLUSMALLINT option, SQLPOINTER value) {
  return on<statement>(raw, "SQLGetStmtOption", args(option), [&](statement& stmt) {
    if (option > SQL_ROW_NUMBER || option == SQL_GET_BOOKMARK)
      throw call_stopped("S1092", fmt::format("statement option {}", option));
    const SQLULEN number = option == SQL_ROW_NUMBER ? stmt.next_row : stmt.option(option);
    const bool wide = option == SQL_MAX_ROWS || option == SQL_MAX_LENGTH || option == SQL_KEYSET_SIZE ||
                      option == SQL_ROWSET_SIZE || option == SQL_ROW_NUMBER;  // 64 bits on this platform
    if (wide)
      put(static_cast<SQLULEN*>(value), number);
    else
      put(static_cast<SQLUINTEGER*>(value), number);
  });
}

SQLRETURN SQLSetScrollOptions(SQLHSTMT raw, SQLUSMALLINT concurrency, SQLLEN keyset, SQLUSMALLINT rowset) {
  const auto shown_args = args(concurrency, keyset, rowset);
  return on<statement>(raw, "SQLSetScrollOptions", shown_args, [&](statement& stmt) {
    stmt.set_option(SQL_CONCURRENCY, concurrency);
    stmt.set_option(SQL_CURSOR_TYPE, keyset == SQL_SCROLL_FORWARD_ONLY ? SQL_CURSOR_FORWARD_ONLY : SQL_CURSOR_STATIC);
    stmt.set_option(SQL_ROWSET_SIZE, rowset);
  });
}

SQLRETURN SQLSetCursorName(SQLHSTMT raw, SQLCHAR* name, SQLSMALLINT length) {
  return on<statement>(raw, "SQLSetCursorName", args(show_text(name, length)),
                       [&](statement& stmt) { name_cursor(stmt, given_text(name, length)); });
}

SQLRETURN SQLGetCursorName(SQLHSTMT raw, SQLCHAR* name, SQLSMALLINT max, SQLSMALLINT* length) {
  return on<statement>(raw, "SQLGetCursorName", args(max),
                       [&](statement& stmt) { put_text(stmt, stmt.cursor_name, name, max, length); });
}
