// The layer on real databases: each test is written once and runs on every engine that can do it.
#include <fmt/format.h>
#include <unistd.h>

#include "odbc/engine_fixture.h"

namespace {

constexpr const char* every_type =
    "create temporary table every_type(id integer, big bigint, small smallint, name varchar(20), code char(10), amount "
    "decimal(9,2), "
    "ratio double precision, part real, on_day date, at_time time, at_moment timestamp, note text)";
constexpr const char* every_column =
    "select id, big, small, name, code, amount, ratio, part, on_day, at_time, at_moment, note from every_type order by "
    "id";
constexpr int columns_of_every_type = 12;

using postgres_only = engines;

const std::vector<value> one_of_every_type{1,
                                           2000000000,
                                           -3,
                                           "Müller € 日本",
                                           "AB",
                                           12.34,
                                           0.1,
                                           2.5,
                                           date_time{37028, 0},
                                           date_time{0, 49530},
                                           date_time{37028, 49530},
                                           "note"};
const std::vector<value> all_null(columns_of_every_type - 1, null_t{});

TEST_P(engines, read_every_type_singly_and_in_blocks) {
  ASSERT_TRUE(runs(every_type));
  ASSERT_TRUE(
      runs("insert into every_type values(1, 2000000000, -3, 'Müller € 日本', '  AB', 12.34, 0.1, 2.5, '2001-05-17', "
           "'13:45:30', "
           "'2001-05-17 13:45:30.123456', ' note ')"));
  ASSERT_TRUE(runs("insert into every_type(id) values(2)"));
  for (const int rowset : {1, 3}) {
    ASSERT_TRUE(stmt.Prep(every_column, rowset) && stmt.Execute()) << diagnostic_text(stmt.ErrData());
    ASSERT_EQ(stmt.NCols(), columns_of_every_type);
    std::int64_t rows = 0;
    ASSERT_TRUE(rowset == 1 ? stmt.Fetch() : stmt.ExtFetchNext(rows));
    EXPECT_EQ(row_cells(0), one_of_every_type);
    if (rowset == 1) {
      ASSERT_TRUE(stmt.Fetch());
    }
    std::vector<value> second = row_cells(rowset == 1 ? 0 : 1);
    EXPECT_EQ(second.front(), value(2));
    EXPECT_EQ(std::vector<value>(second.begin() + 1, second.end()), all_null);
  }
}

TEST_P(engines, bind_every_kind_of_value_and_null_to_every_type) {
  ASSERT_TRUE(runs(every_type));
  ASSERT_TRUE(stmt.Prep("insert into every_type values(?,?,?,?,?,?,?,?,?,?,?,?)"));
  ASSERT_EQ(stmt.Nparms(), columns_of_every_type);
  std::vector<value> values = one_of_every_type;
  values[2] = std::int16_t{-3};
  values[5] = currency{123400};
  values[7] = 2.5F;
  values[9] = "13:45:30";
  ASSERT_TRUE(stmt.BindV(values) && stmt.Execute()) << diagnostic_text(stmt.ErrData());
  std::vector<value> nulls = all_null;
  nulls.insert(nulls.begin(), 2);
  ASSERT_TRUE(stmt.BindV(nulls) && stmt.Execute()) << diagnostic_text(stmt.ErrData());
  // Every number and date as its text.
  const std::vector<value> as_text{
      "3", "4", "5", "", "", "12.34", "0.5", "0.25", "2001-05-17", "13:45", "2001-05-17 13:45:30", ""};
  ASSERT_TRUE(stmt.BindV(as_text) && stmt.Execute()) << diagnostic_text(stmt.ErrData());

  ASSERT_TRUE(runs(every_column) && stmt.Fetch());
  EXPECT_EQ(row_cells(0), one_of_every_type);
  ASSERT_TRUE(stmt.Fetch());
  EXPECT_EQ(row_cells(0), nulls);
  ASSERT_TRUE(stmt.Fetch());
  EXPECT_EQ(stmt.Getc(4), value(""));
  EXPECT_EQ(stmt.Getc(9), value(date_time{37028, 0}));
  EXPECT_FALSE(stmt.Fetch());
  EXPECT_EQ(stmt.Result(), SQL_NO_DATA_FOUND);

  ASSERT_TRUE(stmt.Prep("select id from every_type where id = ? and name = ?") &&
              stmt.BindV(std::vector<value>{1, "Müller € 日本"}));
  ASSERT_TRUE(stmt.Execute() && stmt.Fetch()) << diagnostic_text(stmt.ErrData());
  EXPECT_EQ(stmt.Getc(1), value(1));
}

TEST_P(engines, fetch_blocks_and_then_single_rows_on_the_same_handle) {
  ASSERT_TRUE(makes_numbers(1001));
  ASSERT_TRUE(stmt.Prep("select i from numbers order by i", 500) && stmt.Execute());
  std::int64_t rows = 0;
  for (const std::int64_t expected : {500, 500, 1}) {
    ASSERT_TRUE(stmt.ExtFetchNext(rows));
    EXPECT_EQ(rows, expected);
  }
  EXPECT_EQ(stmt.Getc(1), value(1001));
  EXPECT_FALSE(stmt.ExtFetchNext(rows));
  EXPECT_EQ(stmt.Result(), SQL_NO_DATA_FOUND);
  // The handle remembers its rowset; a buffer of one row must not be filled with five hundred.
  ASSERT_TRUE(stmt.Prep("select i, i + 1 from numbers order by i") && stmt.Execute());
  for (int row = 1; row <= 1001; ++row) {
    ASSERT_TRUE(stmt.Fetch());
    ASSERT_EQ(stmt.Getc(1), value(row));
  }
  EXPECT_FALSE(stmt.Fetch());
  EXPECT_EQ(stmt.Result(), SQL_NO_DATA_FOUND);
  // Fetch on a larger rowset gives row after row too.
  ASSERT_TRUE(stmt.Prep("select i from numbers order by i", 10) && stmt.Execute() && stmt.Fetch());
  EXPECT_EQ(stmt.Getc(1), value(1));
  ASSERT_TRUE(stmt.Fetch());
  EXPECT_EQ(stmt.Getc(1), value(2));
  // Given up half way, again and again.
  for (int again = 0; again < 3; ++again)
    ASSERT_TRUE(stmt.Prep("select i from numbers", 7) && stmt.Execute() && stmt.ExtFetchNext(rows));
  EXPECT_TRUE(stmt.Cancel());
}

TEST_P(engines, count_the_rows_of_an_update_that_finds_none) {
  ASSERT_TRUE(makes_numbers(3));
  EXPECT_EQ(stmt.CEX_RCC("update numbers set i = 0 where i > 100"), 0);
  EXPECT_EQ(stmt.CEX_RCC("update numbers set i = 0 where i > 1"), 2);
  EXPECT_EQ(stmt.CEX_RCC("delete from numbers where i > 100"), 0);
  EXPECT_EQ(stmt.CEX_RCC("delete from numbers"), 3);
}

TEST_P(engines, tell_what_is_wrong_at_whichever_call_it_shows) {
  const struct {
    const char* text;
    const char* part;  // of the message
  } cases[] = {{"selec 1", "selec"},
               {"select nosuch from (select 1 as a) as t", "nosuch"},
               {"select * from nowhere", "nowhere"},
               {"insert into nowhere values(1)", "nowhere"},
               {"call", "syntax"}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.text);
    for (const bool procedure : {false, true}) {
      EXPECT_FALSE((procedure ? stmt.ProcPrep(each.text) : stmt.Prep(each.text, 500)) && stmt.Execute());
      EXPECT_EQ(stmt.Result(), SQL_ERROR);
      EXPECT_NE(stmt.Errd(), 0);
      ASSERT_EQ(ui.messages.size(), 1U);
      const std::string shown = ui.take_texts().front();
      EXPECT_EQ(shown.rfind("SQL error. Code = ", 0), 0U) << shown;
      EXPECT_NE(shown.find(each.part), std::string::npos) << shown;
      EXPECT_EQ(one(stmt, "select 5"), "5");
    }
  }
}

