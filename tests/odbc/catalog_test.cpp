// Catalog queries: arguments, cells and failures on the scripted driver, answers of real databases.
#include <algorithm>

#include "base/code_page.h"
#include "odbc/catalog_tables.h"
#include "odbc/odbc_fixture.h"
#include "support/engines.h"
#include "support/fault_sweep.h"

namespace {

using row = std::vector<value>;

row row_of(const value& result, std::size_t number) {
  row cells;
  if (!result.is(value::kind::table)) return {result};
  for (int column = 1; column <= result.table().first_upper(); ++column)
    cells.push_back(result.table()(column, number));
  return cells;
}
std::size_t rows_of(const value& result) { return result.is(value::kind::table) ? result.table().second_count() : 0; }

// Columns as a driver delivers them: texts and numbers by the operation's table, for the cells do not depend on it.
std::vector<scripted::column> columns_of(const catalog_operation& operation) {
  std::vector<scripted::column> columns;
  for (const catalog_column& each : operation.columns) {
    const bool text = each.cell.ctype == SQL_C_CHAR;
    columns.push_back({std::string(each.name), static_cast<SQLSMALLINT>(text ? SQL_VARCHAR : SQL_INTEGER), 300});
  }
  return columns;
}

const std::vector<scripted::cell> a_table{nullptr, " LIB ", "T", "TABLE", nullptr};

class catalog : public scripted_test {
 protected:
  void answer_catalog(const std::string& function, const catalog_operation& operation,
                      std::vector<std::vector<scripted::cell>> rows) {
    driver.catalog_answer(function, {.columns = columns_of(operation), .rows = std::move(rows)});
  }
};

struct operation_case {
  std::string function;
  const catalog_operation* operation;
  std::function<value(odbcstmt&)> query;
  std::string arguments;
  std::vector<scripted::cell> cells;
  row expected;
};

TEST_F(catalog, each_operation_passes_its_arguments_and_types_its_columns) {
  using namespace catalog_operations;
  const null_t null;
  const std::vector<operation_case> cases{
      {"SQLTables",
       &tables,
       [&](odbcstmt& on) { return on.TableList(null, "", "%", "VIEW"); },
       "<null>  % VIEW",
       a_table,
       {null, " LIB ", "T", "TABLE", null}},
      {"SQLTables",
       &tables,
       [&](odbcstmt& on) { return on.TableList(null, null, null, null); },
       "<null> <null> <null> <null>",
       a_table,
       {null, " LIB ", "T", "TABLE", null}},
      {"SQLTablePrivileges",
       &table_privileges,
       [](odbcstmt& on) { return on.TablePrivilegeList("", "L", "T"); },
       " L T",
       {"Q", "L", "T", "A", "B", "SELECT", "YES"},
       {"Q", "L", "T", "A", "B", "SELECT", "YES"}},
      {"SQLPrimaryKeys",
       &primary_keys,
       [](odbcstmt& on) { return on.PrimaryKeyList("", "", "T"); },
       "  T",
       {nullptr, "L", "T", "C", 2, "PK"},
       {null, "L", "T", "C", 2, "PK"}},
      {"SQLForeignKeys",
       &foreign_keys,
       [](odbcstmt& on) {
         return on.ForeignKeyList({"", "L", "T"}, {});
       },
       "<null> L T <null> <null> <null>",
       {"Q", "L", "T", "C", "FQ", "FL", "FT", "FC", 3, 1, nullptr, "FK", "PK"},
       {"Q", "L", "T", "C", "FQ", "FL", "FT", "FC", "3", 1, null, "FK", "PK"}},
      {"SQLSpecialColumns",
       &special_columns,
       [](odbcstmt& on) { return on.SpecialColumns(SQL_BEST_ROWID, "", "L", "T", SQL_SCOPE_SESSION, SQL_NULLABLE); },
       "1 <null> L T 2 1",
       {2, "C", -5, "BIGINT", 19, 8, nullptr, 1},
       {2, "C", -5, "BIGINT", 19, 8, null, 1}},
      {"SQLStatistics",
       &statistics,
       [](odbcstmt& on) { return on.Statistics("", "L", "T"); },
       " L T 1 0",
       {"Q", "L", "T", 0, "IQ", "I", 3, 1, "C", "D", 70000, 12, nullptr},
       {"Q", "L", "T", 0, "IQ", "I", 3, 1, "C", "D", 70000, 12, null}},
      {"SQLColumns",
       &columns,
       [&](odbcstmt& on) { return on.ColumnList("", "L", "T", null); },
       " L T <null>",
       {"Q", "L", "T", "C", -1, "TEXT", 65536, 65537, nullptr, 10, 1, "why"},
       {"Q", "L", "T", "C", -1, "TEXT", 65536, 65537, null, 10, 1, "why"}},
      {"SQLProcedures",
       &procedures,
       [](odbcstmt& on) { return on.ProcedureList("", "%", "P"); },
       " % P",
       {"Q", "L", "P", 1, 2, 3, nullptr, 2},
       {"Q", "L", "P", null, 2}},
      {"SQLProcedureColumns",
       &procedure_columns,
       [](odbcstmt& on) { return on.ProcColumns("", "L", "P", ""); },
       " L P ",
       {"Q", "L", "P", "C", 1, 4, "INTEGER", 10, 4, 0, 10, "1", "why"},
       {"Q", "L", "P", "C", 1, 4, "INTEGER", 10, 4, 0, 10, "1", "why"}}};
  for (const operation_case& each : cases) {
    SCOPED_TRACE(each.function + ' ' + each.arguments);
    driver.clear_log();
    answer_catalog(each.function, *each.operation, {each.cells, each.cells});
    const value result = each.query(stmt);
    EXPECT_EQ(logged({each.function}), texts{each.function + ' ' + each.arguments});
    ASSERT_EQ(rows_of(result), 2U) << to_text(result);
    EXPECT_EQ(row_of(result, 1), each.expected);
    EXPECT_FALSE(stmt.InUse());
    answer_catalog(each.function, *each.operation, {});
    EXPECT_TRUE(each.query(stmt).is_null()) << "no row";
  }
}

TEST_F(catalog, texts_beyond_their_cell_are_cut_to_whole_characters) {
  const std::size_t name_bytes = 128 * current_code_page().max_bytes_per_char();
  std::string umlauts = "x";
  while (umlauts.size() < 300) umlauts += "ü";
  const std::string long_name(name_bytes + 70, 'n');
  answer_catalog("SQLTables", catalog_operations::tables,
                 {{scripted::cell("short").reporting(2'000'000'000), long_name, std::string(128, 'n'), "T", umlauts}});
  const row cells = row_of(stmt.TableList(null_t{}, null_t{}, null_t{}), 0);
  ASSERT_EQ(cells.size(), 5U);
  EXPECT_LE(cells[0].text().size(), name_bytes);
  EXPECT_EQ(cells[1], value(long_name.substr(0, name_bytes)));
  EXPECT_EQ(cells[2], value(std::string(128, 'n')));
  EXPECT_EQ(cells[4], value(umlauts.substr(0, 253))) << "254 bytes would end within a character";
}

TEST_F(catalog, an_open_cursor_is_cancelled_first_and_none_is_left) {
  answer("rows", {integer("I")}, {{1}, {2}, {3}});
  answer_catalog("SQLTables", catalog_operations::tables, {a_table});
  ASSERT_TRUE(stmt.Prep("rows", 2) && stmt.Execute());
  std::int64_t got = 0;
  ASSERT_TRUE(stmt.ExtFetchNext(got));
  EXPECT_EQ(rows_of(stmt.TableList("", "", "%")), 1U);
  ASSERT_TRUE(stmt.Prep("rows") && stmt.Execute() && stmt.Fetch());
  EXPECT_EQ(stmt.Getc(1), value(1));
}

TEST_F(catalog, what_can_not_be_sent_is_an_error_without_a_call) {
  driver.clear_log();
  EXPECT_EQ(stmt.ColumnList("", "", std::string(40000, 'n')), value(error_value{1}));
  EXPECT_EQ(stmt.Result(), odbcstmt::rc_not_sendable);
  EXPECT_EQ(logged(), texts{});
  EXPECT_TRUE(stmt.Kill());
  EXPECT_EQ(stmt.PrimaryKeyList("", "", "T"), value(error_value{1})) << "no handle";
}

TEST_F(catalog, every_call_that_fails_gives_its_error_value_and_the_drivers_words) {
  answer("rows", {integer("I")}, {{1}, {2}, {3}});
  answer_catalog("SQLTables", catalog_operations::tables, {a_table, a_table});
  value result;
  const auto query = [&] {
    result = stmt.TableList(null_t{}, null_t{}, null_t{});
    return rows_of(result) == 2;
  };
  const auto expected = [&](const std::string& function) {
    const auto binds = static_cast<std::int32_t>(driver.count("SQLBindCol"));
    if (function == "SQLBindCol") return error_value{10 + binds};
    const bool fetching = function == "SQLFetch" || function == "SQLExtendedFetch" || function == "SQLSetStmtOption";
    return error_value{fetching ? 100 : 1};
  };
  const unsigned struck =
      fault_sweep({.setup =
                       [&] {
                         ASSERT_TRUE(stmt.Make(con) && stmt.Prep("rows", 3) && stmt.Execute());
                         result = {};
                       },
                   .operation = query,
                   .check =
                       [&](const scripted::call& call, bool answered) {
                         if (answered) {
                           EXPECT_TRUE(call.function == "SQLCancel" || call.function == "SQLFreeStmt")
                               << "only a clean-up";
                         } else {
                           EXPECT_EQ(result, value(expected(call.function)));
                           EXPECT_EQ(stmt.Result(), SQL_ERROR);
                           EXPECT_EQ(stmt.ErrData().native, -4711);
                         }
                         EXPECT_EQ(busy().busy_depth, 0);
                         EXPECT_EQ(driver.open_statements(), 1U);
                         stmt.Cancel_unc();
                         EXPECT_TRUE(query()) << "afterwards: " << diagnostic_text(stmt.ErrData());
                       }});
  EXPECT_GE(struck, 4U + 1U + 5U + 3U) << "cancel, call, columns, rows";
}

TEST_F(catalog, a_row_that_breaks_off_drops_the_rows_before_it) {
  driver.catalog_answer("SQLTables", {.columns = columns_of(catalog_operations::tables),
                                      .rows = {a_table, a_table, a_table},
                                      .fetch_failures = {{2, {SQL_ERROR, "08S01", -7, "the line went"}}}});
  EXPECT_EQ(stmt.TableList("", "", "%"), value(error_value{100}));
  EXPECT_EQ(stmt.Errd(), -7) << "although the cursor is closed by now";
  EXPECT_EQ(ui.take_texts(), texts{"SQL error. Code = -7. State = 08S01. Message = the line went."});
  EXPECT_FALSE(stmt.InUse());
}

class catalog_engines : public odbc_test, public testing::WithParamInterface<engine> {
 protected:
  void SetUp() override {
    odbc_test::SetUp();
    connect_to(con, GetParam());
    if (HasFatalFailure()) return;
    ASSERT_TRUE(con.SetACOff() && stmt.Make(con));
    for (const char* text :
         {"create table cat_parent (a integer not null, b varchar(30) not null, constraint cat_parent_pk primary key "
          "(a))",
          "create table cat_child (id integer not null, p integer, note varchar(20), constraint cat_child_pk primary "
          "key (id), constraint cat_child_fk foreign key (p) references cat_parent (a))",
          "create table cat_bare (\"Größe %_\" integer)", "create unique index cat_parent_b on cat_parent (b)",
          "create index cat_child_p on cat_child (p)"}) {
      ASSERT_TRUE(stmt.CEX(text)) << diagnostic_text(stmt.ErrData());
    }
  }
  void TearDown() override {
    for (const char* table : {"cat_child", "cat_parent", "cat_bare"}) stmt.CEX(std::string("drop table ") + table);
    EXPECT_TRUE(con.Free() || con.Rollback());
    EXPECT_TRUE(con.Free() || con.Disconnect());
    odbc_test::TearDown();
  }
  // Cells of one column, in the driver's order.
  static row column_of(const value& result, int column) {
    row cells;
    for (std::size_t i = 0; i < rows_of(result); ++i) cells.push_back(result.table()(column, i));
    return cells;
  }

  odbccon con;
  odbcstmt stmt;
};

TEST_P(catalog_engines, tell_tables_columns_keys_and_indexes) {
  texts tables;
  for (const value& name : column_of(stmt.TableList(null_t{}, null_t{}, "cat%", "TABLE"), 3))
    tables.push_back(to_text(name));
  std::sort(tables.begin(), tables.end());
  EXPECT_EQ(tables, (texts{"cat_bare", "cat_child", "cat_parent"}));
  const value child = stmt.ColumnList(null_t{}, null_t{}, "cat_child");
  EXPECT_EQ(column_of(child, 4), (row{"id", "p", "note"}));
  EXPECT_EQ(column_of(child, 7).at(2), value(20));
  EXPECT_EQ(column_of(child, 11), (row{SQL_NO_NULLS, SQL_NULLABLE, SQL_NULLABLE}));
  EXPECT_EQ(column_of(stmt.ColumnList(null_t{}, null_t{}, "cat_bare"), 4), row{"Größe %_"});
  EXPECT_TRUE(stmt.ColumnList(null_t{}, null_t{}, "cat_none").is_null());

  EXPECT_EQ(column_of(stmt.PrimaryKeyList("", "", "cat_parent"), 4), row{"a"});
  EXPECT_TRUE(stmt.PrimaryKeyList("", "", "cat_bare").is_null());

  const value into = stmt.ForeignKeyList({"", "", "cat_parent"}, {});
  const value out = stmt.ForeignKeyList({}, {"", "", "cat_child"});
  ASSERT_EQ(rows_of(out), 1U) << to_text(out);
  EXPECT_EQ(row_of(into, 0), row_of(out, 0));
  for (const auto& [column, text] : {std::pair{3, "cat_parent"}, {4, "a"}, {7, "cat_child"}, {8, "p"}, {9, "1"}})
    EXPECT_EQ(column_of(out, column), row{text});

  // NON_UNIQUE, INDEX_NAME and COLUMN_NAME of what is an index.
  const auto has_index = [&](const char* table, const row& wanted) {
    const value indexes = stmt.Statistics("", "", table);
    for (std::size_t i = 0; i < rows_of(indexes); ++i) {
      const row cells = row_of(indexes, i);
      if (row{cells[3], cells[5], cells[8]} == wanted) return true;
    }
    return false;
  };
  EXPECT_TRUE(has_index("cat_parent", {0, "cat_parent_b", "b"}));
  EXPECT_TRUE(has_index("cat_child", {1, "cat_child_p", "p"}));
}

INSTANTIATE_TEST_SUITE_P(engines, catalog_engines, testing::Values(sqlite(), postgres()),
                         [](const auto& each) { return each.param.name; });

}  // namespace
