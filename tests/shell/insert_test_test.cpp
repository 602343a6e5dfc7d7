#include "shell/insert_test.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/recording_user_interface.h"
#include "support/session_scope.h"
#include "support/ticking_clock.h"

namespace {

constexpr const char* insert = "insert into news.testtrg1 (a,b,c) values (?,?,?)";

class insert_test : public testing::Test {
 protected:
  recording_user_interface ui;
  session_scope session{scripted_engine()};
  ticking_clock clock{0.25};
  scripted::driver& driver = scripted::control();
};

TEST_F(insert_test, sends_a_hundred_rows_one_by_one_and_shows_the_rate) {
  driver.answer_to(insert, {.parameters = {{SQL_INTEGER, 10}, {SQL_CHAR, 10}, {SQL_DATE, 10}}, .row_count = 1});
  run_insert_test(session::g_con);
  const auto sent = driver.executions();
  ASSERT_EQ(sent.size(), 100U);
  for (std::int32_t i = 1; i <= 100; ++i) {
    const auto& row = sent[static_cast<std::size_t>(i - 1)].rows.at(0);
    std::int32_t number = 0;
    std::memcpy(&number, row.at(0).bytes.data(), sizeof number);
    TIMESTAMP_STRUCT day{};
    std::memcpy(&day, row.at(2).bytes.data(), sizeof day);
    EXPECT_EQ(number, i);
    EXPECT_EQ(row.at(1).bytes, "TST");
    EXPECT_EQ(day.year * 10000 + day.month * 100 + day.day, 20010517);
    EXPECT_EQ(day.hour + day.minute + day.second, 0) << "today without the time of day";
  }
  EXPECT_EQ(driver.transactions().back(), "commit");
  EXPECT_EQ(ui.take_texts(), (std::vector<std::string>{"Error return 100 during call to SQLERROR.", "404 "}));
  EXPECT_EQ(driver.open_statements(), 1U) << "only the session's own";
}

TEST_F(insert_test, shows_every_failure) {
  run_insert_test(session::g_con);
  const auto shown = ui.take_texts();
  ASSERT_EQ(shown.size(), 102U);
  EXPECT_NE(shown[0].find("no answer for the statement"), std::string::npos);
  EXPECT_EQ(shown[101], "404 ");
}

}  // namespace
