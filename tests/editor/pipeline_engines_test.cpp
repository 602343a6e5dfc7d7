// The pipeline on real engines. Everything happens in one transaction that is rolled back.
#include <gtest/gtest.h>

#include "editor/pipeline_recorder.h"
#include "odbc/odbcd.h"
#include "support/engines.h"
#include "support/printing.h"
#include "support/recording_user_interface.h"

namespace {

class pipeline_engines : public testing::TestWithParam<engine> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(ODBCD::odbc_alloc_env());
    ASSERT_NO_FATAL_FAILURE(connect_to(con, GetParam()));
    ASSERT_TRUE(con.SetACOff());
    ASSERT_TRUE(statement->Make(con));
  }
  void TearDown() override {
    EXPECT_TRUE(con.Free() || con.Disconnect());
    EXPECT_TRUE(ODBCD::odbc_free_env());
  }
  run_result run(std::string_view text, fetch_extent extent = fetch_extent::first_block) {
    return pipeline.run_stmt(text, {.ext_fetch_rows = 100, .extent = extent});
  }
  // Runs a statement that must work, and gives its rows.
  std::int64_t rows(std::string_view text, fetch_extent extent = fetch_extent::first_block) {
    const run_result result = run(text, extent);
    EXPECT_EQ(result.outcome, run_outcome::ok)
        << text << ": " << (result.diagnostic ? diagnostic_text(*result.diagnostic) : "");
    return result.rows;
  }

  recording_user_interface ui;
  odbccon con;
  std::shared_ptr<odbcstmt> statement = std::make_shared<odbcstmt>();
  pipeline_recorder seen;
  statement_pipeline pipeline{statement, seen, seen};
};

TEST_P(pipeline_engines, carry_every_class_of_statement_and_go_on_after_an_error) {
  rows("create table pipeline_words (n integer primary key, word varchar(20))");
  EXPECT_EQ(rows("insert into pipeline_words values (1, 'Grüße'), (2, null)"), 2);
  EXPECT_EQ(rows("insert into pipeline_words with recursive r(n) as (select 3 union all select n + 1 from r where n < "
                 "250) select n, 'x' from r"),
            248);
  EXPECT_EQ(rows("update pipeline_words set word = 'y' where n > 240"), 10);
  EXPECT_EQ(rows("update pipeline_words set word = 'y' where n > 999"), 0);
  EXPECT_EQ(rows("select * from pipeline_words order by n"), 100);
  EXPECT_EQ(statement->Getc(2, 0), value("Grüße"));
  EXPECT_TRUE(statement->Getc(2, 1).is_null());
  EXPECT_EQ(rows("with w as (select * from pipeline_words) select * from w", fetch_extent::all_rows), 250);
  EXPECT_EQ(rows("select * from pipeline_words where n < 0"), 0);
  EXPECT_TRUE(ui.take_texts().empty());

  for (const char* bad : {"selec 1", "select * from no_such_table", "insert into pipeline_words values (1, 'twice')"}) {
    const run_result refused = run(bad);
    EXPECT_EQ(refused.outcome, run_outcome::error) << bad;
    ASSERT_TRUE(refused.diagnostic) << bad;
    EXPECT_FALSE(refused.diagnostic->text.empty()) << bad;
    EXPECT_EQ(ui.take_texts().size(), 1U) << bad;
    EXPECT_EQ(rows("select * from pipeline_words", fetch_extent::all_rows), 250) << "after " << bad;
  }
}

TEST_P(pipeline_engines, know_their_markers) {
  rows("create table pipeline_marks (n integer, word varchar(20))");
  seen.on_enter = [](odbcstmt& entered) { return entered.BindV(std::array<value, 2>{value(7), value("seven")}); };
  EXPECT_EQ(rows("insert into pipeline_marks values (?, ?)"), 1);
  EXPECT_EQ(rows("select * from pipeline_marks where n = ? and word = ?"), 1);
  seen.on_enter = [](odbcstmt&) { return false; };
  EXPECT_EQ(run("delete from pipeline_marks where n = ?").outcome, run_outcome::cancelled);
  EXPECT_EQ(rows("select * from pipeline_marks"), 1);
}

INSTANTIATE_TEST_SUITE_P(engines, pipeline_engines, testing::Values(sqlite(), postgres()),
                         [](const auto& each) { return each.param.name; });

class pipeline_procedures : public pipeline_engines {};

TEST_P(pipeline_procedures, take_and_return_parameters) {
  rows(
      "create procedure pipeline_bump(inout n integer, inout word varchar) language plpgsql as $$ begin n := n + 1; "
      "word := word || '!'; end $$");
  EXPECT_EQ(run("call pipeline_bump(?, ?)").outcome, run_outcome::ok) << "with the defaults";
  ASSERT_EQ(seen.returned_values.size(), 2U);
  EXPECT_EQ(seen.returned_values[0], value(1));
  seen.returned_values.clear();
  seen.on_enter = [](odbcstmt& entered) { return entered.BindProcParm(41, 1) && entered.BindProcParm("Grüße", 2); };
  EXPECT_EQ(run("call pipeline_bump(?, ?)").outcome, run_outcome::ok);
  ASSERT_EQ(seen.returned_values.size(), 2U);
  EXPECT_EQ(seen.returned_values[0], value(42));
  EXPECT_EQ(seen.returned_values[1], value("Grüße!"));
  EXPECT_TRUE(ui.take_texts().empty());
}

TEST_P(pipeline_procedures, run_without_parameters) {
  rows("create table pipeline_log (n integer)");
  rows("create procedure pipeline_note() language sql as $$ insert into pipeline_log values (1) $$");
  EXPECT_EQ(run("call pipeline_note()").outcome, run_outcome::ok);
  EXPECT_EQ(seen.entered, "");
  EXPECT_EQ(rows("select * from pipeline_log"), 1);
}

TEST_P(pipeline_procedures, a_server_that_goes_away_is_an_error_like_any_other) {
  EXPECT_EQ(run("select pg_terminate_backend(pg_backend_pid())").outcome, run_outcome::error);
  EXPECT_EQ(run("select 1").outcome, run_outcome::error);
  EXPECT_EQ(run("create table t (n integer)").outcome, run_outcome::error);
  EXPECT_EQ(ui.take_texts().size(), 3U);
}

INSTANTIATE_TEST_SUITE_P(engines, pipeline_procedures, testing::Values(postgres()),
                         [](const auto& each) { return each.param.name; });

}  // namespace
