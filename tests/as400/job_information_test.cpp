#include "as400/job_information.h"

#include <gtest/gtest.h>

#include "as400/job_server.h"
#include "support/fault_sweep.h"
#include "support/recording_user_interface.h"
#include "support/session_scope.h"

using texts = std::vector<std::string>;

namespace {

constexpr std::array all_fields{job_field::job,     job_field::user,      job_field::nbr,     job_field::loglvl,
                                job_field::logsev,  job_field::logtype,   job_field::outq,    job_field::outqlib,
                                job_field::runpty,  job_field::timeslice, job_field::usrlibl, job_field::curlib,
                                job_field::syslibl, job_field::curuser};

std::string joined(const job_texts& job) {
  std::string all;
  for (const job_field field : all_fields) all += job[field] + '|';
  return all;
}

class job_information_test : public testing::Test {
 protected:
  job_reading read() { return read_job(session::g_stmt, " TOOLLIB ", "RETJOBINFO ", "."); }

  recording_user_interface ui;
  session_scope session{scripted_engine()};
  scripted::driver& driver = scripted::control();
};

TEST_F(job_information_test, the_procedures_values_become_texts_and_missing_ones_stay_empty) {
  const std::string before_lists = "QZDASOINIT|QUSER|123456|4|0|*NOLIST|QPRINT|QGPL|20|2000|";
  const std::vector<std::pair<std::size_t, std::string>> cases{
      {14, before_lists + "QGPL      QTEMP     SALES||QSYS|MILLER|"},
      {10, before_lists + "||||"},
      {0, "||||||||||||||"}};
  for (const auto& [count, expected] : cases) {
    driver.answer_to(job_server::call, job_server::procedure(count));
    const job_reading reading = read();
    EXPECT_EQ(joined(reading.texts), expected) << count;
    EXPECT_TRUE(reading.can_change);
    EXPECT_EQ(job_server::prepared(driver).back(), job_server::call);
  }
  scripted::answer strange = job_server::procedure();
  strange.parameters[1] = {SQL_TIME, 8};
  strange.outputs[2] = TIME_STRUCT{1, 2, 3};
  driver.answer_to(job_server::call, strange);
  EXPECT_EQ(joined(read().texts),
            "QZDASOINIT||123456|4|0|*NOLIST|QPRINT|QGPL|20|2000|QGPL      QTEMP     SALES||QSYS|MILLER|")
      << "a type without a text";
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(job_information_test, without_the_procedure_the_job_log_names_the_job) {
  job_server::without_procedure(driver);
  const job_reading reading = read();
  EXPECT_EQ(joined(reading.texts), "QZDASOINIT|QUSER|123456||||||||||||");
  EXPECT_FALSE(reading.can_change);
  EXPECT_EQ(job_server::prepared(driver), (texts{job_server::call, job_server::job_log, job_server::job_name}));
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0].title, "Cannot execute the job number procedure.");
  EXPECT_EQ(ui.messages[0].icon, message_icon::none);
  EXPECT_EQ(ui.messages[0].text.find("Procedure not found.  Ensure that 1) you have created"), 0U);
  EXPECT_FALSE(session::g_stmt.InUse()) << "the cursor is closed";
}

TEST_F(job_information_test, a_job_log_without_the_message_leaves_everything_empty_and_changeable) {
  const std::vector<std::function<void()>> reasons{
      [&] {
        driver.answer_to(job_server::job_name, {.columns = {{"JOBNAME", SQL_CHAR, 10}}});
      },
      [&] { driver.answer_to(job_server::job_name, {.prepare_failure = scripted::failure{}}); },
      [&] {
        driver.answer_to(job_server::job_log, {.execute_failure = scripted::failure{}});
        driver.fail("SQLExtendedFetch", 1, {});
      },
  };
  for (std::size_t i = 0; i < reasons.size(); ++i) {
    driver.reset();
    job_server::without_procedure(driver);
    reasons[i]();
    const job_reading reading = read();
    EXPECT_EQ(joined(reading.texts), "||||||||||||||") << i;
    EXPECT_TRUE(reading.can_change);
    EXPECT_EQ(ui.take_texts().size(), 1U);
  }
}

