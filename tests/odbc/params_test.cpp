// Parameter markers, on the scripted driver: values bound by their own kinds, and procedure calls bound in place.
#include <array>
#include <cstring>

#include "odbc/odbc_fixture.h"
#include "support/scoped_state.h"

namespace {

using params = scripted_test;
using scripted::bound_parameter;
using scripted::cell;

constexpr date_time moment{37028, 49530};  // 2001-05-17 13:45:30
const value no_such{odbcstmt::no_such_marker};
const value unsupported{odbcstmt::unsupported_marker};

// The parameters of the last execution.
std::vector<bound_parameter> sent(scripted::driver& driver) { return driver.executions().back().rows.front(); }

template <typename T>
std::string bytes_of(T number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}
// A date structure's words: year, month, day ..., and for a timestamp its fraction.
std::string words(std::initializer_list<std::int16_t> fields) {
  std::string bytes;
  for (const std::int16_t each : fields) bytes += bytes_of(each);
  return fields.size() == 6 ? bytes + bytes_of(std::int32_t{0}) : bytes;
}

TEST_F(params, are_described_to_the_caller) {
  answer_markers("q", {{SQL_DECIMAL, 9, 2, SQL_NO_NULLS}, {SQL_VARCHAR, 20}});
  ASSERT_TRUE(stmt.Prep("q"));
  EXPECT_EQ(stmt.Nparms(), 2);
  EXPECT_EQ(stmt.Ptype(1), SQL_DECIMAL);
  EXPECT_EQ(stmt.Pprec(1), 9U);
  EXPECT_EQ(stmt.pScale(1), 2);
  EXPECT_EQ(stmt.PNullable(1), SQL_NO_NULLS);
  EXPECT_EQ(stmt.Pkind(1), parameter_kind::real);
  EXPECT_EQ(stmt.Pprec(2), 20U);
}

TEST_F(params, a_value_list_is_laid_out_by_its_own_kinds) {
  answer_markers("q", {{SQL_INTEGER, 10}, {SQL_VARCHAR, 10}, {SQL_DECIMAL, 9, 2}, {SQL_TIMESTAMP, 26, 6}});
  ASSERT_TRUE(stmt.Prep("q"));
  driver.clear_log();
  ASSERT_TRUE(stmt.BindV(std::vector<value>{5, "ABC", null_t{}, moment}));
  EXPECT_EQ(logged(), (texts{"SQLFreeStmt 3", "SQLBindParameter 1 2 4 4 10 0 set 4 set",
                             "SQLBindParameter 2 2 1 12 10 0 set 3 set", "SQLBindParameter 3 2 1 3 9 2 set 1 set",
                             "SQLBindParameter 4 2 11 11 26 6 set 16 set"}));
  ASSERT_TRUE(stmt.Execute() && stmt.Execute());  // bound values stay
  std::vector<SQLLEN> lengths;
  std::string bytes;
  for (const bound_parameter& each : sent(driver)) {
    lengths.push_back(each.length_word.value());
    bytes += each.bytes;
  }
  EXPECT_EQ(lengths, (std::vector<SQLLEN>{4, 3, -1, 16}));
  EXPECT_EQ(bytes, bytes_of(5) + "ABC" + words({2001, 5, 17, 13, 45, 30}));
}

TEST_F(params, every_kind_of_value_has_its_c_type) {
  const scoped_code_page page("ISO-8859-15");
  answer_markers("q", {{SQL_VARCHAR, 20}});
  ASSERT_TRUE(stmt.Prep("q"));
  const struct {
    value given;
    SQLSMALLINT ctype;
    std::string bytes;
  } cases[] = {{std::int16_t{-7}, SQL_C_LONG, bytes_of(-7)},
               {std::int32_t{70000}, SQL_C_LONG, bytes_of(70000)},
               {0.5F, SQL_C_DOUBLE, bytes_of(0.5)},
               {-0.1, SQL_C_DOUBLE, bytes_of(-0.1)},
               {currency{12345}, SQL_C_DOUBLE, bytes_of(1.2345)},
               {moment, SQL_C_TIMESTAMP, words({2001, 5, 17, 13, 45, 30})},
               {"€ é", SQL_C_CHAR, "\xA4 \xE9"},
               {"", SQL_C_CHAR, ""},
               {std::string("a\0b", 3), SQL_C_CHAR, std::string("a\0b", 3)},
               {std::string(100'000, 'x'), SQL_C_CHAR, std::string(100'000, 'x')}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::PrintToString(each.given).substr(0, 60));
    ASSERT_TRUE(stmt.BindV({&each.given, 1}) && stmt.Execute());
    const bound_parameter found = sent(driver).at(0);
    EXPECT_EQ(found.io_type, SQL_PARAM_INPUT_OUTPUT);
    EXPECT_EQ(found.c_type, each.ctype);
    EXPECT_EQ(found.length_word, static_cast<SQLLEN>(each.bytes.size()));
    EXPECT_EQ(found.bytes, each.bytes);
  }
}

