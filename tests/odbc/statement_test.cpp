// The statement object's core, on the scripted driver: handles, preparation and layout, execution, cancelling, names.
#include <fmt/format.h>

#include "odbc/manager_faults.h"
#include "odbc/odbc_fixture.h"
#include "support/scoped_state.h"

namespace {

using statement = scripted_test;
using scripted::column;

constexpr const char* latin = "ISO-8859-15";
constexpr const char* utf8 = "UTF-8";

// The bound layout as "ctype:width@offset ... = bytes".
std::string layout_of(const odbcstmt& stmt) {
  std::string shown;
  for (int number = 1; number <= stmt.NCols(); ++number) {
    shown += fmt::format("{}:{}@{} ", stmt.ColCType(number), stmt.ColWidth(number), stmt.ColOffset(number));
  }
  return shown + fmt::format("= {}", stmt.BufferBytes());
}

TEST_F(statement, lays_its_columns_out_in_one_buffer) {
  const std::vector<column> pair{integer("I"), {"C", SQL_CHAR, 10}};
  const std::vector<column> fixed{{"B", SQL_BIGINT, 19},    {"S", SQL_SMALLINT, 5}, {"N", SQL_NUMERIC, 9, 2},
                                  {"D", SQL_DECIMAL, 9, 2}, {"F", SQL_FLOAT, 15},   {"R", SQL_REAL, 7},
                                  {"P", SQL_DOUBLE, 15},    {"A", SQL_DATE, 10},    {"T", SQL_TIME, 8},
                                  {"M", SQL_TIMESTAMP, 26}};
  const std::vector<column> long_text{{"V", SQL_VARCHAR, 0}, {"L", SQL_LONGVARCHAR, 100}};
  const struct {
    const char* page;
    const std::vector<column>& columns;
    int rowset;
    bool procedure;
    const char* layout;
  } cases[] = {
      {latin, pair, 500, false, "4:4@0 1:11@2000 = 7500"},
      {utf8, pair, 500, false, "4:4@0 1:41@2000 = 22500"},
      {latin, fixed, 2, false, "4:4@0 4:4@8 8:8@16 8:8@32 8:8@48 8:8@64 8:8@80 9:6@96 10:6@108 11:16@120 = 152"},
      {latin, long_text, 1, false, "1:1@0 1:32001@1 = 32002"},
      {latin, long_text, 1, true, "1:1@0 1:101@1 = 102"},
      {utf8, long_text, 1, true, "1:1@0 1:401@1 = 402"}};
  for (const auto& each : cases) {
    const scoped_code_page page(each.page);
    answer("q", each.columns);
    ASSERT_TRUE(each.procedure ? stmt.ProcPrep("q", each.rowset) : stmt.Prep("q", each.rowset));
    EXPECT_EQ(layout_of(stmt), each.layout) << each.page;
  }
}

TEST_F(statement, lowers_a_rowset_that_needs_more_than_a_megabyte) {
  const column long_text{"L", SQL_LONGVARCHAR, 32700};
  const struct {
    std::vector<column> columns;
    int asked;
    int granted;
  } cases[] = {{{long_text}, 500, 1048576 / 32001},
               {{long_text}, 32, 32},
               {{long_text}, 33, 32},
               {std::vector<column>(20, long_text), 500, 2},  // one row alone takes 640,020 bytes
               {std::vector<column>(20, long_text), 3, 2},
               {std::vector<column>(20, long_text), 2, 2},
               {std::vector<column>(40, long_text), 1, 1},
               {{{"C", SQL_CHAR, 1047}}, 1000, 1000},  // 1,048,000 bytes
               {{{"C", SQL_CHAR, 1048}}, 1000, 999}};
  const scoped_code_page page(latin);
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.columns.size() << " columns, rowset " << each.asked);
    answer("q", each.columns);
    ASSERT_TRUE(stmt.Prep("q", each.asked));
    EXPECT_EQ(stmt.RowSetSize(), each.granted);
    const auto options = logged({"SQLSetStmtOption"});
    EXPECT_TRUE(options.empty() || options.back() == "SQLSetStmtOption 9 " + std::to_string(each.granted));
  }
}

