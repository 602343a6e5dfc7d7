// Fetching rows and reading cells, on the scripted driver, which tells the truth only where it is asked to.
#include "odbc/odbc_fixture.h"
#include "support/scoped_state.h"

namespace {

using fetch = scripted_test;
using scripted::cell;
using scripted::column;

cell numbered(SQLULEN row, std::size_t) { return static_cast<std::int32_t>(row + 1); }

// A query "q" of one integer column that counts from 1.
void answer_count(scripted::driver& driver, SQLULEN rows) {
  driver.answer_to("q", {.columns = {integer("I")}, .generated = scripted::generated_rows{rows, numbered}});
}

TEST_F(fetch, blocks_end_with_the_rest_and_then_no_data) {
  answer_count(driver, 1001);
  ASSERT_TRUE(stmt.Prep("q", 500) && stmt.Execute());
  std::int64_t rows = -1;
  std::int32_t last = 0;
  for (const std::int64_t expected : {500, 500, 1}) {
    ASSERT_TRUE(stmt.ExtFetchNext(rows));
    EXPECT_EQ(rows, expected);
    last += static_cast<std::int32_t>(expected);
    EXPECT_EQ(stmt.Getc(1, rows - 1), value(last));
  }
  EXPECT_EQ(stmt.RowStatus(0), SQL_ROW_SUCCESS);
  EXPECT_EQ(stmt.RowStatus(1), SQL_ROW_NOROW);
  for (int again = 0; again < 2; ++again) {
    EXPECT_FALSE(stmt.ExtFetchNext(rows));
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(stmt.Result(), SQL_NO_DATA_FOUND);
  }
}

TEST_F(fetch, a_rowset_of_one_is_fetched_singly) {
  answer_count(driver, 2);
  ASSERT_TRUE(stmt.Prep("q") && stmt.Execute());
  std::int64_t rows = 9;
  driver.clear_log();
  EXPECT_FALSE(stmt.ExtFetchNext(rows));
  EXPECT_EQ(rows, 0);
  EXPECT_EQ(stmt.Result(), SQL_SUCCESS);
  EXPECT_TRUE(logged().empty());
  ui.pointers.clear();
  EXPECT_TRUE(stmt.Fetch());
  EXPECT_EQ(ui.pointers.size(), 2U);
  EXPECT_EQ(stmt.RowStatus(0), 0);
  EXPECT_TRUE(stmt.Fetch());
  EXPECT_EQ(stmt.Getc(1), value(2));
  for (int again = 0; again < 2; ++again) {
    EXPECT_TRUE(failed_with(stmt.Fetch(), stmt, odbc_fault::fetch));
    EXPECT_EQ(stmt.Result(), SQL_NO_DATA_FOUND);
  }
  ASSERT_TRUE(stmt.Prep("q", 2) && stmt.Execute() && stmt.Cancel());
  EXPECT_FALSE(stmt.ExtFetchNext(rows));
}

// One cell as a column delivers it.
struct cell_case {
  column described;
  cell given;
  value expected;
};

// Each case alone in a row between two columns whose cells must come through whole.
void check_cells(scripted::driver& driver, odbcstmt& stmt, const std::vector<cell_case>& cases) {
  for (const cell_case& each : cases) {
    SCOPED_TRACE(testing::Message() << "column type " << each.described.sql_type << ", expected "
                                    << testing::PrintToString(each.expected));
    driver.answer_to("q", {.columns = {integer("BEFORE"), each.described, integer("AFTER")},
                           .rows = {{17, each.given, 18}, {19, nullptr, 20}}});
    for (const int rowset : {1, 2}) {
      ASSERT_TRUE(stmt.Prep("q", rowset) && stmt.Execute());
      std::int64_t rows = 0;
      ASSERT_TRUE(rowset == 1 ? stmt.Fetch() : stmt.ExtFetchNext(rows));
      EXPECT_EQ(stmt.GetRow(0), value(array{1, {17, each.expected, 18}}));
      std::string text = "<";
      EXPECT_EQ(stmt.append_text(2, 0, text), !each.expected.is_null());
      EXPECT_EQ(text, "<" + to_text(each.expected));
      EXPECT_EQ(stmt.GetRow(1), rowset == 1 ? value() : value(array{1, {19, null_t{}, 20}}));
    }
  }
}

TEST_F(fetch, cells_become_values) {
  const column text{"C", SQL_CHAR, 10};
  const column stamp{"M", SQL_TIMESTAMP, 26, 6};
  check_cells(driver, stmt,
              {{integer("I"), std::int32_t{-2147483647 - 1}, std::int32_t{-2147483647 - 1}},
               {{"B", SQL_BIGINT, 19}, std::int64_t{123456}, 123456},
               {{"S", SQL_SMALLINT, 5}, -5, -5},
               {{"N", SQL_NUMERIC, 9, 2}, "12.34", 12.34},
               {{"D", SQL_DECIMAL, 31, 0}, "1E+30", 1e30},
               {text, "  AB      ", "AB"},
               {text, "", ""},
               {text, " \tA\n ", "\tA\n"},
               {text, "日本語日本語日本語日", "日本語日本語日本語日"},  // ten characters, thirty bytes
               {{"V", SQL_VARCHAR, 3}, std::string("a\0b", 3), std::string("a\0b", 3)},
               {{"L", SQL_LONGVARCHAR, 32700}, std::string(32700, 'x'), std::string(32000, 'x')},
               {{"D", SQL_DATE, 10}, DATE_STRUCT{2001, 5, 17}, date_time{37028, 0}},
               {{"D", SQL_DATE, 10}, DATE_STRUCT{1, 1, 1}, date_time{-693593, 0}},
               {{"D", SQL_DATE, 10}, DATE_STRUCT{9999, 12, 31}, date_time{2958465, 0}},
               {{"D", SQL_DATE, 10}, DATE_STRUCT{2000, 2, 29}, date_time{36585, 0}},
               {{"T", SQL_TIME, 8}, TIME_STRUCT{13, 45, 30}, date_time{0, 49530}},
               {{"T", SQL_TIME, 8}, TIME_STRUCT{24, 0, 0}, date_time{0, 86400}},
               {stamp, TIMESTAMP_STRUCT{2001, 5, 17, 13, 45, 30, 123456000}, date_time{37028, 49530}},
               {stamp, TIMESTAMP_STRUCT{2001, 5, 17, 24, 0, 0, 0}, date_time{37029, 0}},
               {stamp, TIMESTAMP_STRUCT{2001, 5, 17, 0, 0, 0, 999}, date_time{37028, 0}},
               {stamp, TIMESTAMP_STRUCT{2001, 5, 31, 1, 2, 61, 0}, date_time{37042, 3781}},
               {stamp, TIMESTAMP_STRUCT{1899, 12, 30, 13, 45, 30, 0}, date_time{0, 49530}},
               {{"T", SQL_TIME, 8}, TIME_STRUCT{0, 0, 0}, date_time{0, 0}},
               {stamp, nullptr, null_t{}}});
}

TEST_F(fetch, cells_that_lie_stay_within_their_bounds) {
  const scoped_code_page page("ISO-8859-15");  // a cell of CHAR(4) is five bytes
  const column text{"C", SQL_CHAR, 4};
  check_cells(driver, stmt,
              {{text, cell("abcd").reporting(5), "abcd"},
               {text, cell("abcd").reporting(1'000'000), "abcd"},
               {text, cell("abcd").reporting(std::numeric_limits<SQLLEN>::max()), "abcd"},
               {text, cell("abcd").reporting(2), "ab"},
               {text, cell("abcd").reporting(0), ""},
               {text, cell("abcd").reporting(-2), ""},
               {text, cell("abcd").reporting(SQL_NO_TOTAL), ""},
               {text, cell("abcd").reporting(SQL_NULL_DATA), null_t{}},
               {text, cell("abcdefghij"), "abcd"},  // cut by the driver, which reports ten bytes
               {text, cell("\xA4\xE9"), "€é"},
               {integer("I"), cell(5).reporting(0), 5},
               {integer("I"), cell(5).reporting(SQL_NO_TOTAL), 5},
               {integer("I"), cell(5).reporting(SQL_NULL_DATA), null_t{}}});
}

TEST_F(fetch, broken_texts_are_cut_at_whole_characters_and_kept_otherwise) {
  const scoped_code_page page("UTF-8");  // a cell of CHAR(1) is five bytes
  const column text{"C", SQL_CHAR, 1};
  check_cells(driver, stmt,
              {
                  {text, "ab€€", "ab"},  // the driver cut the first sign of three bytes after two
                  {text, "a€€", "a€"},
                  {text, "\xFF\xFE", "\xFF\xFE"},
                  {text, "é\xC3", "é\xC3"},                                         // broken as it came, not cut
                  {text, cell("é\xC3").reporting(400), std::string("é\xC3\0", 4)},  // no byte beyond the four
              });
}

TEST_F(fetch, impossible_dates_are_error_values) {
  const value impossible = odbcstmt::impossible_date;
  check_cells(driver, stmt,
              {{{"D", SQL_DATE, 10}, DATE_STRUCT{2001, 2, 29}, impossible},
               {{"D", SQL_DATE, 10}, DATE_STRUCT{0, 0, 0}, impossible},
               {{"D", SQL_DATE, 10}, DATE_STRUCT{-32768, 65535, 65535}, impossible},
               {{"T", SQL_TIME, 8}, TIME_STRUCT{25, 0, 0}, impossible},
               {{"T", SQL_TIME, 8}, TIME_STRUCT{24, 0, 1}, impossible},
               {{"T", SQL_TIME, 8}, TIME_STRUCT{65535, 65535, 65535}, impossible},
               {{"M", SQL_TIMESTAMP, 26}, TIMESTAMP_STRUCT{2001, 4, 31, 0, 0, 0, 0}, impossible},
               {{"M", SQL_TIMESTAMP, 26}, TIMESTAMP_STRUCT{2001, 4, 30, 0, 60, 0, 0}, impossible}});
}

TEST_F(fetch, reads_nothing_outside_the_rowset_and_the_columns) {
  answer("q", {integer("I"), integer("J")}, {{1, 2}, {3, 4}});
  ASSERT_TRUE(stmt.Prep("q", 2) && stmt.Execute());
  std::int64_t rows = 0;
  ASSERT_TRUE(stmt.ExtFetchNext(rows));
  const struct {
    int column;
    std::int64_t row;
  } outside[] = {{0, 0}, {3, 0}, {-1, 0}, {1, 2}, {1, -1}, {1, std::int64_t{1} << 32}};
  for (const auto& each : outside)
    EXPECT_TRUE(stmt.Getc(each.column, each.row).is_empty()) << each.column << ',' << each.row;
  std::string nothing;
  for (const auto& each : outside) EXPECT_TRUE(stmt.append_text(each.column, each.row, nothing));
  EXPECT_EQ(nothing, "");
  for (const std::int64_t row : {-1, 2}) {
    EXPECT_TRUE(stmt.GetRow(row).is_empty());
    EXPECT_EQ(stmt.RowStatus(row), 0);
  }
  const value both = stmt.GetRows(0, 1);
  ASSERT_TRUE(both.is(value::kind::table));
  EXPECT_EQ(both.table()(2, 1), value(4));
  EXPECT_EQ(both.table().second_count(), 2U);
  const value second = stmt.GetRows(1, 1);
  EXPECT_EQ(second.table()(1, 1), value(3));
  EXPECT_TRUE(second.table()(1, 0).is_empty());
  EXPECT_TRUE(stmt.GetRows(-1, 1).is_empty() && stmt.GetRows(0, 2).is_empty() && stmt.GetRows(1, 0).is_empty());
}

TEST_F(fetch, a_description_that_failed_half_way_has_no_cells) {
  answer("q", std::vector<column>(40, integer("I")), {});
  driver.fail("SQLDescribeCol", 30, {});
  EXPECT_TRUE(failed_with(stmt.Prep("q"), stmt, odbc_fault::describe_column));
  EXPECT_EQ(stmt.GetRow(), value(array{1, {}}));
  EXPECT_TRUE(stmt.Getc(1).is_empty());
  EXPECT_EQ(stmt.GetColNum("I"), 0);
  EXPECT_TRUE(stmt.FetchAll().is_null());
}

TEST_F(fetch, fetches_all_or_as_many_as_asked) {
  const struct {
    SQLULEN there;
    int rowset;
    std::optional<std::int64_t> max;
    std::size_t taken;
  } cases[] = {{1001, 500, {}, 1001},   {1001, 1, {}, 1001}, {1001, 500, 10, 10}, {1001, 500, 501, 501},
               {1001, 500, 5000, 1001}, {3, 1, 2, 2},        {500, 500, 500, 500}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.there << " rows, rowset " << each.rowset << ", max "
                                    << each.max.value_or(-1));
    answer_count(driver, each.there);
    ASSERT_TRUE(stmt.Prep("q", each.rowset) && stmt.Execute());
    const value all = stmt.FetchAll(each.max);
    ASSERT_TRUE(all.is(value::kind::table));
    ASSERT_EQ(all.table().second_count(), each.taken);
    for (std::size_t row = 0; row < each.taken; ++row)
      ASSERT_EQ(all.table()(1, row), value(static_cast<std::int32_t>(row + 1)));
  }
  answer_count(driver, 0);
  for (const int rowset : {1, 500}) {
    ASSERT_TRUE(stmt.Prep("q", rowset) && stmt.Execute());
    EXPECT_EQ(stmt.FetchAll(0), value(error_value{1}));
    EXPECT_EQ(stmt.FetchAll(-5), value(error_value{1}));
    EXPECT_TRUE(stmt.FetchAll().is_null());
    EXPECT_EQ(stmt.Result(), SQL_NO_DATA_FOUND);
  }
}