TEST_F(params, null_binds_to_every_type_of_marker) {
  for (const int type : {SQL_CHAR, SQL_NUMERIC, SQL_DECIMAL, SQL_INTEGER, SQL_SMALLINT, SQL_FLOAT, SQL_REAL, SQL_DOUBLE,
                         SQL_DATE, SQL_TIME, SQL_TIMESTAMP, SQL_VARCHAR, SQL_LONGVARCHAR, SQL_BINARY, SQL_VARBINARY,
                         SQL_LONGVARBINARY, SQL_BIGINT, SQL_TINYINT, SQL_BIT}) {
    SCOPED_TRACE(type);
    answer_markers("q", {{static_cast<SQLSMALLINT>(type), 10}});
    const value null = null_t{};
    ASSERT_TRUE(stmt.Prep("q") && stmt.BindV({&null, 1}) && stmt.Execute()) << diagnostic_text(stmt.ErrData());
    EXPECT_EQ(sent(driver).at(0).length_word, SQL_NULL_DATA);
    EXPECT_EQ(sent(driver).at(0).sql_type, type);
  }
}

TEST_F(params, a_value_list_that_does_not_fit_is_refused) {
  const scoped_code_page page("ISO-8859-15");
  answer_markers("q", {{SQL_INTEGER, 10}, {SQL_VARCHAR, 10}});
  answer_markers("none", {});
  ASSERT_TRUE(stmt.Prep("q"));
  const struct {
    std::vector<value> values;
    odbc_fault fault;
  } cases[] = {{{}, odbc_fault::no_values},
               {{5}, odbc_fault::value_count},
               {{5, "a", "b"}, odbc_fault::value_count},
               {{5, value()}, odbc_fault::value_type},
               {{5, true}, odbc_fault::value_type},
               {{5, error_value{1}}, odbc_fault::value_type},
               {{5, array{1, {5}}}, odbc_fault::value_type},
               {{5, matrix(1)}, odbc_fault::value_type},
               {{5, "Łódź"}, odbc_fault::text_not_sendable}};
  for (const bool bound_before : {false, true}) {
    for (const auto& each : cases) {
      ASSERT_TRUE(stmt.Prep("q") && (!bound_before || stmt.BindV(std::vector<value>{7, std::string(200, 'x')})));
      EXPECT_TRUE(failed_with(stmt.BindV(each.values), stmt, each.fault));
      if (each.fault == odbc_fault::no_values || each.fault == odbc_fault::value_count) continue;
      EXPECT_EQ(stmt.GetParm(1), value(null_t{}));  // no marker is half bound
      EXPECT_EQ(stmt.GetParm(2), value(null_t{}));
      EXPECT_TRUE(failed_with(stmt.Execute(), stmt, odbc_fault::execute));
    }
  }
  driver.fail("SQLBindParameter", 2, {});
  EXPECT_TRUE(failed_with(stmt.BindV(std::vector<value>{5, "a"}), stmt, odbc_fault::bind_parameter));
  EXPECT_EQ(stmt.Result(), SQL_ERROR);
  EXPECT_TRUE(stmt.BindV(std::vector<value>{5, "a"}) && stmt.Execute());

  EXPECT_TRUE(stmt.BindA({1, {5, "a"}}));
  EXPECT_FALSE(stmt.BindA({}));
  std::int32_t number = 0;
  EXPECT_FALSE(trap(number, [&] { stmt.BindA_XX({}); }));
  EXPECT_EQ(number, error_number(odbc_fault::no_array_values));
  ASSERT_TRUE(stmt.Prep("none"));
  EXPECT_TRUE(stmt.BindV({}) && stmt.BindA({}));
  EXPECT_TRUE(failed_with(stmt.BindV(std::vector<value>{5}), stmt, odbc_fault::value_count));
  odbcstmt empty;
  EXPECT_TRUE(failed_with(empty.BindV(std::vector<value>{5}), empty, odbc_fault::bind_without_handle));
}

