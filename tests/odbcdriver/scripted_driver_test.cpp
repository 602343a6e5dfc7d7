// The scripted driver as programs see it: through the driver manager, with ODBC 2.x calls.
#include "scripted_driver.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace scripted;

namespace {

SQLCHAR* sql(const char* text) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text)); }

class scripted_driver : public testing::Test {
 protected:
  static inline std::filesystem::path folder;
  driver& d = control();
  SQLHENV env = nullptr;
  SQLHDBC con = nullptr;
  SQLHSTMT stmt = nullptr;

  // The driver manager reads where its configuration lies once, at its first call.
  static void SetUpTestSuite() {
    std::string pattern = (std::filesystem::temp_directory_path() / "scripted_driver_XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    // Without ExFetchMapping=0 the driver manager turns SQLFetch of a 2.x driver into SQLExtendedFetch.
    std::ofstream(folder / "odbcinst.ini") << "[Scripted]\nDriver=" SCRIPTED_DRIVER_PATH "\nExFetchMapping=0\n";
    std::ofstream(folder / "odbc.ini") << "[scripted_dsn]\nDriver=Scripted\n";
    setenv("ODBCSYSINI", folder.c_str(), 1);
    setenv("ODBCINI", (folder / "odbc.ini").c_str(), 1);
  }
  static void TearDownTestSuite() { std::filesystem::remove_all(folder); }
  void SetUp() override {
    d.reset();
    ASSERT_EQ(SQLAllocEnv(&env), SQL_SUCCESS);
    ASSERT_EQ(SQLAllocConnect(env, &con), SQL_SUCCESS);
  }
  void TearDown() override {
    d.reset();
    if (stmt) SQLFreeStmt(stmt, SQL_DROP);
    SQLDisconnect(con);
    SQLFreeConnect(con);
    SQLFreeEnv(env);
    EXPECT_EQ(d.open_environments() + d.open_connections() + d.open_statements(), 0U);
  }
  SQLRETURN connect() { return SQLConnect(con, sql("scripted_dsn"), SQL_NTS, sql("me"), SQL_NTS, sql("pw"), SQL_NTS); }
  void open() {
    ASSERT_EQ(connect(), SQL_SUCCESS);
    ASSERT_EQ(SQLAllocStmt(con, &stmt), SQL_SUCCESS);
  }
  // Of all records in order: the first characters of "state native message".
  std::string errors(std::size_t length) {
    std::array<char, 6> state{};
    std::array<char, 300> text{};
    SQLINTEGER native = 0;
    std::string all;
    while (SQLError(env, con, stmt, sql(state.data()), &native, sql(text.data()), text.size(), nullptr) == SQL_SUCCESS)
      all += (std::string(state.data()) + " " + std::to_string(native) + " " + text.data()).substr(0, length) + ";";
    return all;
  }
};

answer people() {
  answer result;
  result.columns = {{"ID", SQL_INTEGER, 10, 0, SQL_NO_NULLS}, {"NAME", SQL_VARCHAR, 20}};
  result.rows = {{1, "Ada"}, {2, nullptr}, {3, std::string("a\0b\xff", 4)}, {4, "Wilhelmina"}, {"many", "Five"}};
  return result;
}

TEST_F(scripted_driver, delivers_rowsets_in_the_bound_types_and_keeps_to_the_buffers) {
  open();
  d.answer_to("select people", people());
  ASSERT_EQ(SQLPrepare(stmt, sql("select people; rest"), 13), SQL_SUCCESS);
  std::array<char, 10> name{};
  SQLSMALLINT used = 0, type = 0, scale = 9, nullable = 9;
  SQLULEN precision = 0, fetched = 0;
  EXPECT_EQ(SQLDescribeCol(stmt, 2, sql(name.data()), 3, &used, &type, &precision, &scale, &nullable), 1);
  EXPECT_EQ(std::tuple(std::string(name.data()), used, type, precision, scale, nullable),
            std::tuple("NA", 4, SQL_VARCHAR, SQLULEN{20}, 0, SQL_NULLABLE));
  ASSERT_EQ(SQLExecute(stmt), SQL_SUCCESS);
  std::array<SQLINTEGER, 4> ids{};
  std::array<std::array<char, 6>, 4> names{};
  std::array<SQLLEN, 4> lengths{};
  std::array<SQLUSMALLINT, 4> status{};
  names[3].fill('#');  // behind the rowset
  SQLSetStmtOption(stmt, SQL_ROWSET_SIZE, 3);
  SQLBindCol(stmt, 1, SQL_C_LONG, ids.data(), 0, nullptr);
  SQLBindCol(stmt, 2, SQL_C_CHAR, names.data(), 6, lengths.data());
  ASSERT_EQ(SQLExtendedFetch(stmt, SQL_FETCH_NEXT, 1, &fetched, status.data()), SQL_SUCCESS);
  EXPECT_EQ(fetched, 3U);
  EXPECT_EQ(ids, (std::array<SQLINTEGER, 4>{1, 2, 3, 0}));
  EXPECT_EQ(lengths, (std::array<SQLLEN, 4>{3, SQL_NULL_DATA, 4, 0}));
  EXPECT_EQ(std::string(names[2].data(), 12), std::string("a\0b\xff\0\0######", 12));

  d.lie_about_rows_fetched(7);  // the last rowset: a cut text, a text that is no number, no third row
  ASSERT_EQ(SQLExtendedFetch(stmt, SQL_FETCH_NEXT, 1, &fetched, status.data()), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(errors(5), "22005;01004;");
  EXPECT_EQ(std::tuple(fetched, std::string(names[0].data()), lengths[0]), std::tuple(7U, "Wilhe", 10));
  EXPECT_EQ(status, (std::array<SQLUSMALLINT, 4>{SQL_ROW_SUCCESS, SQL_ROW_ERROR, SQL_ROW_NOROW, 0}));
  EXPECT_EQ(SQLExtendedFetch(stmt, SQL_FETCH_NEXT, 1, &fetched, status.data()), SQL_NO_DATA_FOUND);
}

TEST_F(scripted_driver, converts_between_cells_and_c_types) {
  struct conversion {
    cell from;
    SQLSMALLINT c_type;
    std::string bytes;
    SQLLEN length;  // 99: there is no such conversion
  };
  const DATE_STRUCT day{2001, 5, 17};
  const conversion cases[] = {
      {-12, SQL_C_CHAR, "-12", 3},
      {0.1, SQL_C_CHAR, "0.1", 3},
      {TIMESTAMP_STRUCT{2001, 5, 17, 1, 2, 3, 4000}, SQL_C_CHAR, "2001-05-17 01:02:03.000004", 26},
      {day, SQL_C_DATE, std::string(reinterpret_cast<const char*>(&day), sizeof day), 6},
      {" 258 ", SQL_C_SHORT, "\x02\x01", 2},
      {cell("x").reporting(-4), SQL_C_CHAR, "x", -4},
      {cell().reporting(-7), SQL_C_CHAR, "", -7},
      {70000, SQL_C_SHORT, "", 99},
      {"", SQL_C_DOUBLE, "", 99},
      {day, SQL_C_LONG, "", 99}};
  open();
  for (const conversion& one : cases) {
    answer result;
    result.columns = {{"C", SQL_CHAR, 30}};
    result.generated = generated_rows{1, [&](SQLULEN, std::size_t) { return one.from; }};
    d.default_answer(result);
    std::array<char, 40> buffer{};
    SQLLEN length = 99;
    ASSERT_EQ(SQLExecDirect(stmt, sql("anything"), SQL_NTS), SQL_SUCCESS);
    ASSERT_EQ(SQLBindCol(stmt, 1, one.c_type, buffer.data(), buffer.size(), &length), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(stmt), one.length == 99 ? SQL_ERROR : SQL_SUCCESS) << one.c_type;
    EXPECT_EQ(std::string(buffer.data(), one.bytes.size()), one.bytes);
    EXPECT_EQ(length, one.length) << one.bytes;
    SQLFreeStmt(stmt, SQL_CLOSE);
  }
}

TEST_F(scripted_driver, shows_parameters_as_bound_and_writes_outputs) {
  open();
  answer procedure;
  procedure.parameters = {{SQL_CHAR, 10}, {SQL_INTEGER, 10}};
  procedure.outputs = {{1, "not for input"}, {2, 77}};
  procedure.columns = {{"R", SQL_INTEGER, 10}};
  procedure.columns_after_execute = true;
  d.answer_to("call p(?,?)", procedure);
  ASSERT_EQ(SQLPrepare(stmt, sql("call p(?,?)"), SQL_NTS), SQL_SUCCESS);
  std::array<char, 8> texts{'a', 'b', 'c', 'd', 'x', 'y', '\0', '#'};
  std::array<SQLLEN, 2> words{4, SQL_NTS};
  std::array<SQLINTEGER, 2> numbers{5, 6};
  SQLULEN row = 0;
  SQLSMALLINT before = 9, after = 9;
  SQLBindParameter(stmt, 1, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_CHAR, 10, 0, texts.data(), 4, words.data());
  EXPECT_EQ(SQLExecute(stmt), SQL_ERROR);
  EXPECT_EQ(errors(5), "07001;");  // one is not bound
  SQLBindParameter(stmt, 2, SQL_PARAM_INPUT_OUTPUT, SQL_C_SLONG, SQL_INTEGER, 10, 0, numbers.data(), 0, nullptr);
  ASSERT_EQ(SQLParamOptions(stmt, 2, &row), SQL_SUCCESS);
  SQLNumResultCols(stmt, &before);
  ASSERT_EQ(SQLExecute(stmt), SQL_SUCCESS);
  SQLNumResultCols(stmt, &after);
  EXPECT_EQ(std::tuple(before, after, row, texts[0], numbers[0], numbers[1]), std::tuple(0, 1, 2U, 'a', 77, 6));
  ASSERT_EQ(d.executions().size(), 1U);  // the one that failed left none
  const auto seen = d.executions()[0].rows;
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[0][0].bytes + "/" + seen[1][0].bytes, "abcd/xy");
  EXPECT_EQ(seen[1][0].length_word, SQL_NTS);
  EXPECT_EQ(seen[1][1].bytes, std::string("\6\0\0\0", 4));
  SQLCancel(stmt);  // closes the cursor, so that the statement can run again
  words[1] = 5;     // beyond its four bytes
  EXPECT_EQ(SQLExecute(stmt), SQL_ERROR);
  EXPECT_EQ(errors(5), "S1090;");
}

TEST_F(scripted_driver, fails_the_calls_it_is_told_to_and_keeps_a_handle_that_fails_to_go) {
  open();
  d.answer_to("select people", people());
  const failure lost{SQL_ERROR, "08S01", -7, "link gone"};
  for (unsigned nth = 1; nth <= 4; ++nth) {
    d.fail_nth_call(nth, lost);
    const std::array<SQLRETURN, 4> codes{SQLPrepare(stmt, sql("select people"), SQL_NTS), SQLExecute(stmt),
                                         SQLFetch(stmt), SQLFreeStmt(stmt, SQL_CLOSE)};
    EXPECT_EQ(d.faults_fired(), nth);
    for (unsigned i = 0; i < nth; ++i) EXPECT_EQ(codes[i], i + 1 == nth ? SQL_ERROR : SQL_SUCCESS) << nth;
    SQLFreeStmt(stmt, SQL_CLOSE);
  }
  d.fail("SQLFetch", 2, lost, 2);
  SQLExecDirect(stmt, sql("select people"), SQL_NTS);
  const std::array<SQLRETURN, 3> codes{SQLFetch(stmt), SQLFetch(stmt), SQLFetch(stmt)};
  EXPECT_EQ(codes, (std::array<SQLRETURN, 3>{SQL_SUCCESS, SQL_ERROR, SQL_ERROR}));
  EXPECT_EQ(errors(18), "08S01 -7 link gone;");
  EXPECT_EQ(SQLFetch(stmt), SQL_SUCCESS);
  d.fail("SQLFreeStmt", 1, lost);
  EXPECT_EQ(SQLFreeStmt(stmt, SQL_DROP), SQL_ERROR);
  EXPECT_EQ(d.open_statements(), 1U);
  EXPECT_EQ(SQLFreeStmt(stmt, SQL_DROP), SQL_SUCCESS);
  stmt = nullptr;
  EXPECT_EQ(d.open_statements(), 0U);
  d.fail("SQLDisconnect", 1, lost);
  EXPECT_EQ(SQLDisconnect(con), SQL_ERROR);
  EXPECT_EQ(SQLTransact(env, con, SQL_ROLLBACK), SQL_SUCCESS);  // still connected
  EXPECT_EQ(d.transactions(), std::vector<std::string>{"rollback"});
}

TEST_F(scripted_driver, refuses_logins_functions_and_texts_it_has_no_answer_for) {
  d.require_login("me", "other");
  EXPECT_EQ(connect(), SQL_ERROR);
  EXPECT_EQ(errors(5), "28000;");
  d.reset();
  d.set_unsupported(SQL_API_SQLEXTENDEDFETCH);
  open();
  EXPECT_EQ(SQLPrepare(stmt, sql("select nothing"), SQL_NTS), SQL_ERROR);
  // 42000 as the driver manager tells an ODBC 2 program
  EXPECT_EQ(errors(99), "37000 -104 [Sorvane][Scripted driver] no answer for the statement: select nothing;");
  d.catalog_answer("SQLTables", people());
  ASSERT_EQ(SQLTables(stmt, nullptr, 0, sql("LIBRARY"), 3, sql("%"), SQL_NTS, nullptr, 0), SQL_SUCCESS);
  EXPECT_EQ(d.calls("SQLTables").at(0).args, (std::vector<std::string>{"<null>", "LIB", "%", "<null>"}));
  SQLULEN fetched = 0;
  EXPECT_EQ(SQLExtendedFetch(stmt, SQL_FETCH_NEXT, 1, &fetched, nullptr), SQL_ERROR);
  EXPECT_EQ(errors(5), "IM001;");
  EXPECT_EQ(SQLFetch(stmt), SQL_SUCCESS);
  d.set_info_raw(SQL_QUALIFIER_NAME_SEPARATOR, "/", -4);
  std::array<char, 2> separator{};
  SQLSMALLINT length = 0;
  EXPECT_EQ(SQLGetInfo(con, SQL_QUALIFIER_NAME_SEPARATOR, separator.data(), 2, &length), SQL_SUCCESS);
  EXPECT_EQ(std::string(separator.data()) + std::to_string(length), "/-4");
}

}  // namespace
