// The console program's logic, on the scripted driver.
#include "batch/batch_run.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "support/recording_user_interface.h"
#include "support/session_scope.h"

namespace {

class batch_run : public testing::Test {
 protected:
  void SetUp() override {
    driver.reset();
    options.data_source = "scripted";
    options.user = "tester";
    options.json = true;
  }
  void TearDown() override { EXPECT_EQ(session_scope::open_driver_handles(), 0U); }
  int run(const std::string& statements) {
    options.statements = statements;
    return run_batch(options, "secret", out, remarks);
  }

  // The outcome of each statement of the last run, whose objects are kept.
  std::vector<std::string> outcomes() {
    std::vector<std::string> all;
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);) {
      objects.push_back(nlohmann::json::parse(line));
      all.push_back(objects.back().at("outcome"));
    }
    return all;
  }

  recording_user_interface ui;
  std::vector<nlohmann::json> objects;
  scripted::driver& driver = scripted::control();
  batch_options options;
  std::ostringstream out;
  std::ostringstream remarks;
};

TEST_F(batch_run, the_options_reach_the_connection) {
  driver.default_answer({.row_count = 0});
  options.isolation = 3;
  options.rowset = 42;
  options.autocommit = true;
  EXPECT_EQ(run("select 1;"), 0);
  EXPECT_EQ(driver.calls("SQLConnect").at(0).args, (std::vector<std::string>{"SCRIPTED", "TESTER", "SECRET"}));
  EXPECT_EQ(driver.connect_options().at(SQL_TXN_ISOLATION), SQL_TXN_REPEATABLE_READ);
  EXPECT_EQ(driver.connect_options().at(SQL_AUTOCOMMIT), SQL_AUTOCOMMIT_ON);
  EXPECT_EQ(driver.calls("SQLSetStmtOption").at(0).args.at(1), "42");
  options = {};
  options.data_source = "scripted";
  EXPECT_EQ(run("select 1;"), 0);
  EXPECT_EQ(driver.connect_options().at(SQL_TXN_ISOLATION), SQL_TXN_READ_UNCOMMITTED);
  EXPECT_EQ(driver.connect_options().at(SQL_AUTOCOMMIT), SQL_AUTOCOMMIT_OFF);
}

TEST_F(batch_run, a_fetch_that_fails_fails_the_statement) {
  scripted::answer breaking{
      .columns = {{"N", SQL_INTEGER, 10}},
      .generated = scripted::generated_rows{2000, [](SQLULEN, std::size_t) { return scripted::cell(1); }},
      .fetch_failures = {{700, {SQL_ERROR, "40003", -913, "deadlock"}}}};
  driver.answer_to("select n from t", breaking);
  options.all_rows = true;
  EXPECT_EQ(run("select n from t;"), 1);
  const auto object = nlohmann::json::parse(out.str());
  EXPECT_EQ(object.at("outcome"), "error");
  EXPECT_EQ(object.at("rows"), 500);
  EXPECT_EQ(object.at("diagnostic").at("native"), -913);
}

TEST_F(batch_run, a_connection_without_statements_is_a_failure) {
  driver.fail("SQLAllocStmt", 2, {SQL_ERROR, "S1001", -5, "no more statements"});  // after the session's own
  EXPECT_EQ(run("select 1;"), 1);
  EXPECT_EQ(out.str(), "");
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_NE(ui.messages[0].text.find("no more statements"), std::string::npos);
}

TEST_F(batch_run, a_check_prepares_and_runs_nothing) {
  driver.answer_to("select n from t", {.columns = {{"N", SQL_INTEGER, 10}}});
  driver.answer_to("delete from t", {.row_count = 3});
  options.mode = batch_mode::check;
  EXPECT_EQ(run("select n from t;selec;delete from t;"), 1);
  EXPECT_EQ(outcomes(), (std::vector<std::string>{"ok", "error", "ok"}));
  EXPECT_EQ(driver.count("SQLExecute"), 0U);
  EXPECT_EQ(ui.take_texts().size(), 1U);
  EXPECT_EQ(remarks.str(), "") << "there is nothing to roll back";
}

