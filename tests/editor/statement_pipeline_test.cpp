#include "editor/statement_pipeline.h"

#include <gtest/gtest.h>

#include <cstring>

#include "base/number_format.h"
#include "editor/pipeline_recorder.h"
#include "odbc/odbcd.h"
#include "scripted_driver.h"
#include "support/engines.h"
#include "support/printing.h"
#include "support/recording_user_interface.h"
#include "support/ticking_clock.h"

using namespace std::string_literals;
using texts = std::vector<std::string>;

namespace {

constexpr const char* no_diagnostic = "Error return 100 during call to SQLERROR.";

scripted::answer numbers(SQLULEN count) {
  return {.columns = {{"N", SQL_INTEGER, 10}},
          .generated = scripted::generated_rows{
              count, [](SQLULEN row, std::size_t) { return scripted::cell(static_cast<std::int32_t>(row)); }}};
}

scripted::answer affecting(SQLLEN rows) { return {.row_count = rows}; }

// A pipeline on the scripted driver; every phase takes a quarter of a second.
class pipeline_test : public testing::Test {
 protected:
  void SetUp() override {
    driver.reset();
    ASSERT_TRUE(ODBCD::odbc_alloc_env());
    ASSERT_TRUE(con.Connect("SCRIPTED", "ME", "SECRET"));
    ASSERT_TRUE(con.SetACOff());
    ASSERT_TRUE(statement->Make(con));
  }
  void TearDown() override {
    EXPECT_TRUE(driver.transactions().empty()) << "a run commits and rolls back nothing";
    EXPECT_EQ(busy().busy_depth, 0);
    EXPECT_TRUE(con.Disconnect());
    EXPECT_TRUE(ODBCD::odbc_free_env());
    EXPECT_EQ(driver.open_statements() + driver.open_connections(), 0U);
  }
  run_result run(std::string_view text) { return pipeline.run_stmt(text, options); }
  // The text of the last SQLPrepare.
  [[nodiscard]] std::string prepared() const {
    const auto calls = driver.calls("SQLPrepare");
    return calls.empty() ? "<nothing>" : calls.back().args.at(0);
  }
  void expect_next_statement_works() {
    ui.messages.clear();
    driver.answer_to("select n from next", numbers(2));
    run_options plain = options;
    plain.ext_fetch_rows = 500;
    EXPECT_EQ(pipeline.run_stmt("select n from next", plain).rows, 2);
    EXPECT_EQ(ui.take_texts(), texts{});
  }