TEST_F(params, what_a_driver_writes_back_stays_within_the_buffer) {
  // The last Null has one byte for the sixteen that come back.
  answer_markers("q", {{SQL_INTEGER, 10}, {SQL_VARCHAR, 10}, {SQL_TIMESTAMP, 26}},
                 {{1, 77}, {2, "longer than it was"}, {3, TIMESTAMP_STRUCT{2001, 5, 17, 0, 0, 0, 0}}});
  ASSERT_TRUE(stmt.Prep("q") && stmt.BindV(std::vector<value>{5, "ABC", null_t{}}) && stmt.Execute());
  EXPECT_EQ(stmt.GetParm(1), value(77));
  EXPECT_EQ(stmt.GetParm(2).text().substr(0, 2), "lo");
  EXPECT_EQ(stmt.GetParm(3), unsupported);
}

// One marker of each kind; the texts' widths depend on the code page.
const std::vector<scripted::parameter> one_of_each{{SQL_INTEGER, 10}, {SQL_DECIMAL, 9, 2}, {SQL_CHAR, 4},
                                                   {SQL_DATE, 10},    {SQL_TIME, 8},       {SQL_TIMESTAMP, 26}};

TEST_F(params, a_procedure_call_is_bound_in_place_and_null_at_first) {
  const scoped_code_page page("ISO-8859-15");
  answer_markers("call", one_of_each);
  ASSERT_TRUE(stmt.ProcPrep("call"));
  EXPECT_EQ(logged({"SQLBindParameter"}),
            (texts{"SQLBindParameter 1 2 4 4 10 0 set 4 set", "SQLBindParameter 2 2 8 3 9 2 set 8 set",
                   "SQLBindParameter 3 2 1 1 4 0 set 5 set", "SQLBindParameter 4 2 9 9 10 0 set 6 set",
                   "SQLBindParameter 5 2 10 10 8 0 set 6 set", "SQLBindParameter 6 2 11 11 26 0 set 16 set"}));
  ASSERT_TRUE(stmt.Execute());
  for (const bound_parameter& each : sent(driver)) EXPECT_EQ(each.length_word, SQL_NULL_DATA);
  answer_markers("odd", {{SQL_INTEGER, 10}, {SQL_BINARY, 10}});
  EXPECT_TRUE(failed_with(stmt.ProcPrep("odd"), stmt, odbc_fault::bind_procedure_parameter));
  EXPECT_TRUE(stmt.ProcPrep("call"));
}

TEST_F(params, a_procedure_parameter_takes_what_fits_and_keeps_its_cell_otherwise) {
  const scoped_locale_forms forms({{'.', '\0'}, "%m/%d/%y"});
  struct parameter_case {
    int marker;
    value given;
    std::optional<std::string> bytes;  // nothing: refused
  };
  const std::string held = "keep";
  const std::vector<parameter_case> cases{{1, 5, bytes_of(5)},
                                          {1, "12", bytes_of(12)},
                                          {1, 2.5, bytes_of(2)},
                                          {1, true, bytes_of(-1)},
                                          {1, "x", {}},
                                          {1, 3e9, {}},
                                          {1, value(), {}},
                                          {1, error_value{1}, {}},
                                          {2, "-12.5", bytes_of(-12.5)},
                                          {2, 7, bytes_of(7.0)},
                                          {2, "1,5", {}},
                                          {3, "ABCD", "ABCD"},
                                          {3, "äöü€", "\xE4\xF6\xFC\xA4"},
                                          {3, "", ""},
                                          {3, 1.5, "1.5"},
                                          {3, value(), ""},
                                          {3, "ABCDE", {}},
                                          {3, "äöü€ß", {}},
                                          {3, "Ł", {}},
                                          {3, -12345, {}},
                                          {3, error_value{1}, {}},
                                          {4, "2001-05-17", words({2001, 5, 17})},
                                          {4, moment, words({2001, 5, 17})},
                                          {4, 37028, words({2001, 5, 17})},
                                          {4, "2001-02-29", {}},
                                          {4, "soon", {}},
                                          {5, "13:45", {}},
                                          {5, moment, {}},
                                          {6, "2001-05-17 13:45:30", words({2001, 5, 17, 13, 45, 30})},
                                          {6, moment, words({2001, 5, 17, 13, 45, 30})},
                                          {6, 1e9, {}},
                                          {0, 5, {}},
                                          {7, 5, {}},
                                          {-1, 5, {}}};
  const scoped_code_page page("ISO-8859-15");
  answer_markers("call", one_of_each);
  const std::vector<value> before{1, 2.0, held, moment, null_t{}, moment};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << "marker " << each.marker << ": " << testing::PrintToString(each.given));
    ASSERT_TRUE(stmt.ProcPrep("call"));
    for (int marker = 1; marker <= 6; ++marker)
      ASSERT_TRUE(stmt.BindProcParm(before[static_cast<std::size_t>(marker - 1)], marker));
    ASSERT_TRUE(stmt.Execute());
    auto expected = sent(driver);
    EXPECT_EQ(stmt.BindProcParm(each.given, each.marker), each.bytes.has_value());
    if (each.bytes) {
      bound_parameter& changed = expected[static_cast<std::size_t>(each.marker - 1)];
      changed.bytes = *each.bytes;
      changed.length_word = static_cast<SQLLEN>(each.bytes->size());
    }
    ASSERT_TRUE(stmt.Execute());
    const auto now = sent(driver);
    for (std::size_t i = 0; i < now.size(); ++i) {
      EXPECT_EQ(now[i].bytes, expected[i].bytes) << i + 1;
      EXPECT_EQ(now[i].length_word, expected[i].length_word) << i + 1;
    }
  }
  EXPECT_TRUE(stmt.BindProcParm(null_t{}, 3));
  EXPECT_EQ(stmt.GetParm(3), value(null_t{}));
  ASSERT_TRUE(stmt.Prep("call"));  // not bound in place
  EXPECT_FALSE(stmt.BindProcParm(5, 1));

  const scoped_code_page wide("UTF-8");  // characters count, though the cell has bytes for more
  ASSERT_TRUE(stmt.ProcPrep("call"));
  EXPECT_TRUE(stmt.BindProcParm("Ł日本語", 3));
  EXPECT_FALSE(stmt.BindProcParm("ABCDE", 3));
  EXPECT_EQ(stmt.GetParm(3), value("Ł日本語"));
}

