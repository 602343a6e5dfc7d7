// Parameter arrays: the layout and its limits on the scripted driver, and whole loads on real databases.
#include <cstring>

#include "odbc/engine_fixture.h"
#include "support/fault_sweep.h"
#include "support/scoped_state.h"

namespace {

using arrays = scripted_test;
using scripted::bound_parameter;

constexpr date_time moment{37028, 49530};  // 2001-05-17 13:45:30

const std::vector<scripted::parameter> one_of_each{{SQL_SMALLINT, 5}, {SQL_DECIMAL, 9, 2}, {SQL_CHAR, 4},
                                                   {SQL_DATE, 10},    {SQL_TIME, 8},       {SQL_TIMESTAMP, 26, 6}};

template <typename T>
std::string bytes_of(T number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}
// What the last execution sent, row by row: the bytes of each marker, "NULL" for Null.
std::vector<texts> sent(scripted::driver& driver) {
  std::vector<texts> rows;
  const scripted::execution last = driver.executions().back();
  for (const auto& row : last.rows) {
    rows.emplace_back();
    for (const bound_parameter& each : row)
      rows.back().push_back(each.length_word == SQL_NULL_DATA
                                ? "NULL"
                                : each.bytes.substr(0, static_cast<std::size_t>(*each.length_word)));
  }
  return rows;
}

TEST_F(arrays, are_bound_column_by_column_and_null_at_first) {
  const scoped_code_page page("ISO-8859-15");
  answer_markers("q", one_of_each);
  ASSERT_TRUE(stmt.MrPrep("q", 500));
  EXPECT_EQ(logged(),
            (texts{"SQLPrepare q", "SQLNumParams", "SQLDescribeParam 1", "SQLDescribeParam 2", "SQLDescribeParam 3",
                   "SQLDescribeParam 4", "SQLDescribeParam 5", "SQLDescribeParam 6", "SQLFreeStmt 3",
                   "SQLBindParameter 1 2 4 5 5 0 set 4 set", "SQLBindParameter 2 2 8 3 9 2 set 8 set",
                   "SQLBindParameter 3 2 1 1 4 0 set 5 set", "SQLBindParameter 4 2 1 9 10 0 set 11 set",
                   "SQLBindParameter 5 2 10 10 8 0 set 6 set", "SQLBindParameter 6 2 1 11 26 6 set 27 set"}));
  EXPECT_EQ(stmt.MrPrepRows(), 500);
  EXPECT_EQ(stmt.NCols(), 0);
  EXPECT_EQ(stmt.ParamOffset(6), 500U * (4 + 8 + 5 + 11 + 6));
  ASSERT_TRUE(stmt.MrExecute(2));
  EXPECT_EQ(sent(driver), std::vector<texts>(2, texts(6, "NULL")));
  EXPECT_EQ(stmt.ParamOptionValue(), 2);
  for (const int rows : {0, 1001}) EXPECT_TRUE(failed_with(stmt.MrPrep("q", rows), stmt, odbc_fault::rowset_range));
  odbcstmt empty;
  EXPECT_TRUE(failed_with(empty.MrPrep("q", 5), empty, odbc_fault::prepare_without_handle));
  EXPECT_EQ(empty.Result(), odbcstmt::rc_no_handle);
}

TEST_F(arrays, a_cell_takes_what_fits_and_keeps_its_value_otherwise) {
  const scoped_code_page page("ISO-8859-15");
  answer_markers("q", one_of_each);
  ASSERT_TRUE(stmt.MrPrep("q", 3));
  const struct {
    int marker;
    value given;
    std::optional<std::string> bytes;  // nothing: refused
  } cases[] = {{1, "12", bytes_of(12)},
               {1, 3e9, {}},
               {1, error_value{5}, {}},
               {2, -12.5, bytes_of(-12.5)},
               {2, "many", {}},
               {3, "äöü€", "\xE4\xF6\xFC\xA4"},
               {3, "", ""},
               {3, 1.5, "1.5"},
               {3, "ABCDE", {}},
               {3, "Ł", {}},
               {3, array{1, {5}}, {}},
               {4, moment, "2001-05-17"},
               {4, "soon", {}},
               {5, moment, {}},
               {6, moment, "2001-05-17 13:45:30.000000"},
               {6, date_time{37028, 0}, "2001-05-17 00:00:00.000000"},
               {0, 1, {}},
               {7, 1, {}}};
  std::vector<texts> expected(3, texts(6, "NULL"));
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << "marker " << each.marker << ": " << testing::PrintToString(each.given));
    EXPECT_EQ(stmt.MrBindParm(each.given, each.marker, 1), each.bytes.has_value());
    if (each.bytes) expected[1][static_cast<std::size_t>(each.marker - 1)] = *each.bytes;
    ASSERT_TRUE(stmt.MrExecute(3));
    EXPECT_EQ(sent(driver), expected);
  }
  EXPECT_TRUE(stmt.MrBindParm(null_t{}, 3, 1));
  EXPECT_TRUE(stmt.MrBindParm(1, 1, 2) && !stmt.MrBindParm(1, 1, 3) && !stmt.MrBindParm(1, 1, -1));
  for (const int rows : {0, 4, -1}) EXPECT_TRUE(failed_with(stmt.MrExecute(rows), stmt, odbc_fault::rowset_range));
  EXPECT_TRUE(failed_with(stmt.BindV(std::vector<value>(6, 1)), stmt, odbc_fault::bind_on_rows));
  ASSERT_TRUE(stmt.Prep("q"));
  EXPECT_FALSE(stmt.MrBindParm(1, 1, 0));
}