TEST_F(job_information_test, every_other_failure_is_told_and_the_next_reading_works) {
  driver.answer_to(job_server::call, job_server::procedure());
  const unsigned calls = fault_sweep({.setup =
                                          [&] {
                                            ui.take_texts();
                                            session::g_stmt.Kill();
                                            session::g_stmt.Make(session::g_con);
                                          },
                                      .operation = [&] { return read().texts[job_field::job] == "QZDASOINIT"; },
                                      .check =
                                          [&](const scripted::call& struck, bool answered) {
                                            // What the layer works around is no failure.
                                            EXPECT_EQ(ui.messages.empty(), answered) << struck.function;
                                            EXPECT_EQ(read().texts[job_field::curuser], "MILLER") << struck.function;
                                          }});
  EXPECT_GT(calls, 10U);
}

struct rule_case {
  job_field field;
  const char* typed;
  const char* message;
};

job_texts good_job() {
  job_texts job;
  job[job_field::job] = " QZDASOINIT ";
  job[job_field::user] = "QUSER ";
  job[job_field::nbr] = "123456";
  job[job_field::runpty] = " 20";
  job[job_field::timeslice] = "2000";
  job[job_field::logtype] = " *nolist ";
  job[job_field::logsev] = "0 ";
  job[job_field::loglvl] = "4";
  return job;
}

TEST(job_change, attributes_are_checked) {
  const std::vector<rule_case> cases{
      {job_field::runpty, "99", ""},
      {job_field::runpty, "0", ""},
      {job_field::runpty, "98.5", ""},
      {job_field::runpty, "", "Run priority must be a number"},
      {job_field::runpty, "1x", "Run priority must be a number"},
      {job_field::runpty, "100", "Run priority must be between 0 and 99"},
      {job_field::runpty, "99.5", "Run priority must be between 0 and 99"},
      {job_field::runpty, "-1", "Run priority must be between 0 and 99"},
      {job_field::timeslice, "100", ""},
      {job_field::timeslice, "1E9", ""},
      {job_field::timeslice, "x", "Timeslice must be a number"},
      {job_field::timeslice, "99.9", "Timeslice must be greater than 100"},
      {job_field::logtype, "*Seclvl", ""},
      {job_field::logtype, "*SAME", ""},
      {job_field::logtype, "*msg", ""},
      {job_field::logtype, "*ALL", "Invalid log type!  Must be *SAME,*MSG,*NOLIST or *SECLVL"},
      {job_field::logtype, "", "Invalid log type!  Must be *SAME,*MSG,*NOLIST or *SECLVL"},
      {job_field::logsev, "99", ""},
      {job_field::logsev, "high", "Log severity must be a number"},
      {job_field::logsev, "99.01", "Log severity must be between 0 and 99"},
      {job_field::loglvl, "0", ""},
      {job_field::loglvl, "-", "Log level must be a number"},
      {job_field::loglvl, "5", "Log level must be between 0 and 4"},
      {job_field::loglvl, "-0.1", "Log level must be between 0 and 4"},
  };
  for (const rule_case& each : cases) {
    job_texts typed = good_job();
    typed[each.field] = each.typed;
    EXPECT_EQ(wrong_job_attribute(typed), each.message) << each.typed;
  }
  job_texts wrong;
  texts order;
  for (const job_field mended : {job_field::runpty, job_field::timeslice, job_field::logtype, job_field::logsev}) {
    order.push_back(wrong_job_attribute(wrong));
    wrong[mended] = good_job()[mended];
  }
  order.push_back(wrong_job_attribute(wrong));
  EXPECT_EQ(order, (texts{"Run priority must be a number", "Timeslice must be a number",
                          "Invalid log type!  Must be *SAME,*MSG,*NOLIST or *SECLVL", "Log severity must be a number",
                          "Log level must be a number"}));
}

TEST_F(job_information_test, the_change_is_sent_as_typed_and_its_failure_is_not_told) {
  change_job(session::g_stmt, good_job(), ".");
  driver.answer_to(job_server::chgjob, {});
  change_job(session::g_stmt, good_job(), ".");
  EXPECT_EQ(job_server::prepared(driver), (texts{job_server::chgjob, job_server::chgjob}));
  EXPECT_EQ(driver.executions().size(), 1U);
  EXPECT_EQ(ui.take_texts(), texts{});
}

}  // namespace