TEST_F(params, returned_values_are_read_back) {
  const struct {
    SQLUSMALLINT marker;
    cell returned;
    value expected;
  } cases[] = {{1, 5, 5},
               {1, nullptr, null_t{}},
               {1, cell(5).reporting(99), 5},
               {2, "12.34", 12.34},
               {3, "  X ", "X"},
               {3, "äöü€", "äöü€"},
               {3, "", ""},
               {3, cell("ABCD").reporting(1'000'000), "ABCD" + std::string(12, '\0')},
               {3, cell("ABCD").reporting(SQL_NO_TOTAL), ""},
               {3, cell("ABCD").reporting(-77), ""},
               {3, std::string(200, 'x'), std::string(16, 'x')},  // four characters may take sixteen bytes
               {4, DATE_STRUCT{2001, 5, 17}, date_time{37028, 0}},
               {4, DATE_STRUCT{2001, 2, 29}, odbcstmt::impossible_date},
               {5, TIME_STRUCT{13, 45, 30}, unsupported},
               {6, TIMESTAMP_STRUCT{2001, 5, 17, 13, 45, 30, 999}, moment}};
  const scoped_code_page page("UTF-8");
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << "marker " << each.marker << ", expected "
                                    << testing::PrintToString(each.expected));
    answer_markers("call", one_of_each, {{each.marker, each.returned}});
    ASSERT_TRUE(stmt.ProcPrep("call") && stmt.Execute());
    for (int marker = 1; marker <= 6; ++marker) {
      EXPECT_EQ(stmt.GetParm(marker), marker == each.marker ? each.expected : value(null_t{})) << marker;
    }
  }
  for (const int outside : {0, 7, -1}) EXPECT_EQ(stmt.GetParm(outside), no_such);
}

TEST_F(params, default_values_suit_the_marker) {
  const held_clock clock(moment);
  answer_markers("call", {{SQL_INTEGER, 10},
                          {SQL_DECIMAL, 9, 2},
                          {SQL_CHAR, 8},
                          {SQL_DATE, 10},
                          {SQL_TIME, 8},
                          {SQL_TIMESTAMP, 26},
                          {SQL_BIT, 1},
                          {SQL_LONGVARCHAR, 0},
                          {SQL_BINARY, 5}});
  ASSERT_TRUE(stmt.Prep("call"));
  const value expected[] = {no_such, 0, 0,  std::string(8, ' '), moment, unsupported,
                            moment,  0, "", unsupported,         no_such};
  for (int marker = 0; marker <= 10; ++marker) EXPECT_EQ(stmt.ProcParmDefault(marker), expected[marker]) << marker;
  ASSERT_TRUE(stmt.ProcPrep("call") || stmt.Nparms() == 9);
  for (int marker = 0; marker <= 10; ++marker) EXPECT_EQ(stmt.ProcParmDefault(marker), expected[marker]) << marker;
}

}  // namespace