TEST_F(statement, does_not_believe_in_texts_of_two_gigabytes) {
  answer("q", {{"V", SQL_VARCHAR, 2147483647}, {"W", SQL_VARCHAR, ~SQLULEN{0}}}, {{"short", "also"}});
  ASSERT_TRUE(stmt.Prep("q", 500) && stmt.Execute());
  EXPECT_EQ(stmt.RowSetSize(), 2);
  EXPECT_LE(stmt.BufferBytes(), 20'000'000U);
  std::int64_t rows = 0;
  ASSERT_TRUE(stmt.ExtFetchNext(rows));
  EXPECT_EQ(stmt.Getc(1), value("short"));
  EXPECT_EQ(stmt.ColPrecision(1), 2147483647U);
}

TEST_F(statement, refuses_column_types_that_it_cannot_bind) {
  const struct {
    SQLSMALLINT type;
    bool prep;
    bool proc;
  } cases[] = {{SQL_BIT, false, false},          {SQL_TINYINT, false, false},  {SQL_BINARY, false, false},
               {SQL_VARBINARY, false, false},    {-95, false, false},          {13, false, false},
               {SQL_LONGVARBINARY, true, false}, {SQL_LONGVARCHAR, true, true}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.type);
    for (const bool procedure : {false, true}) {
      answer("q", {integer("I"), {"ODD", each.type, 10}, {"ALSO", SQL_BIT, 1}});
      if (procedure ? each.proc : each.prep) answer("q", {integer("I"), {"GOOD", each.type, 10}});
      const bool answered = procedure ? stmt.ProcPrep("q") : stmt.Prep("q");
      EXPECT_EQ(answered, procedure ? each.proc : each.prep);
      EXPECT_EQ(stmt.refused_column(), answered ? 0 : 2);
      if (answered) continue;
      EXPECT_TRUE(failed_with(answered, stmt, odbc_fault::column_type));
      EXPECT_EQ(stmt.Result(), -199);
      EXPECT_EQ(stmt.ColName(2) + ' ' + ODBCD::sql_type_name(stmt.ColType(2)),
                "ODD " + ODBCD::sql_type_name(each.type));
      EXPECT_EQ(stmt.NCols(), 0);
    }
  }
  answer("q", {integer("I")});
  EXPECT_TRUE(stmt.Prep("q"));
}

TEST_F(statement, describes_a_procedures_result_after_it_ran) {
  const auto call = [&](std::vector<column> columns, std::vector<std::vector<scripted::cell>> rows) {
    driver.answer_to("call p", {.columns = std::move(columns), .rows = std::move(rows), .columns_after_execute = true});
    return stmt.ProcPrep("call p", 3) && stmt.Execute();
  };
  ASSERT_TRUE(call({integer("I"), {"L", SQL_LONGVARCHAR, 50}}, {{1, "a"}, {2, "b"}}));
  EXPECT_EQ(stmt.NCols(), 0);
  EXPECT_EQ(stmt.ancols(), 2);
  ASSERT_TRUE(stmt.ProcSRS());
  EXPECT_EQ(stmt.ColWidth(2), 201U);
  EXPECT_EQ(stmt.BufferBytes(), 3U * 205U);
  std::int64_t rows = 0;
  ASSERT_TRUE(stmt.ExtFetchNext(rows));
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(stmt.Getc(2, 1), value("b"));

  ASSERT_TRUE(call({}, {}));
  EXPECT_TRUE(stmt.ProcSRS());
  EXPECT_EQ(stmt.NCols(), 0);

  // As wide as it is, with no lowering: 50 columns of 80,001 bytes for 3 rows.
  ASSERT_TRUE(call(std::vector<column>(50, {"L", SQL_LONGVARCHAR, 20000}), {}));
  EXPECT_TRUE(stmt.ProcSRS());
  EXPECT_EQ(stmt.BufferBytes(), 50U * 80001U * 3U);

  ASSERT_TRUE(call({integer("I"), {"B", SQL_LONGVARBINARY, 50}}, {}));
  EXPECT_FALSE(stmt.ProcSRS());
  EXPECT_EQ(stmt.Result(), -199);
  EXPECT_EQ(stmt.refused_column(), 2);

  odbcstmt empty;
  EXPECT_FALSE(empty.ProcSRS());
}