TEST_F(batch_run, a_speed_test_fetches_up_to_its_target) {
  driver.answer_to("select n from t", {.columns = {{"N", SQL_INTEGER, 10}},
                                       .generated = scripted::generated_rows{
                                           5000, [](SQLULEN, std::size_t) { return scripted::cell(1); }}});
  options.mode = batch_mode::speed_test;
  options.speed_test_rows = 1200;
  EXPECT_EQ(run("\n select n from t;delete from t;"), 1);
  EXPECT_EQ(outcomes(), (std::vector<std::string>{"ok", "error"}));
  EXPECT_EQ(objects[0].at("rows"), 1500) << "whole blocks";
  EXPECT_EQ(ui.take_texts(), std::vector<std::string>{"You can only Speed Test SELECT statements!"});
  EXPECT_EQ(driver.count("SQLExecute"), 1U);
}

TEST_F(batch_run, markers_take_the_given_values_one_after_the_other) {
  driver.answer_to("update t set a = ?, b = ?", {.parameters = {{SQL_INTEGER, 10}, {SQL_VARCHAR, 9}}, .row_count = 1});
  driver.answer_to("call p(?)", {.parameters = {{SQL_INTEGER, 10}}, .outputs = {{1, 42}}, .row_count = 0});
  driver.answer_to("insert into t values (?)", {.parameters = {{SQL_LONGVARCHAR, 100}}, .row_count = 1});
  const std::string update = "update t set a = ?, b = ?;";
  options.parameters = {"5", "#null#", "41", "5", "x", "many", "y", "z", "left"};
  EXPECT_EQ(run(update + "call p(?);" + update + update + "insert into t values (?);"), 1);
  EXPECT_EQ(outcomes(), (std::vector<std::string>{"ok", "ok", "ok", "cancelled", "cancelled"}));
  EXPECT_EQ(objects[1].at("values"), nlohmann::json::array({42}));
  EXPECT_FALSE(objects[0].contains("values"));
  EXPECT_FALSE(objects[2].contains("values")) << "only the call's own";
  const auto executions = driver.executions();
  ASSERT_EQ(executions.size(), 3U);
  EXPECT_EQ(executions[0].rows.at(0).at(1).length_word, SQL_NULL_DATA);
  EXPECT_EQ(executions[2].rows.at(0).at(1).bytes, "x");
  EXPECT_EQ(ui.take_texts(),
            (std::vector<std::string>{"Bind data # 1 is not numeric!", "Unhandeled Type Encountered!"}));
  EXPECT_EQ(remarks.str().substr(0, remarks.str().find('\n')),
            "sorvane-batch: 1 of the values given with --param was not used");

  options.parameters = {"1"};
  EXPECT_EQ(run(update), 1);
  EXPECT_EQ(ui.take_texts(), std::vector<std::string>{"The statement has 2 parameter markers, and 1 of the values "
                                                      "given with --param is left. It was not executed."});
}

TEST_F(batch_run, a_catalog_that_fails_is_told_once) {
  driver.catalog_answer("SQLPrimaryKeys", {});
  options.mode = batch_mode::catalog;
  options.catalog = catalog_list::keys;
  options.table = "T";
  EXPECT_EQ(run_batch(options, "secret", out, remarks), 1);
  EXPECT_EQ(ui.take_texts(),
            std::vector<std::string>{
                "SQL error. Code = 0. State = S1C00. Message = [Sorvane][Scripted driver] no answer for the "
                "catalog function SQLForeignKeys."});
  EXPECT_EQ(remarks.str(), "");
}

TEST_F(batch_run, what_a_driver_says_in_broken_utf8_stays_json) {
  run_result result;
  result.outcome = run_outcome::error;
  result.rows = -1;
  result.diagnostic = diagnostic_record{0, -1, "S1000", "broken \xFF\xC3"};
  const auto object = nlohmann::json::parse(json_line(3, "select '\xE9'", result));
  EXPECT_EQ(object.at("rows"), -1);
  EXPECT_EQ(object.at("diagnostic").at("message"), "broken \xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