TEST_P(engines, take_a_statement_of_a_megabyte_and_none_at_all) {
  const std::string long_text(1'000'000, 'x');
  ASSERT_TRUE(runs("create temporary table notes(note text)"));
  EXPECT_EQ(stmt.CEX_RCC("insert into notes values('" + long_text + "')"), 1);
  EXPECT_EQ(one(stmt, "select length(note) from notes"), "1000000");
  EXPECT_EQ(one(stmt, "select note from notes").size(), 32000U);
  ASSERT_TRUE(stmt.Prep("insert into notes values(?)") && stmt.BindV(std::vector<value>{long_text}) && stmt.Execute());
  EXPECT_EQ(one(stmt, "select sum(length(note)) from notes"), "2000000");
  stmt.CEX("");  // what comes of it is the driver's affair
  EXPECT_EQ(one(stmt, "select 5"), "5");
}

TEST_P(engines, keep_and_undo_work_as_another_connection_sees_it) {
  const std::string table = fmt::format("shared_{}", getpid());
  ASSERT_TRUE(runs("create table " + table + "(i integer)"));
  odbccon other;
  odbcstmt there;
  connect_to(other, GetParam());
  ASSERT_TRUE(there.Make(other));
  const auto seen = [&] {
    std::string count = one(there, "select count(*) from " + table);
    there.Cancel();
    return count;
  };
  ASSERT_TRUE(con.SIL(2) && con.SetACOff()) << diagnostic_text(con.ErrData());
  ASSERT_TRUE(runs("insert into " + table + " values(1)"));
  EXPECT_EQ(seen(), "0");
  EXPECT_TRUE(con.Rollback());
  EXPECT_EQ(seen(), "0");
  ASSERT_TRUE(runs("insert into " + table + " values(1)"));
  EXPECT_TRUE(con.Commit());
  EXPECT_EQ(seen(), "1");
  ASSERT_TRUE(runs("insert into " + table + " values(2)"));
  EXPECT_TRUE(con.Disconnect());  // rolls back
  EXPECT_EQ(seen(), "1");
  EXPECT_TRUE(runs(there, "drop table " + table));
  EXPECT_TRUE(other.Disconnect());
}