TEST_F(arrays, a_single_row_afterwards_is_sent_alone) {
  answer_markers("q", {{SQL_INTEGER, 10}});
  answer("rows", {integer("I")}, {{1}});
  const auto one = [&] { return stmt.BindV(std::vector<value>{7}); };
  for (const bool again : {false, true}) {
    ASSERT_TRUE(stmt.MrPrep("q", 3) && stmt.MrExecute(3));
    EXPECT_EQ(sent(driver).size(), 3U);
    ASSERT_TRUE(again ? stmt.ProcPrep("q") : stmt.Prep("q") && one());
    ASSERT_TRUE(stmt.Execute()) << diagnostic_text(stmt.ErrData());
    EXPECT_EQ(sent(driver).size(), 1U);
  }
  matrix values(1);
  values.grow(2);
  values.at(1, 0) = 1;
  values.at(1, 1) = 2;
  ASSERT_TRUE(stmt.Prep("q") && stmt.BindVM(values) && stmt.Execute());
  EXPECT_EQ(sent(driver), (std::vector<texts>{{bytes_of(1)}, {bytes_of(2)}}));
  ASSERT_TRUE(one() && stmt.Execute());
  EXPECT_EQ(sent(driver), (std::vector<texts>{{bytes_of(7)}}));
}

