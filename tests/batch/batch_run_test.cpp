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

  recording_user_interface ui;
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