TEST_P(engines, go_on_after_a_failed_statement_with_the_work_before_it) {
  ASSERT_TRUE(makes_numbers(1));
  ASSERT_TRUE(con.SetACOff());
  ASSERT_TRUE(runs("insert into numbers values(2)"));
  EXPECT_FALSE(stmt.CEX("insert into numbers values(nowhere)"));
  ASSERT_TRUE(runs("insert into numbers values(3)"));
  EXPECT_EQ(one(stmt, "select count(*) from numbers"), "3");  // nobody rolled back
  EXPECT_TRUE(con.Rollback());
  EXPECT_EQ(one(stmt, "select count(*) from numbers"), "1");
}

TEST_P(engines, refuse_the_isolation_level_that_no_driver_manager_knows) {
  for (const int level : {0, 1, 2, 3}) EXPECT_TRUE(con.SIL(level)) << level;
  EXPECT_TRUE(failed_with(con.SIL(4), con, odbc_fault::connect_option));
  EXPECT_EQ(con.ErrData().state, "S1009");
}

TEST_P(postgres_only, procedures_return_what_they_changed) {
  ASSERT_TRUE(con.SetACOff());
  ASSERT_TRUE(runs(
      "create procedure twice(inout n integer, inout t varchar, inout a numeric, inout d date) language plpgsql as "
      "$$ begin n := n * 2; t := t || t; a := a * 2; d := d + 1; end $$"));
  ASSERT_TRUE(stmt.ProcPrep("call twice(?,?,?,?)")) << diagnostic_text(stmt.ErrData());
  ASSERT_EQ(stmt.Nparms(), 4);
  EXPECT_TRUE(stmt.BindProcParm(21, 1) && stmt.BindProcParm(" é", 2) && stmt.BindProcParm("1.25", 3) &&
              stmt.BindProcParm("2001-05-17", 4));
  ASSERT_TRUE(stmt.Execute()) << diagnostic_text(stmt.ErrData());
  const value expected[] = {42, "é é", 2.5, date_time{37029, 0}};
  for (int marker = 1; marker <= 4; ++marker) EXPECT_EQ(stmt.GetParm(marker), expected[marker - 1]);
  ASSERT_TRUE(stmt.BindProcParm(null_t{}, 1) && stmt.Execute());
  EXPECT_EQ(stmt.GetParm(1), value(null_t{}));
}

TEST_P(postgres_only, a_server_that_is_gone_is_told_and_left) {
  odbccon other;
  odbcstmt there;
  connect_to(other, GetParam());
  ASSERT_TRUE(there.Make(other));
  for (const bool transaction : {false, true}) {
    if (con.Free()) connect_to(con, GetParam());
    ASSERT_TRUE(!transaction || con.SetACOff());
    ASSERT_TRUE(stmt.Make(con));
    const std::string backend = one(stmt, "select pg_backend_pid()");
    ASSERT_TRUE(stmt.Prep("select 1") && stmt.Execute());
    ASSERT_EQ(one(there, "select cast(pg_terminate_backend(" + backend + ", 5000) as integer)"), "1");
    EXPECT_FALSE(stmt.CEX("select 2"));
    EXPECT_EQ(stmt.Result(), SQL_ERROR);
    stmt.Errd();
    const std::string shown = ui.take_texts().front();
    EXPECT_NE(shown.find("State = 08S01. Message = "), std::string::npos) << shown;
    EXPECT_TRUE(con.Disconnect()) << diagnostic_text(con.ErrData());
    EXPECT_TRUE(stmt.Free());
  }
  EXPECT_TRUE(other.Disconnect());
}

TEST_P(postgres_only, a_wrong_password_is_told) {
  odbccon other;
  EXPECT_TRUE(failed_with(other.Connect(GetParam().dsn, GetParam().user, "WRONG"), other, odbc_fault::connect));
  EXPECT_NE(other.connect_failure().text.find("password"), std::string::npos) << other.connect_failure().text;
}

const auto no_suffix = [](const auto&) { return std::string("engine"); };
INSTANTIATE_TEST_SUITE_P(sqlite, engines, testing::Values(sqlite()), no_suffix);
INSTANTIATE_TEST_SUITE_P(postgres, engines, testing::Values(postgres()), no_suffix);
INSTANTIATE_TEST_SUITE_P(postgres, postgres_only, testing::Values(postgres()), no_suffix);

}  // namespace