TEST_F(arrays, long_texts_widen_their_cells_and_nothing_moves) {
  const std::string longest(65'536, 'x');
  answer_markers("q", {{SQL_INTEGER, 10}, {SQL_LONGVARCHAR, 65'536}, {SQL_LONGVARCHAR, 65'536}});
  ASSERT_TRUE(stmt.MrPrep("q", 1000));
  EXPECT_LT(stmt.ParamWidth(2), 1000U);
  ASSERT_TRUE(stmt.MrBindParm(5, 1, 999) && stmt.MrBindParm("short", 2, 0) && stmt.MrBindParm("é", 3, 999));
  ASSERT_TRUE(stmt.MrBindParm(std::string(300, 'y'), 2, 1) && stmt.MrBindParm(longest, 2, 2));
  EXPECT_FALSE(stmt.MrBindParm(longest + "x", 2, 0));
  ASSERT_TRUE(stmt.MrExecute(1000)) << diagnostic_text(stmt.ErrData());
  const auto rows = sent(driver);
  EXPECT_EQ(rows[0], (texts{"NULL", "short", "NULL"}));
  EXPECT_EQ(rows[1][1], std::string(300, 'y'));
  EXPECT_EQ(rows[2][1], longest);
  EXPECT_EQ(rows[999], (texts{bytes_of(5), "NULL", "é"}));
}

TEST_F(arrays, a_driver_that_takes_no_input_output_arrays_gets_input_alone) {
  answer_markers("q", {{SQL_INTEGER, 10}});
  const scripted::failure refusal{SQL_ERROR, "S1C00", 0, "not capable"};
  for (const char* refusing : {"SQLBindParameter", "SQLExecute"}) {
    SCOPED_TRACE(refusing);
    driver.fail(refusing, 1, refusal);
    ASSERT_TRUE(stmt.MrPrep("q", 2) && stmt.MrBindParm(5, 1, 1) && stmt.MrExecute(2));
    EXPECT_EQ(driver.executions().back().rows[1][0].io_type, SQL_PARAM_INPUT);
    EXPECT_EQ(sent(driver), (std::vector<texts>{{"NULL"}, {bytes_of(5)}}));
  }
  // Anything else is told as it is, and once.
  driver.fail("SQLExecute", 1, {SQL_ERROR, "23000", -803, "duplicate"}, 2);
  ASSERT_TRUE(stmt.MrPrep("q", 2));
  EXPECT_TRUE(failed_with(stmt.MrExecute(2), stmt, odbc_fault::execute));
  EXPECT_EQ(stmt.ErrData().native, -803);
  EXPECT_NE(stmt.ErrData().native, -803);
  driver.answer_to("q", {.parameters = {{SQL_INTEGER, 10}},
                         .execute_failure = scripted::failure{SQL_ERROR, "S1C00", 0, "late"},
                         .failing_parameter_row = 2});
  driver.clear_faults();
  driver.clear_log();
  ASSERT_TRUE(stmt.MrPrep("q", 3));
  EXPECT_TRUE(failed_with(stmt.MrExecute(3), stmt, odbc_fault::execute));
  EXPECT_EQ(driver.count("SQLExecute"), 1U);  // a row was through: not sent again
  EXPECT_EQ(stmt.ParamOptionValue(), 2);
}

matrix column_of(const std::vector<value>& values) {
  matrix made(1, {0, 5});  // whatever the bounds
  made.grow(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) made.at(0, i + 5) = values[i];
  return made;
}

TEST_F(arrays, a_matrix_is_stored_by_the_described_kinds) {
  const scoped_code_page page("ISO-8859-15");
  const auto fault_of = [&](scripted::parameter marker, const value& given) {
    answer_markers("q", {marker});
    EXPECT_TRUE(stmt.Prep("q"));
    return stmt.BindVM(column_of({null_t{}, given})) && stmt.Execute() ? 0 : stmt.last_error();
  };
  const struct {
    scripted::parameter marker;
    value given;
    std::optional<std::string> bytes;
    std::int32_t fault = 0;
  } cases[] = {{{SQL_INTEGER, 10}, "12", bytes_of(12)},
               {{SQL_DOUBLE, 15}, 1, bytes_of(1.0)},
               {{SQL_CHAR, 4}, "äöü€", "\xE4\xF6\xFC\xA4"},
               {{SQL_DATE, 10}, moment, bytes_of(DATE_STRUCT{2001, 5, 17})},
               {{SQL_TIME, 8}, moment, bytes_of(TIME_STRUCT{13, 45, 30})},
               {{SQL_TIMESTAMP, 26}, moment, bytes_of(TIMESTAMP_STRUCT{2001, 5, 17, 13, 45, 30, 0})},
               {{SQL_CHAR, 4}, "ABCDE", {}, error_number(odbc_fault::put_no_text)},
               {{SQL_CHAR, 4}, 12, {}, error_number(odbc_fault::put_no_text)},
               {{SQL_CHAR, 4}, "Ł", {}, error_number(odbc_fault::text_not_sendable)},
               {{SQL_INTEGER, 10}, "x", {}, type_mismatch},
               {{SQL_INTEGER, 10}, error_value{1}, {}, error_number(odbc_fault::put_error_value)},
               {{SQL_BINARY, 10}, "x", {}, error_number(odbc_fault::matrix_unsupported)}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.marker.sql_type << ": " << testing::PrintToString(each.given));
    EXPECT_EQ(fault_of(each.marker, each.given), each.fault);
    if (each.bytes) {
      EXPECT_EQ(sent(driver), (std::vector<texts>{{"NULL"}, {*each.bytes}}));
    }
  }
  // A million wide cells would be 65 GB; the texts that are there decide.
  EXPECT_EQ(fault_of({SQL_LONGVARCHAR, 65'536}, "short"), 0);
  ASSERT_TRUE(stmt.BindVM(column_of(std::vector<value>(100'000, "short"))));
  EXPECT_EQ(stmt.ParamWidth(1), 6U);

  odbcstmt empty;
  EXPECT_TRUE(failed_with(empty.BindVM(column_of({1})), empty, odbc_fault::matrix_without_handle));
  EXPECT_TRUE(failed_with(stmt.BindVM(matrix(2)), stmt, odbc_fault::matrix_markers));
  EXPECT_TRUE(failed_with(stmt.BindVM(matrix(1)), stmt, odbc_fault::parameter_block));
  answer_markers("none", {});
  EXPECT_TRUE(stmt.Prep("none"));
  EXPECT_TRUE(failed_with(stmt.BindVM(column_of({1})), stmt, odbc_fault::matrix_without_markers));
  std::int32_t number = 0;
  EXPECT_FALSE(trap(number, [&] { stmt.PutBD(1, 1, 5, 0); }));
  EXPECT_EQ(number, error_number(odbc_fault::put_unsupported));
}

// Each call failing in turn: the documented number, and the next use works.
TEST_F(arrays, every_call_may_fail) {
  answer_markers("q", {{SQL_INTEGER, 10}, {SQL_VARCHAR, 10}});
  const std::map<std::string, odbc_fault> numbers{{"SQLCancel", odbc_fault::cancel},
                                                  {"SQLPrepare", odbc_fault::prepare},
                                                  {"SQLNumParams", odbc_fault::count_parameters},
                                                  {"SQLDescribeParam", odbc_fault::describe_parameter},
                                                  {"SQLFreeStmt", odbc_fault::bind_rows},
                                                  {"SQLBindParameter", odbc_fault::bind_rows},
                                                  {"SQLParamOptions", odbc_fault::parameter_options},
                                                  {"SQLExecute", odbc_fault::execute}};
  const auto load = [&] {
    return stmt.MrPrep("q", 5) && stmt.MrBindParm(1, 1, 0) && stmt.MrBindParm("a", 2, 0) && stmt.MrExecute(5);
  };
  EXPECT_EQ(fault_sweep({.setup = [&] { ASSERT_TRUE(stmt.Make(con)); },
                         .operation = load,
                         .check =
                             [&](const scripted::call& struck, bool answered) {
                               // The cursor that Execute closes need not be open.
                               if (struck.function == "SQLFreeStmt" && struck.args.front() == "0") return;
                               EXPECT_TRUE(failed_with(answered, stmt, numbers.at(struck.function)));
                               EXPECT_EQ(stmt.ErrData().native, -4711);
                               EXPECT_TRUE(load());
                               EXPECT_EQ(sent(driver).at(0), (texts{bytes_of(1), "a"}));
                             }}),
            10U);
  const matrix one = column_of({1});
  answer_markers("q", {{SQL_INTEGER, 10}});
  EXPECT_EQ(fault_sweep({.setup = [&] { ASSERT_TRUE(stmt.Make(con) && stmt.Prep("q")); },
                         .operation = [&] { return stmt.BindVM(one) && stmt.Execute(); },
                         .check =
                             [&](const scripted::call& struck, bool answered) {
                               if (struck.function == "SQLFreeStmt") return;
                               const odbc_fault number = struck.function == "SQLBindParameter"
                                                             ? odbc_fault::bind_matrix
                                                             : numbers.at(struck.function);
                               EXPECT_TRUE(failed_with(answered, stmt, number));
                               EXPECT_TRUE(stmt.BindVM(one) && stmt.Execute());
                             }}),
            5U);
}

TEST_P(engines, load_whole_blocks_and_a_last_short_one) {
  ASSERT_TRUE(
      runs("create temporary table loaded(i integer, t varchar(30), d double precision, a decimal(9,2), on_day "
           "date, at_moment timestamp)"));
  constexpr int rows = 1037;
  ASSERT_TRUE(stmt.MrPrep("insert into loaded values(?,?,?,?,?,?)", 500)) << diagnostic_text(stmt.ErrData());
  for (int first = 0; first < rows; first += 500) {
    const int count = std::min(500, rows - first);
    for (int row = 0; row < count; ++row) {
      const int i = first + row;
      const value text = i % 10 == 0 ? value(null_t{}) : value(fmt::format("Müller € {}", i));
      const std::vector<value> cells{i, text, i / 8.0, i / 4.0, date_time{37028 + i, 0}, date_time{37028, i}};
      for (int marker = 1; marker <= 6; ++marker)
        ASSERT_TRUE(stmt.MrBindParm(cells[static_cast<std::size_t>(marker - 1)], marker, row)) << marker;
    }
    ASSERT_TRUE(stmt.MrExecute(count)) << diagnostic_text(stmt.ErrData());
    EXPECT_EQ(stmt.ParamOptionValue(), count);
  }
  ASSERT_TRUE(stmt.Prep("insert into loaded(i) values(?)") && stmt.BindV(std::vector<value>{-1}) && stmt.Execute());
  matrix more(1);
  more.grow(2);
  more.at(1, 0) = -2;
  more.at(1, 1) = -3;
  const bool text_markers = stmt.Pkind(1) == parameter_kind::text;
  if (text_markers) more.at(1, 0) = "-2", more.at(1, 1) = "-3";
  ASSERT_TRUE(stmt.BindVM(more) && stmt.Execute()) << diagnostic_text(stmt.ErrData());
  EXPECT_EQ(one(stmt, "select count(*) from loaded"), "1040");
  EXPECT_EQ(one(stmt, "select count(*) from loaded where i < 0"), "3");
  EXPECT_EQ(one(stmt, "select sum(i) from loaded where i >= 0"), std::to_string(rows * (rows - 1) / 2));
  EXPECT_EQ(one(stmt, "select count(t) from loaded"), std::to_string(rows - 104));
  ASSERT_TRUE(runs("select t, d, a, on_day, at_moment from loaded where i = 1033") && stmt.Fetch());
  EXPECT_EQ(stmt.Getc(1), value("Müller € 1033"));
  EXPECT_EQ(stmt.Getc(2), value(1033 / 8.0));
  EXPECT_EQ(to_double(stmt.Getc(3)), value(1033 / 4.0));
  EXPECT_EQ(stmt.Getc(4), value(date_time{38061, 0}));
  EXPECT_EQ(stmt.Getc(5), value(date_time{37028, 1033}));
}

TEST_P(engines, tell_where_a_block_with_a_bad_row_stopped) {
  const bool is_postgres = GetParam().name == "postgres";
  ASSERT_TRUE(runs("create temporary table keyed(i integer primary key)"));
  for (const bool transaction : {false, true}) {
    ASSERT_TRUE(!transaction || con.SetACOff());
    ASSERT_TRUE(runs("delete from keyed") && stmt.MrPrep("insert into keyed values(?)", 500));
    for (int row = 0; row < 500; ++row) ASSERT_TRUE(stmt.MrBindParm(row == 250 ? 7 : row, 1, row));
    EXPECT_TRUE(failed_with(stmt.MrExecute(500), stmt, odbc_fault::execute));
    EXPECT_EQ(stmt.ParamOptionValue(), is_postgres ? 251 : 250);
    stmt.Errd();
    EXPECT_EQ(ui.take_texts().front().rfind("SQL error. Code = ", 0), 0U);
    EXPECT_EQ(one(stmt, "select count(*) from keyed"), is_postgres && transaction ? "0" : "250");
  }
}

}  // namespace