TEST_F(statement, checks_a_preparation_before_it_touches_anything) {
  answer("q", {integer("I")});
  ASSERT_TRUE(stmt.Prep("q", 1000));
  const std::uint64_t before = stmt.generation();
  const scoped_code_page page(latin);
  driver.clear_log();
  const struct {
    std::string text;
    int rowset;
    odbc_fault fault;
    int rc;
  } cases[] = {{"q", 0, odbc_fault::rowset_range, SQL_SUCCESS},
               {"q", 1001, odbc_fault::rowset_range, SQL_SUCCESS},
               {"q", -1, odbc_fault::rowset_range, SQL_SUCCESS},
               {"q", 65537, odbc_fault::rowset_range, SQL_SUCCESS},
               {std::string("q\0", 2), 1, odbc_fault::text_not_sendable, -299},
               {"Łódź", 1, odbc_fault::text_not_sendable, -299}};
  for (const auto& each : cases) {
    EXPECT_TRUE(failed_with(stmt.Prep(each.text, each.rowset), stmt, each.fault));
    EXPECT_TRUE(failed_with(stmt.ProcPrep(each.text, each.rowset), stmt, each.fault));
    EXPECT_EQ(stmt.Result(), each.rc);
  }
  EXPECT_TRUE(logged().empty());
  EXPECT_EQ(stmt.generation(), before);
  EXPECT_TRUE(stmt.Execute());  // what was prepared before still is
}

TEST_F(statement, sends_every_byte_of_a_long_text) {
  const scoped_code_page page(latin);
  driver.default_answer({});
  const std::string text = "insert 'é" + std::string(1'000'000, 'x') + "'";
  ASSERT_TRUE(stmt.Prep(text));
  EXPECT_EQ(driver.calls("SQLPrepare").at(0).args.at(0), current_code_page().from_utf8(text));
  ASSERT_TRUE(stmt.Prep(""));
  EXPECT_EQ(driver.calls("SQLPrepare").at(1).args.at(0), "");
}

TEST_F(statement, sets_the_rowset_of_the_handle_back) {
  answer("q", {integer("I")});
  const auto options = [&] {
    texts lines = logged({"SQLSetStmtOption"});
    driver.clear_log();
    return lines;
  };
  ASSERT_TRUE(stmt.Prep("q"));
  EXPECT_EQ(options(), texts{});
  ASSERT_TRUE(stmt.Prep("q", 500));
  EXPECT_EQ(options(), texts{"SQLSetStmtOption 9 500"});
  ASSERT_TRUE(stmt.Cancel() && stmt.Prep("q"));
  EXPECT_EQ(options(), texts{"SQLSetStmtOption 9 1"});
  // Also where a caller set it.
  ASSERT_TRUE(stmt.SetOption(SQL_ROWSET_SIZE, 20) && stmt.Prep("q"));
  EXPECT_EQ(options(), (texts{"SQLSetStmtOption 9 20", "SQLSetStmtOption 9 1"}));
  ASSERT_TRUE(stmt.Make(con) && stmt.SetScrollOptions(SQL_CONCUR_READ_ONLY, SQL_SCROLL_FORWARD_ONLY, 30) &&
              stmt.Prep("q"));
  EXPECT_EQ(options(), texts{"SQLSetStmtOption 9 1"});
  ASSERT_TRUE(stmt.Prep("q", 7) && stmt.Make(con) && stmt.Prep("q", 7));  // a new handle starts at 1
  EXPECT_EQ(options(), (texts{"SQLSetStmtOption 9 7", "SQLSetStmtOption 9 7"}));
}

TEST_F(statement, is_made_killed_and_made_again) {
  answer("q", {integer("I")});
  ASSERT_TRUE(stmt.Prep("q", 5));
  ASSERT_TRUE(stmt.Make(con));  // frees the handle that it has
  EXPECT_EQ(driver.open_statements(), 1U);
  EXPECT_FALSE(stmt.InUse());
  EXPECT_TRUE(stmt.Kill());
  EXPECT_TRUE(stmt.Kill());
  EXPECT_EQ(driver.open_statements(), 0U);
  EXPECT_EQ(stmt.Connection(), nullptr);

  EXPECT_TRUE(failed_with(stmt.Prep("q"), stmt, odbc_fault::prepare_without_handle));
  EXPECT_EQ(stmt.Result(), -99);
  EXPECT_FALSE(stmt.Execute() || stmt.Fetch());
  EXPECT_EQ(stmt.GetCursorName(), value(""));
  odbccon idle;
  EXPECT_TRUE(failed_with(stmt.Make(idle), stmt, odbc_fault::allocate_statement));
  EXPECT_EQ(stmt.Connection(), nullptr);

  ASSERT_TRUE(stmt.Make(con) && stmt.Prep("q", 5));
  driver.fail("SQLFreeStmt", 1, {});
  EXPECT_TRUE(failed_with(stmt.Kill(), stmt, odbc_fault::free_statement));
  EXPECT_TRUE(stmt.Free());
  EXPECT_EQ(stmt.Result(), 0);
  EXPECT_EQ(stmt.NCols() + stmt.Nparms(), 0);
  EXPECT_TRUE(con.registered_statements().empty());
}

