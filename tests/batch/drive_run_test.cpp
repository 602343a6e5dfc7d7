// One statement driven by the rows of another, as the console program does it.
#include "batch/drive_run.h"

#include <gtest/gtest.h>

#include <sstream>

#include "batch/batch_options.h"
#include "batch/batch_run.h"
#include "support/recording_user_interface.h"
#include "support/session_scope.h"

namespace {

class drive_run : public testing::Test {
 protected:
  drive_run() {
    options.data_source = "sqlite";
    options.mode = batch_mode::drive;
  }
  int run(const std::string& source, const std::string& target) {
    options.drive_source = source;
    options.drive_target = target;
    out.str("");
    remarks.str("");
    return run_drive(options, "", out, remarks, &live);
  }
  static std::optional<batch_options> parsed(std::vector<const char*> words) {
    words.insert(words.begin(), {"sorvane-batch", "--dsn", "sqlite"});
    int exit_status = 0;
    auto options = parse_batch_options(static_cast<int>(words.size()), words.data(), exit_status);
    EXPECT_EQ(exit_status, options ? 0 : 2);
    return options;
  }

  recording_user_interface ui;
  batch_options options;
  std::ostringstream out, remarks, live;
};

TEST_F(drive_run, prints_the_counters_and_each_rows_error) {
  options.autocommit = true;
  options.json = true;
  options.statements = "create table driven(i integer primary key, t varchar(10)); insert into driven values(2, 'b');";
  ASSERT_EQ(run_batch(options, "", out, remarks), 0) << remarks.str();
  ui.take_texts();
  EXPECT_EQ(run("select 1, 'a' union all select 2, null union all select 3, 'c'", "insert into driven values(?,?)"), 1);
  EXPECT_EQ(out.str(), "{\"read\":3,\"written\":2,\"errors\":1,\"outcome\":\"ok\"}\n");
  EXPECT_EQ(ui.messages.back().text, "Error @ input row: 2 data =  data 1 = 2 data 2 = ");
  EXPECT_NE(ui.messages.back().details.find("UNIQUE constraint failed"), std::string::npos);
  EXPECT_EQ(live.str(), "\rRead: 3  Written: 0  Errors: 0\rRead: 3  Written: 2  Errors: 1\n");

  options.autocommit = false;
  options.json = false;
  EXPECT_EQ(run("select i from driven", "delete from driven where i = ?"), 0);
  EXPECT_EQ(out.str(), "      read     written      errors  outcome\n         3           3           0  ok\n");
  EXPECT_EQ(remarks.str(), "sorvane-batch: autocommit is off: the rows written are rolled back now\n");
  EXPECT_EQ(run("select i from driven", "delete from driven where i = ?"), 0);
  EXPECT_EQ(out.str().substr(45, 9), "        3");
  EXPECT_EQ(run("select i, t from driven", "delete from driven where i = ?"), 1);
  EXPECT_EQ(remarks.str(), "");
  options.data_source = "nowhere";
  EXPECT_EQ(run("select 1", "x"), 2);
}

TEST_F(drive_run, a_target_is_a_statement_or_a_number) {
  const auto driven = parsed({"--drive", "select 1", "--target", "delete from t where i = ?"});
  ASSERT_TRUE(driven);
  EXPECT_EQ(driven->mode, batch_mode::drive);
  EXPECT_EQ(driven->drive_source, "select 1");
  EXPECT_EQ(driven->drive_target, "delete from t where i = ?");
  EXPECT_EQ(parsed({"--speed-test", "--target", "2147483647", "-e", "x;"})->speed_test_rows, 2147483647);
  for (const char* wrong : {"0", "2147483648", "many", "delete", "5x", ""})
    EXPECT_FALSE(parsed({"--speed-test", "--target", wrong, "-e", "x;"})) << wrong;
  EXPECT_FALSE(parsed({"--drive", "select 1"}));
  EXPECT_FALSE(parsed({"--drive", "select 1", "--target", "x", "-e", "x;"}));
  EXPECT_FALSE(parsed({"--target", "5", "-e", "x;"}));
}

}  // namespace