  recording_user_interface ui;
  ticking_clock clock{0.25};
  scripted::driver& driver = scripted::control();
  odbccon con;
  std::shared_ptr<odbcstmt> statement = std::make_shared<odbcstmt>();
  pipeline_recorder seen;
  statement_pipeline pipeline{statement, seen, seen};
  run_options options;
};

TEST_F(pipeline_test, a_query_shows_its_phases_and_figures) {
  driver.answer_to("\r\n select n from t", numbers(3));
  run("\r\n select n from t");
  seen.panels[6] = "9.99";  // as a window of rows leaves it
  seen.shown.clear();       // nothing of the run before stays
  const run_result result = run("\r\n select n from t");
  EXPECT_EQ(seen.shown, (texts{
                            "Prepare...|0.00000|0.00000|0.00000|0.00000|0|0.00000",
                            "Executing|.25|0.00000|0.00000|0.00000|0|0.00000",
                            "Fetching 10000 target rows|.25|.25|0.00000|0.00000|0|0.00000",
                            "Status...|.25|.25|.25|12.|3|0.00000",
                        }));
  EXPECT_EQ(result.kind, statement_class::query);
  EXPECT_EQ(result.outcome, run_outcome::ok);
  EXPECT_EQ(result.rows, 3);
  EXPECT_EQ(result.prepare_s + result.execute_s + result.fetch_s, 0.75);
  EXPECT_EQ(result.rows_per_s, 12);
  EXPECT_FALSE(result.diagnostic);
  EXPECT_EQ(driver.calls("SQLSetStmtOption").at(0).args, (texts{std::to_string(SQL_ROWSET_SIZE), "500"}));
}

struct count_case {
  SQLLEN affected;
  double step;
  const char* panels;
};

TEST_F(pipeline_test, a_statement_without_rows_shows_how_many_it_affected) {
  const std::vector<count_case> cases{
      {7, 0.25, "Status...|.25|.25|0.00000|28.|7|0.00000"},
      {1000, 0.125, "Status...|.125|.125|0.00000|8,000.|1000|0.00000"},
      {0, 0.25, "Status...|.25|.25|0.00000|0.00000|0|0.00000"},
      {-1, 0.25, "Status...|.25|.25|0.00000|0.00000|-1|0.00000"},
      {7, 0, "Status...|.|.|0.00000|0.00000|7|0.00000"},
      {7, 0x1p-40, "Status...|.|.|0.00000|0.00000|7|0.00000"},
  };
  for (const count_case& each : cases) {
    clock.set_step(each.step);
    driver.answer_to("update t set a = 1", affecting(each.affected));
    const run_result result = run("update t set a = 1");
    EXPECT_EQ(seen.shown.back(), each.panels);
    EXPECT_EQ(result.rows, each.affected);
  }
  EXPECT_EQ(driver.count("SQLSetStmtOption"), 0U) << "no rowset for a statement that is no query";
}

TEST_F(pipeline_test, a_host_command_is_prepared_as_a_call_of_qcmdexc) {
  driver.default_answer(affecting(0));
  const run_result result = run("exe400 DSPJOB");
  EXPECT_EQ(result.kind, statement_class::host_command);
  EXPECT_EQ(prepared(), "call qsys.qcmdexc(' DSPJOB',0000000007.00000)");
  run("\r\n EXE400SNDMSG 'ü'  ");
  EXPECT_EQ(prepared(), "call qsys.qcmdexc('SNDMSG 'ü'  ',0000000012.00000)");
  EXPECT_EQ(seen.entered, "");
  EXPECT_EQ(seen.returned, 0);
}

TEST_F(pipeline_test, a_call_without_parameters_just_runs_and_its_result_set_is_fetched) {
  scripted::answer procedure = numbers(3);
  procedure.columns_after_execute = true;
  driver.answer_to("call p", procedure);
  const run_result result = run("call p");
  EXPECT_EQ(result.kind, statement_class::call);
  EXPECT_EQ(seen.entered, "");
  EXPECT_EQ(seen.returned, 0);
  EXPECT_EQ(seen.shown.back(), "Status...|.25|.25|.25|12.|3|0.00000");
  driver.answer_to("call q", affecting(2));
  EXPECT_EQ(run("call q").rows, 2);
}

TEST_F(pipeline_test, a_calls_parameters_start_at_their_defaults_and_are_shown_after_it) {
  driver.answer_to("call p(?,?,?,?)", {.parameters = {{SQL_INTEGER, 10}, {SQL_CHAR, 4}, {SQL_DATE, 10}, {SQL_TIME, 8}},
                                       .outputs = {{1, 42}, {2, "ab"}},
                                       .row_count = 0});
  EXPECT_EQ(run("call p(?,?,?,?)").outcome, run_outcome::ok);
  EXPECT_EQ(seen.shown, (texts{
                            "Prepare...|0.00000|0.00000|0.00000|0.00000|0|0.00000",
                            "Executing|.25|0.00000|0.00000|0.00000|0|0.00000",
                            "Waiting for Parameters....|.25|0.00000|0.00000|0.00000|0|0.00000",
                            "Fetching 10000 target rows|.25|.25|0.00000|0.00000|0|0.00000",
                            "Status...|.25|.25|0.00000|0.00000|0|0.00000",
                        }));
  const auto sent = driver.executions().at(0).rows.at(0);
  ASSERT_EQ(sent.size(), 4U);
  EXPECT_EQ(sent[0].bytes, "\0\0\0\0"s);
  EXPECT_EQ(sent[1].bytes, "    ");
  const DATE_STRUCT today{2001, 5, 17};
  EXPECT_EQ(sent[2].bytes, std::string(reinterpret_cast<const char*>(&today), sizeof today));
  EXPECT_EQ(sent[3].length_word, SQL_NULL_DATA) << "a time has no default";
  EXPECT_EQ(seen.entered, "call");
  EXPECT_EQ(seen.returned, 1);
  EXPECT_EQ(seen.returned_values.at(0), value(42));
  EXPECT_EQ(seen.returned_values.at(1), value("ab"));
}

TEST_F(pipeline_test, markers_wait_for_values_and_a_refusal_ends_the_run_before_it_executes) {
  scripted::answer asked = numbers(1);
  asked.parameters = {{SQL_INTEGER, 10}};
  driver.answer_to("select n from t where n = ?", asked);
  seen.on_enter = [](odbcstmt& entered) { return entered.BindV(std::array<value, 1>{value(5)}); };
  EXPECT_EQ(run("select n from t where n = ?").rows, 1);
  EXPECT_EQ(seen.entered, "markers");
  EXPECT_EQ(seen.returned, 0) << "only a call shows its parameters afterwards";

  seen.on_enter = [](odbcstmt&) { return false; };
  const run_result refused = run("select n from t where n = ?");
  EXPECT_EQ(refused.outcome, run_outcome::cancelled);
  EXPECT_EQ(seen.shown.back(), "Status...|.25|0.00000|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(driver.count("SQLExecute"), 1U);
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(pipeline_test, nothing_of_a_document_is_touched_that_went_away_while_parameters_were_entered) {
  scripted::answer asked = affecting(1);
  asked.parameters = {{SQL_INTEGER, 10}};
  driver.answer_to("delete from t where n = ?", asked);
  seen.on_enter = [this](odbcstmt& entered) {
    pipeline.detach();
    entered.Kill();
    return true;
  };
  EXPECT_EQ(run("delete from t where n = ?").outcome, run_outcome::cancelled);
  EXPECT_EQ(seen.shown.size(), 3U);
  EXPECT_EQ(seen.panels[0], "Waiting for Parameters....");
  EXPECT_TRUE(driver.executions().empty());
  EXPECT_EQ(run("delete from t where n = 1").outcome, run_outcome::cancelled) << "and no run begins any more";
  EXPECT_EQ(seen.shown.size(), 3U);
}

TEST_F(pipeline_test, a_failure_shows_the_drivers_words_and_leaves_the_phase) {
  run_result result = run("selec 1");
  EXPECT_EQ(seen.panels[0], "Prepare...");
  EXPECT_EQ(result.outcome, run_outcome::error);
  ASSERT_TRUE(result.diagnostic);
  EXPECT_EQ(result.diagnostic->native, -104);
  EXPECT_EQ(result.diagnostic->state, "37000");
  EXPECT_EQ(ui.take_texts(),
            texts{"SQL error. Code = -104. State = 37000. Message = " + result.diagnostic->text + "."});
  EXPECT_EQ(driver.count("SQLExecute"), 0U);

  driver.answer_to("select n from gone",
                   {.columns = {{"N", SQL_INTEGER, 10}},
                    .execute_failure = scripted::failure{SQL_ERROR, "S0002", -204, "GONE not found"}});
  result = run("select n from gone");
  EXPECT_EQ(seen.shown.back(), "Executing|.25|0.00000|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(result.outcome, run_outcome::error);
  EXPECT_EQ(ui.messages.size(), 1U);
  EXPECT_NE(ui.take_texts().at(0).find("Code = -204. State = S0002."), std::string::npos);
  EXPECT_EQ(driver.count("SQLExtendedFetch"), 0U);

  driver.fail("SQLNumResultCols", 2, {SQL_ERROR, "S1000", -901, "no description"});
  driver.answer_to("call p", affecting(0));
  result = run("call p");
  EXPECT_EQ(result.outcome, run_outcome::error) << "a call whose result can not be described";
  EXPECT_EQ(result.diagnostic->native, -901);
  EXPECT_EQ(ui.messages.size(), 1U);
  expect_next_statement_works();
}

TEST_F(pipeline_test, an_empty_statement_is_the_drivers_to_refuse) {
  EXPECT_EQ(run("").outcome, run_outcome::error);
  EXPECT_EQ(driver.count("SQLPrepare") + ui.messages.size(), 2U);
  EXPECT_EQ(run(" \r\n").kind, statement_class::other);
  EXPECT_EQ(prepared(), " \r\n");
  EXPECT_EQ(driver.count("SQLExecute"), 0U);
}

struct extent_case {
  SQLULEN rows;
  bool ext_fetch;
  fetch_extent extent;
  std::int64_t fetched;
};

TEST_F(pipeline_test, only_as_much_is_fetched_as_was_asked) {
  using enum fetch_extent;
  const std::vector<extent_case> cases{
      {1200, true, first_block, 500}, {1200, true, first_block_or_row, 500}, {1200, true, all_rows, 1200},
      {1000, true, all_rows, 1000},   {1200, false, first_block_or_row, 1},  {1200, false, all_rows, 1200},
      {3, true, all_rows, 3},
  };
  for (const extent_case& each : cases) {
    SCOPED_TRACE(testing::Message() << each.rows << " rows, blocks " << each.ext_fetch << ", extent "
                                    << static_cast<int>(each.extent));
    driver.answer_to("select n from t", numbers(each.rows));
    options.ext_fetch = each.ext_fetch;
    options.extent = each.extent;
    const run_result result = run("select n from t");
    EXPECT_EQ(result.rows, each.fetched);
    EXPECT_EQ(result.outcome, run_outcome::ok);
    EXPECT_EQ(seen.panels[0] + ' ' + seen.panels[5], "Status... " + std::to_string(each.fetched));
  }
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(pipeline_test, without_a_row_the_panels_stay_on_the_fetching_phase) {
  driver.answer_to("select n from t", numbers(0));
  EXPECT_EQ(run("select n from t").outcome, run_outcome::ok);
  EXPECT_EQ(seen.line(), "Fetching 10000 target rows|.25|.25|0.00000|0.00000|0|0.00000");

  driver.answer_to("select n from t", numbers(9));
  options.ext_fetch = false;  // the bench fetches nothing then
  options.speed_test_rows = 50;
  EXPECT_EQ(run("select n from t").outcome, run_outcome::ok);
  EXPECT_EQ(seen.line(), "Fetching 50 target rows|.25|.25|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(driver.count("SQLFetch"), 0U);
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(pipeline_test, a_fetch_that_fails_is_an_error_with_the_rows_counted_so_far) {
  scripted::answer breaking = numbers(2000);
  breaking.fetch_failures = {{1200, {SQL_ERROR, "40003", -913, "deadlock"}}};
  driver.answer_to("select n from t", breaking);
  EXPECT_EQ(run("select n from t").outcome, run_outcome::ok) << "the first block comes whole";
  options.extent = fetch_extent::all_rows;
  run_result result = run("select n from t");
  EXPECT_EQ(result.outcome, run_outcome::error);
  EXPECT_EQ(result.rows, 1000);
  ASSERT_TRUE(result.diagnostic);
  EXPECT_EQ(result.diagnostic->native, -913);
  EXPECT_EQ(seen.panels[5], "1000");

  breaking.fetch_failures = {{0, {SQL_ERROR, "40003", -913, "deadlock"}}};
  driver.answer_to("select n from t", breaking);
  result = run("select n from t");
  EXPECT_EQ(result.outcome, run_outcome::error);
  EXPECT_EQ(result.rows, 0);
  EXPECT_EQ(seen.panels[0], "Fetching 10000 target rows");
  expect_next_statement_works();
}

TEST_F(pipeline_test, what_the_layer_itself_refuses_is_told_in_its_own_words) {
  driver.answer_to("select pic from t", {.columns = {{"N", SQL_INTEGER, 10}, {"PIC", SQL_BIT, 1}}});
  EXPECT_EQ(run("select pic from t").diagnostic->text,
            "Column 2 (\"PIC\") has the type Bit (code -7), which can not be fetched.");
  EXPECT_EQ(ui.messages.back().title, "Program Error");
  EXPECT_EQ(ui.take_texts(),
            (texts{no_diagnostic, "Column 2 (\"PIC\") has the type Bit (code -7), which can not be fetched."}));

  // Directly after it: an earlier refusal must not speak for a later one.
  for (const std::int32_t rows : {0, 1001}) {
    options.ext_fetch_rows = rows;
    EXPECT_EQ(run("select n from t").outcome, run_outcome::error);
    EXPECT_EQ(ui.take_texts().back(),
              "The number of rows per block must be between 1 and 1000; see ExtFetch Rows on the Options Panel.");
  }
  EXPECT_EQ(run("select\0 1"s).outcome, run_outcome::error);  // the text is looked at after the rows

  options.ext_fetch_rows = 500;
  EXPECT_EQ(run("select\0 1"s).outcome, run_outcome::error);
  EXPECT_EQ(ui.take_texts().back(), "The text holds a zero byte or a character that the code page " +
                                        current_code_page().name() + " lacks, so it can not be sent.");
  EXPECT_EQ(driver.count("SQLPrepare"), 1U);

  EXPECT_EQ(run("selec").outcome, run_outcome::error);
  EXPECT_EQ(ui.take_texts().size(), 1U) << "here the driver alone has the word";
  expect_next_statement_works();
}

TEST_F(pipeline_test, a_result_too_wide_for_any_buffer_is_told) {
  scripted::answer wide;
  for (int i = 0; i < 200; ++i) wide.columns.push_back({"C", SQL_VARCHAR, 0x7FFFFFFF});
  driver.answer_to("select * from wide", wide);
  EXPECT_EQ(run("select * from wide").outcome, run_outcome::error);
  EXPECT_EQ(ui.take_texts().back(), "The rows of the result are too wide: there is no memory to fetch them into.");
  expect_next_statement_works();
}

TEST_F(pipeline_test, a_statement_travels_in_the_code_page) {
  const scoped_code_page page("ISO-8859-1");
  driver.default_answer(affecting(0));
  EXPECT_EQ(run("update t set a = 'é'").outcome, run_outcome::ok);
  EXPECT_EQ(prepared(), "update t set a = '\xE9'");
  EXPECT_EQ(run("update t set a = '€'").outcome, run_outcome::error);
  EXPECT_NE(ui.take_texts().back().find("ISO-8859-1"), std::string::npos);
}

TEST_F(pipeline_test, a_statement_of_a_megabyte_arrives_whole) {
  const std::string text = "select '" + std::string(1 << 20, 'x') + "'";
  driver.default_answer(numbers(1));
  EXPECT_EQ(run(text).outcome, run_outcome::ok);
  EXPECT_TRUE(prepared() == text);
}

TEST_F(pipeline_test, a_data_window_gets_what_the_first_fetch_brought) {
  seen.data_window = true;
  options.dw_rows = 77;
  driver.answer_to("select n from t", numbers(1200));
  EXPECT_EQ(run("select n from t").rows, 500);
  EXPECT_EQ(seen.shown.at(seen.shown.size() - 3), "Fetch to Window: 77 rows|.25|.25|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(seen.shown.at(seen.shown.size() - 2), "Status...|.25|.25|0.250000|2,000.|500|0.00000");
  EXPECT_EQ(seen.shown.back(), "Status...|.25|.25|0.250000|2,000.|500|0.250");

  options.ext_fetch = false;
  run("select n from t");
  EXPECT_EQ(seen.shown.back(), "Status...|.25|.25|0.250000|4.|1|0.250");

  options.ext_fetch = true;
  driver.answer_to("select n from t", numbers(0));
  EXPECT_EQ(run("select n from t").outcome, run_outcome::ok);
  EXPECT_EQ(seen.shown.back(), "Status...|.25|.25|0|0.00000|0|0.250");
  EXPECT_EQ(ui.take_texts(), texts{});

  scripted::answer breaking = numbers(9);
  breaking.fetch_failures = {{0, {SQL_ERROR, "40003", -913, "deadlock"}}};
  driver.answer_to("select n from t", breaking);
  EXPECT_EQ(run("select n from t").outcome, run_outcome::error);
  ASSERT_EQ(ui.messages.size(), 1U) << "a failure does not pass for an empty result";
  EXPECT_NE(ui.take_texts()[0].find("deadlock"), std::string::npos);
  EXPECT_EQ(seen.windows,
            (texts{"select n from t|500|0", "select n from t|1|0", "select n from t|0|", "select n from t|0|"}));

  driver.answer_to("update t set n = 1", affecting(2));
  run("update t set n = 1");
  EXPECT_EQ(seen.windows.size(), 4U) << "only results are shown";
}

TEST_F(pipeline_test, a_syntax_check_prepares_releases_and_changes_no_panel) {
  driver.answer_to("select n from t", numbers(3));
  EXPECT_EQ(pipeline.prep_stmt("select n from t").outcome, run_outcome::ok);
  EXPECT_FALSE(statement->InUse());
  EXPECT_EQ(ui.take_texts(), texts{});
  EXPECT_EQ(pipeline.prep_stmt("selec 1").diagnostic->native, -104);
  EXPECT_FALSE(statement->InUse());
  EXPECT_EQ(ui.take_texts().size(), 1U);
  EXPECT_EQ(seen.shown, texts{});
  EXPECT_EQ(seen.line(), "Status:|0.00000|0.00000|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(driver.count("SQLExecute") + driver.count("SQLSetStmtOption"), 0U);
}

struct speed_case {
  SQLULEN rows;
  std::int32_t target;
  bool ext_fetch;
  std::int32_t rowset;
  std::int64_t fetched;
  std::size_t fetches;
  const char* panel_6;
};

TEST_F(pipeline_test, a_speed_test_fetches_until_the_target_is_reached) {
  const std::vector<speed_case> cases{
      {20000, 10000, true, 500, 10000, 20, "10000"}, {20000, 10000, true, 300, 10200, 34, "10200"},
      {1200, 10000, true, 500, 1200, 4, "1200"},     {50, 100, false, 500, 50, 51, "earlier"},
      {500, 250, false, 500, 250, 250, "200"},       {3, 2, true, 1, 2, 2, "earlier"},
  };
  for (const speed_case& each : cases) {
    SCOPED_TRACE(testing::Message() << each.rows << " rows, target " << each.target << ", rowset " << each.rowset);
    driver.clear_log();
    driver.answer_to("SELECT n from t", numbers(each.rows));
    options = {.ext_fetch = each.ext_fetch, .ext_fetch_rows = each.rowset, .speed_test_rows = each.target};
    seen.panels = {"", "", "", "", "", "earlier", "kept"};
    const run_result result = pipeline.speed_stmt("SELECT n from t", options);
    EXPECT_EQ(result.outcome, run_outcome::ok);
    EXPECT_EQ(result.rows, each.fetched);
    EXPECT_EQ(driver.count("SQLExtendedFetch") + driver.count("SQLFetch"), each.fetches);
    EXPECT_EQ(seen.line(), "StatuMyCursor...|.25|.25|.25|" +
                               format_number(static_cast<double>(each.fetched) * 4, "##,###.###") + '|' + each.panel_6 +
                               "|kept");
  }
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(pipeline_test, a_speed_test_tells_why_it_measured_nothing) {
  const auto phase_after = [&](std::string_view text) {
    const run_result result = pipeline.speed_stmt(text, options);
    return seen.panels[0] + '|' + std::string(outcome_name(result.outcome));
  };
  for (const char* text : {"with a as (select 1) select * from a", "", " select 1", "update t set a = 1", "selec"}) {
    EXPECT_EQ(phase_after(text), "Preparing|error") << text;
    EXPECT_EQ(ui.take_texts(), texts{"You can only Speed Test SELECT statements!"}) << text;
  }
  EXPECT_EQ(driver.count("SQLPrepare"), 0U);

  EXPECT_EQ(phase_after("select from"), "Preparing|error");
  EXPECT_EQ(ui.take_texts().size(), 1U);
  scripted::answer asking = numbers(1);
  asking.parameters = {{SQL_INTEGER, 10}};
  asking.execute_failure = scripted::failure{SQL_ERROR, "07001", -313, "values are missing"};
  driver.answer_to("select ?", asking);
  EXPECT_EQ(phase_after("select ?"), "Executing|error");
  EXPECT_EQ(seen.entered, "") << "markers are not asked for";
  EXPECT_EQ(ui.take_texts().size(), 1U);

  driver.answer_to("select n from t", numbers(0));
  EXPECT_EQ(phase_after("select n from t"), "Fetching 10000 target rows|ok");
  EXPECT_EQ(ui.messages.at(0).title, "");
  EXPECT_EQ(ui.messages.at(0).details, "");
  EXPECT_EQ(ui.take_texts(), texts{"No Rows!"});

  scripted::answer breaking = numbers(2000);
  breaking.fetch_failures = {{0, {SQL_ERROR, "40003", -913, "deadlock"}}};
  driver.answer_to("select n from t", breaking);
  EXPECT_EQ(phase_after("select n from t"), "Fetching 10000 target rows|error");
  EXPECT_NE(ui.messages.at(0).details.find("deadlock"), std::string::npos);
  EXPECT_EQ(ui.take_texts(), texts{"No Rows!"});

  breaking.fetch_failures = {{700, {SQL_ERROR, "40003", -913, "deadlock"}}};
  driver.answer_to("select n from t", breaking);
  EXPECT_EQ(phase_after("select n from t"), "StatuMyCursor...|error") << "the times stand for the rows that came";
  EXPECT_EQ(seen.panels[5], "500");
  expect_next_statement_works();
}

}  // namespace