TEST_F(statement, executes_again_after_closing_its_cursor) {
  answer("q", {integer("I")}, {{1}, {2}});
  ASSERT_TRUE(stmt.Prep("q") && stmt.Execute() && stmt.Fetch());
  driver.clear_log();
  ui.pointers.clear();
  ASSERT_TRUE(stmt.Execute());
  const texts lines = logged();
  ASSERT_GE(lines.size(), 2U);
  EXPECT_EQ(lines[0] + ", " + lines[1], "SQLFreeStmt 0, SQLExecute");
  EXPECT_EQ(ui.pointers, (std::vector{pointer_shape::hourglass, pointer_shape::standard}));
  ASSERT_TRUE(stmt.Fetch());
  EXPECT_EQ(stmt.Getc(1), value(1));
}

TEST_F(statement, cancels_only_what_is_in_use) {
  answer("q", {integer("I")}, {{1}});
  EXPECT_TRUE(stmt.Cancel());
  EXPECT_TRUE(logged().empty());
  const texts whole{"SQLCancel", "SQLFreeStmt 2", "SQLFreeStmt 3", "SQLFreeStmt 0"};
  EXPECT_TRUE(stmt.Cancel_unc());
  EXPECT_EQ(logged(), whole);
  ASSERT_TRUE(stmt.Prep("q", 5) && stmt.Execute());
  const std::uint64_t before = stmt.generation();
  driver.clear_log();
  EXPECT_TRUE(stmt.Cancel());
  EXPECT_EQ(logged(), whole);
  EXPECT_FALSE(stmt.InUse());
  EXPECT_EQ(stmt.NCols(), 0);
  EXPECT_EQ(stmt.RowSetSize(), 1);
  EXPECT_NE(stmt.generation(), before);

  ASSERT_TRUE(stmt.Prep("q"));
  driver.fail("SQLCancel", 1, {});
  EXPECT_TRUE(failed_with(stmt.Cancel(), stmt, odbc_fault::cancel));
  EXPECT_TRUE(stmt.InUse());
  EXPECT_EQ(stmt.NCols(), 1);
  driver.fail("SQLFreeStmt", 3, {});  // the one that closes
  EXPECT_TRUE(failed_with(stmt.Cancel(), stmt, odbc_fault::close_cursor));
  EXPECT_EQ(stmt.Result(), SQL_ERROR);
  EXPECT_FALSE(stmt.InUse());
}

TEST_F(statement, a_preparation_fails_when_the_one_before_cannot_be_cancelled) {
  answer("old", {integer("I"), integer("J")}, {{1, 2}});
  answer("new", {integer("N")});
  const struct {
    const char* function;
    unsigned nth;
    odbc_fault fault;
    bool in_use;
    int columns;
  } cases[] = {{"SQLCancel", 1, odbc_fault::cancel, true, 2},
               {"SQLFreeStmt", 3, odbc_fault::close_cursor, false, 0},  // unbind, reset and close of the cancel
               {"SQLFreeStmt", 4, odbc_fault::cancel, false, 0}};       // the preparation's own unbind
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.function << ' ' << each.nth);
    ASSERT_TRUE(stmt.Prep("old") && stmt.Execute());
    driver.fail(each.function, each.nth, {});
    driver.clear_log();
    EXPECT_TRUE(failed_with(stmt.Prep("new"), stmt, each.fault));
    EXPECT_EQ(stmt.Result(), SQL_ERROR);
    EXPECT_EQ(driver.count("SQLPrepare"), 0U);
    EXPECT_EQ(stmt.InUse(), each.in_use);
    EXPECT_EQ(stmt.NCols(), each.columns);
    EXPECT_TRUE(stmt.Prep("new"));
    EXPECT_EQ(stmt.ColName(1), "N");
  }
}

