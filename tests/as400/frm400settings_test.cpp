#include "as400/frm400settings.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "as400/job_server.h"
#include "support/desktop.h"
#include "support/modal.h"

using texts = std::vector<std::string>;

namespace {

class frm400settings_test : public testing::Test {
 protected:
  void open(const std::function<void(frm400Settings&)>& drive) {
    in_modal<frm400Settings>([this] { action_of(at.frame, "mnuEnvironmentDisplay400JobInfo")->trigger(); }, drive);
  }
  static QLineEdit* box(const frm400Settings& window, const char* name) { return window.findChild<QLineEdit*>(name); }
  static QPushButton* button(const frm400Settings& window, const char* name) {
    return window.findChild<QPushButton*>(name);
  }
  static void type(const frm400Settings& window, const char* name, const QString& text) {
    box(window, name)->selectAll();
    QTest::keyClick(box(window, name), Qt::Key_Delete);
    QTest::keyClicks(box(window, name), text);
  }

  desktop at{scripted_engine()};
  scripted::driver& driver = scripted::control();
};

TEST_F(frm400settings_test, shows_every_value_beside_its_label) {
  session::qualifier_sep = ".";
  driver.answer_to(job_server::call, job_server::procedure());
  open([&](frm400Settings& window) {
    EXPECT_EQ(plain(window.windowTitle()), "AS/400 Job Information Window");
    const std::vector<std::array<const char*, 3>> expected{
        {"JOB", "Job Name", "QZDASOINIT"}, {"USER", "User", "QUSER"},
        {"NBR", "Job #", "123456"},        {"LOGLVL", "LogLvl", "4"},
        {"LOGSEV", "Severity", "0"},       {"LOGTYPE", "LogType", "*NOLIST"},
        {"OUTQ", "Output Q", "QPRINT"},    {"OUTQLIB", "Output Q Lib", "QGPL"},
        {"RUNPTY", "Run Prio", "20"},      {"TIMESLICE", "Timeslice", "2000"},
        {"CURLIB", "Current Library", ""}, {"CURUSER", "Current User Profile", "MILLER"}};
    std::string editable;
    for (const auto& [name, caption, text] : expected) {
      EXPECT_EQ(plain(box(window, name)->text()), text) << name;
      if (!box(window, name)->isReadOnly())
        editable += std::string(name) + '=' + plain(box(window, name)->toolTip()) + '\n';
      for (const QLabel* label : window.findChildren<QLabel*>()) {
        if (label->buddy() != box(window, name)) continue;
        EXPECT_EQ(plain(label->text()), caption);
      }
    }
    EXPECT_EQ(editable,
              "LOGLVL=0 to 4\nLOGSEV=0 to 99\nLOGTYPE=*SAME, *MSG, *NOLIST or *SECLVL\n"
              "RUNPTY=0 to 99; the lower, the sooner the job runs\nTIMESLICE=Milliseconds, 100 or more\n");
    for (const char* name : {"USRLIBL", "SYSLIBL"}) {
      const auto* list = window.findChild<QPlainTextEdit*>(name);
      EXPECT_TRUE(list->isReadOnly());
      EXPECT_EQ(plain(list->toPlainText()), std::string(name) == "USRLIBL" ? "QGPL      QTEMP     SALES" : "QSYS");
      EXPECT_GT(list->height(), box(window, "JOB")->height());
    }
    EXPECT_EQ(tab_order(window, 8), "LOGLVL LOGSEV LOGTYPE RUNPTY TIMESLICE Command1 Command2 JOB");
  });
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST_F(frm400settings_test, a_wrong_value_keeps_the_window_and_a_right_one_is_sent) {
  session::qualifier_sep = ".";
  driver.answer_to(job_server::call, job_server::procedure());
  driver.answer_to(job_server::chgjob, {});
  open([&](frm400Settings& window) {
    type(window, "RUNPTY", "100");
    press_mnemonic(window, Qt::Key_C);
    ASSERT_TRUE(window.isVisible());
    ASSERT_EQ(at.ui.messages.size(), 1U);
    EXPECT_EQ(at.ui.messages[0].title, "User Error");
    EXPECT_EQ(at.ui.messages[0].icon, message_icon::question);
    EXPECT_EQ(at.ui.take_texts(), texts{"Run priority must be between 0 and 99"});
    EXPECT_EQ(driver.count("SQLPrepare"), 1U) << "nothing is sent";
    type(window, "RUNPTY", "20 ");
    type(window, "LOGTYPE", " *nolist");
    QTest::keyClick(box(window, "LOGTYPE"), Qt::Key_Return);
    EXPECT_TRUE(window.isVisible()) << "Enter in a field changes no job";
    press_mnemonic(window, Qt::Key_C);
    EXPECT_FALSE(window.isVisible());
  });
  ASSERT_EQ(driver.executions().size(), 2U);
  EXPECT_EQ(driver.executions()[1].statement, job_server::chgjob);
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST_F(frm400settings_test, system_naming_puts_its_separator_into_both_calls) {
  session::qualifier_sep = "/";
  session::jobinfo_lib = "MYLIB";
  driver.answer_to("call MYLIB/RETJOBINFO (?,?,?,?,?,?,?,?,?,?,?,?,?,?)", job_server::procedure());
  open([&](frm400Settings& window) { button(window, "Command1")->click(); });
  EXPECT_EQ(job_server::prepared(driver).at(1).find("call qsys/qcmdexc('chgjob JOB("), 0U);
  EXPECT_EQ(at.ui.take_texts(), texts{}) << "that the server refused it is not told";
}

TEST_F(frm400settings_test, without_the_procedure_the_job_can_only_be_read) {
  session::qualifier_sep = ".";
  job_server::without_procedure(driver);
  open([&](frm400Settings& window) {
    EXPECT_EQ(plain(box(window, "JOB")->text() + box(window, "USER")->text() + box(window, "NBR")->text()),
              "QZDASOINITQUSER123456");
    EXPECT_EQ(plain(box(window, "RUNPTY")->text()), "");
    EXPECT_FALSE(button(window, "Command1")->isEnabled());
    press_mnemonic(window, Qt::Key_E);
    EXPECT_FALSE(window.isVisible());
  });
  EXPECT_EQ(at.ui.take_texts().size(), 1U);
  EXPECT_EQ(driver.count("SQLPrepare"), 3U);
}

TEST_F(frm400settings_test, another_failure_shows_the_drivers_words_and_empty_fields) {
  session::qualifier_sep = ".";
  driver.answer_to(job_server::call,
                   {.prepare_failure = scripted::failure{SQL_ERROR, "42501", -551, "not authorized"}});
  open([&](frm400Settings& window) {
    EXPECT_EQ(plain(box(window, "JOB")->text()), "");
    EXPECT_TRUE(button(window, "Command1")->isEnabled());
  });
  ASSERT_EQ(at.ui.messages.size(), 1U);
  EXPECT_NE(at.ui.take_texts()[0].find("not authorized"), std::string::npos);
}

TEST_F(frm400settings_test, the_frame_may_go_while_the_message_stands) {
  session::qualifier_sep = ".";
  job_server::without_procedure(driver);
  at.ui.while_open = [&](const message&) {
    at.frame->close();
    settle();
  };
  action_of(at.frame, "mnuEnvironmentDisplay400JobInfo")->trigger();
  EXPECT_TRUE(at.frame.isNull());
}

}  // namespace