TEST_F(fetch, a_driver_that_lies_about_the_rows_is_not_followed) {
  answer_count(driver, 10);
  const struct {
    SQLULEN lie;
    std::int64_t rows;
  } cases[] = {{1000, 4}, {~SQLULEN{0}, 4}, {2, 2}, {0, 0}};
  for (const auto& each : cases) {
    ASSERT_TRUE(stmt.Prep("q", 4) && stmt.Execute());
    driver.lie_about_rows_fetched(each.lie);
    std::int64_t rows = -1;
    EXPECT_TRUE(stmt.ExtFetchNext(rows));
    EXPECT_EQ(rows, each.rows);
    const value rest = stmt.FetchAll();  // comes to an end, with six rows left and two more blocks
    EXPECT_EQ(rest.is_null() ? 0 : static_cast<std::int64_t>(rest.table().second_count()), each.rows * 2);
  }
}

TEST_F(fetch, an_error_is_told_from_the_end_of_data) {
  driver.answer_to("q", {.columns = {integer("I")},
                         .generated = scripted::generated_rows{6, numbered},
                         .fetch_failures = {{3, {SQL_ERROR, "40003", -952, "interrupted"}}}});
  std::int64_t rows = 0;
  ASSERT_TRUE(stmt.Prep("q", 2) && stmt.Execute() && stmt.ExtFetchNext(rows));
  EXPECT_FALSE(stmt.ExtFetchNext(rows));
  EXPECT_EQ(rows, 0);
  EXPECT_EQ(stmt.Result(), SQL_ERROR);
  EXPECT_EQ(stmt.ErrData().native, -952);

  ASSERT_TRUE(stmt.Prep("q") && stmt.Execute());
  for (int row = 0; row < 3; ++row) ASSERT_TRUE(stmt.Fetch());
  EXPECT_TRUE(failed_with(stmt.Fetch(), stmt, odbc_fault::fetch));
  EXPECT_EQ(stmt.Result(), SQL_ERROR);
  EXPECT_EQ(stmt.ErrData().native, -952);

  // A row that alone is bad does not stop its block.
  driver.answer_to("q", {.columns = {integer("I")}, .rows = {{1}, {"x"}, {3}}});
  ASSERT_TRUE(stmt.Prep("q", 3) && stmt.Execute() && stmt.ExtFetchNext(rows));
  EXPECT_EQ(rows, 3);
  EXPECT_EQ(stmt.RowStatus(1), SQL_ROW_ERROR);
  EXPECT_EQ(stmt.Getc(1, 2), value(3));
}

}  // namespace