TEST_F(statement, compiles_executes_and_counts) {
  driver.answer_to("delete", {.row_count = 3});
  driver.answer_to("bad", {.execute_failure = scripted::failure{}});
  EXPECT_EQ(stmt.Row_Count_XX(), 0);
  EXPECT_TRUE(logged().empty());
  EXPECT_EQ(stmt.CEX_RCC("delete"), 3);
  EXPECT_EQ(driver.transactions(), texts{"commit"});
  EXPECT_EQ(stmt.CEX_RCC("bad"), -1);
  EXPECT_EQ(stmt.CEX_RCC("unknown"), -1);
  EXPECT_EQ(driver.transactions(), (texts{"commit", "rollback", "rollback"}));
  driver.answer_to("all", {.row_count = 5'000'000'000});
  ASSERT_TRUE(stmt.CEX("all"));
  EXPECT_EQ(stmt.RowCount(), 5'000'000'000);
  driver.fail("SQLRowCount", 1, {});
  EXPECT_EQ(stmt.RowCount(), -1);
  EXPECT_EQ(stmt.last_error(), error_number(odbc_fault::row_count));
  odbcstmt empty;
  EXPECT_EQ(empty.CEX_RCC("delete"), -1);
}

TEST_F(statement, finds_columns_by_name) {
  answer("q", {{" Name ", SQL_CHAR, 5},
               {"NAME", SQL_CHAR, 5, 0, SQL_NO_NULLS},
               {"größe", SQL_DECIMAL, 9, 2},
               {std::string(600, 'n'), SQL_CHAR, 1}});
  ASSERT_TRUE(stmt.Prep("q"));
  EXPECT_EQ(stmt.GetColNum(" name "), 1);
  EXPECT_EQ(stmt.GetColNum("GRÖßE"), 3);
  EXPECT_EQ(stmt.GetColNum("none"), 0);
  EXPECT_EQ(stmt.GetColNum(""), 0);
  EXPECT_EQ(stmt.ColNullable(2), SQL_NO_NULLS);
  EXPECT_EQ(stmt.ColScale(3), 2);
  EXPECT_EQ(stmt.ColPrecision(3), 9U);
  EXPECT_EQ(stmt.ColName(4), std::string(511, 'n'));
  driver.fail("SQLNumResultCols", 1, {});
  EXPECT_EQ(stmt.ancols(), -1);
}

TEST_F(statement, names_its_cursor_and_sets_options) {
  const scoped_code_page page(latin);
  EXPECT_TRUE(stmt.SetCursorName("CÜR"));
  EXPECT_EQ(logged({"SQLSetCursorName"}), texts{"SQLSetCursorName C\xDCR"});
  EXPECT_EQ(stmt.GetCursorName(), value("CÜR"));
  EXPECT_TRUE(failed_with(stmt.SetCursorName("Ł"), stmt, odbc_fault::text_not_sendable));
  driver.fail("SQLSetCursorName", 1, {});
  EXPECT_TRUE(failed_with(stmt.SetCursorName("X"), stmt, odbc_fault::set_cursor_name));
  driver.fail("SQLGetCursorName", 1, {});
  EXPECT_TRUE(stmt.GetCursorName().is_empty());
  EXPECT_EQ(stmt.last_error(), error_number(odbc_fault::cursor_name));
  next_manager_faults().cursor_name_length = SQLSMALLINT{-1};
  EXPECT_TRUE(stmt.GetCursorName().is_empty());
  EXPECT_EQ(stmt.last_error(), error_number(odbc_fault::cursor_name_length));
  next_manager_faults().cursor_name_length = SQLSMALLINT{32767};  // longer than the buffer
  EXPECT_EQ(stmt.GetCursorName_XX().substr(0, 4), "CÜR");

  EXPECT_TRUE(stmt.SetOption(SQL_MAX_ROWS, 7));
  driver.fail("SQLSetStmtOption", 1, {});
  EXPECT_TRUE(failed_with(stmt.SetOption(SQL_MAX_ROWS, 7), stmt, odbc_fault::statement_option));
  EXPECT_TRUE(stmt.SetScrollOptions(SQL_CONCUR_READ_ONLY, SQL_SCROLL_FORWARD_ONLY, 10));
  driver.fail("SQLSetScrollOptions", 1, {});
  EXPECT_TRUE(failed_with(stmt.SetScrollOptions(SQL_CONCUR_READ_ONLY, SQL_SCROLL_FORWARD_ONLY, 10), stmt,
                          odbc_fault::scroll_options));
}

}  // namespace
