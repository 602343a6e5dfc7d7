#include "shell/frmoptions.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "support/desktop.h"
#include "support/modal.h"

using texts = std::vector<std::string>;

namespace {

constexpr const char* decision = "Changing Isolation Level is an IMPLIED COMMIT.\rDo you wish to continue?";
constexpr const char* none_mode =
    "Because you have set AutoCommit on and Isolation to *CHG, you are now in implied commit mode *NONE.  You may now "
    "work on non Journaled Tables.";
constexpr const char* autocommit_is_on =
    "Autocommit is now ON!  Commit and Rollback are non functional.  Each operation will be commited as soon as "
    "execution is finished.  No transactional recover can be made.  However, locks can be thrown but will be released "
    "upon completion of statement execution.";

class frmoptions_test : public testing::Test {
 protected:
  void open(const std::function<void(frmOptions&)>& drive) {
    in_modal<frmOptions>([this] { action_of(at.frame, "mnuEnvironmentOptionsPanel")->trigger(); }, drive);
  }
  // Opens the panel, lets `change` work on it, and saves.
  void save(const std::function<void(frmOptions&)>& change = [](frmOptions&) {}) {
    open([&](frmOptions& panel) {
      change(panel);
      press_save(panel);
      EXPECT_FALSE(panel.isVisible()) << "the panel is still open";
    });
  }
  static void press_save(frmOptions& panel) { button(panel, "Command1")->click(); }
  static QLineEdit* box(const frmOptions& panel, const char* name) { return panel.findChild<QLineEdit*>(name); }
  static QAbstractButton* button(const frmOptions& panel, const char* name) {
    return panel.findChild<QAbstractButton*>(name);
  }
  static std::string level(const frmOptions& panel) {
    std::string checked;
    for (const char* name : {"chg", "rr", "cs"}) checked += button(panel, name)->isChecked() ? name : "";
    return checked;
  }
  [[nodiscard]] texts sent() const {
    texts all;
    for (const scripted::call& each : driver.calls("SQLPrepare")) all.push_back(each.args.at(0));
    return all;
  }

  desktop at{scripted_engine()};
  scripted::driver& driver = scripted::control();
};

TEST_F(frmoptions_test, shows_the_session_and_cancel_changes_nothing) {
  session::ext_fetch_rows = -7;
  session::dw_rows = 0;
  session::jobinfo_proc = "MYPROC";
  session::jobinfo_lib = "MYLIB";
  session::debug_on = true;
  session::autocommit_on = true;
  session::ext_fetch = false;
  open([&](frmOptions& panel) {
    EXPECT_EQ(plain(panel.windowTitle()), "Options Panel");
    texts shown;
    for (const char* name : {"Text1", "Text2", "Text3", "Text4", "Text5", "Text6", "Text7"})
      shown.push_back(plain(box(panel, name)->text()));
    EXPECT_EQ(shown, (texts{"-7", "0", "10000", "500", "/program/", "MYPROC", "MYLIB"}));
    EXPECT_TRUE(button(panel, "Check1")->isChecked() && button(panel, "Check2")->isChecked());
    EXPECT_FALSE(button(panel, "cb_extended_fetch")->isChecked());
    EXPECT_EQ(tab_order(panel, 14),
              "Text1 Text2 Text3 Text4 Text5 Text6 Text7 cb_extended_fetch Check1 Check2 chg Command1 Command2 Text1");
    box(panel, "Text1")->setText("9");
    button(panel, "Check1")->click();
    press_mnemonic(panel, Qt::Key_C);
    EXPECT_FALSE(panel.isVisible());
  });
  EXPECT_EQ(session::ext_fetch_rows, -7);
  EXPECT_TRUE(session::debug_on);
  EXPECT_TRUE(at.store.texts.empty());
  EXPECT_EQ(driver.count("SQLSetConnectOption"), 2U) << "the login's";
}

TEST_F(frmoptions_test, numbers_are_checked_before_anything_changes) {
  struct number_case {
    const char* box;
    const char* typed;
    const char* message;  // "" when it is saved, as `saved`
    std::int32_t saved = 0;
  };
  const char* no_rows = "Extended Fetch Rows Must be a Number!";
  const char* many_rows = "Extended fetch rows can not be greater than 1000!";
  const std::vector<number_case> cases{
      {"Text1", "1000", "", 1000},
      {"Text1", "1000.5", "", 1000},  // a half goes to the even neighbour
      {"Text1", "999.5", "", 1000},
      {"Text1", " -5 ", "", -5},
      {"Text1", "0", "", 0},
      {"Text1", "1E2", "", 100},
      {"Text1", "1000.51", many_rows},
      {"Text1", "1001", many_rows},
      {"Text1", "1E20", many_rows},
      {"Text1", "abc", no_rows},
      {"Text1", "", no_rows},
      {"Text1", "5 rows", no_rows},
      {"Text1", "-1E20", no_rows},
      {"Text4", "32000", "", 32000},
      {"Text4", "x", "Number of LongVarchar characters must be a number!"},
      {"Text4", "32001", "Number of longvarchar characters can not be greater than 32000"},
      {"Text2", "25000", "", 25000},
      {"Text2", "x", "Data Window Rows Must be a Number!"},
      {"Text2", "25001", "Data Window rows can not be greater than 25000!"},
      {"Text3", "50000", "", 50000},
      {"Text3", "x", "Speed Test Rows Must be a Number!"},
      {"Text3", "50001", "Speed Test rows can not be greater than 50000!"},
  };
  const std::map<std::string, std::pair<std::int32_t*, std::string>> kept{
      {"Text1", {&session::ext_fetch_rows, "ExtFetch_NR"}},
      {"Text2", {&session::dw_rows, "DataWindowRows"}},
      {"Text3", {&session::speed_test_rows, "SpeedTestRows"}},
      {"Text4", {&session::varchar_return_chars, "VarcharReturnChars"}}};
  for (const number_case& each : cases) {
    const std::string about = std::string(each.box) + " \"" + each.typed + "\"";
    const auto& [global, key] = kept.at(each.box);
    *global = 42;
    at.store.texts.clear();
    const std::size_t options_set = driver.count("SQLSetConnectOption");
    open([&](frmOptions& panel) {
      box(panel, each.box)->setText(each.typed);
      button(panel, "cs")->setChecked(std::string(each.message) != "");
      press_save(panel);
      EXPECT_EQ(panel.isVisible(), std::string(each.message) != "") << about;
    });
    if (std::string(each.message).empty()) {
      EXPECT_EQ(*global, each.saved) << about;
      EXPECT_EQ(at.store.texts[key], std::to_string(each.saved)) << about;
      EXPECT_EQ(at.ui.take_texts(), texts{}) << about;
    } else {
      ASSERT_EQ(at.ui.messages.size(), 1U) << about;
      EXPECT_EQ(at.ui.messages[0].title + (at.ui.messages[0].icon == message_icon::none ? "" : "?"), "") << about;
      EXPECT_EQ(at.ui.take_texts(), texts{each.message}) << about;
      EXPECT_EQ(*global, 42) << about;
      EXPECT_TRUE(at.store.texts.empty()) << about;
      EXPECT_EQ(driver.count("SQLSetConnectOption"), options_set) << about;
    }
  }
  texts order;
  open([&](frmOptions& panel) {
    for (const char* name : {"Text1", "Text2", "Text3", "Text4", "Text5"}) box(panel, name)->clear();
    for (const char* mended : {"Text1", "Text4", "Text2", "Text3"}) {
      press_save(panel);
      order.push_back(at.ui.take_texts().at(0));
      box(panel, mended)->setText("1");
    }
  });
  EXPECT_EQ(order, (texts{no_rows, cases[14].message, cases[17].message, cases[20].message}));
}

TEST_F(frmoptions_test, isolation_is_changed_after_a_question) {
  struct level_case {
    std::int32_t before;
    const char* shown;
    const char* chosen;  // "" leaves the buttons
    message_answer answer;
    bool asked;
    std::int32_t after;
    SQLULEN on_connection;  // 0: not set
  };
  const std::vector<level_case> cases{
      {2, "chg", "", message_answer::ok, false, 2, 0},
      {2, "chg", "rr", message_answer::ok, true, 3, SQL_TXN_REPEATABLE_READ},
      {2, "chg", "rr", message_answer::cancel, true, 2, 0},
      {3, "rr", "cs", message_answer::ok, true, 0, SQL_TXN_READ_COMMITTED},
      {0, "cs", "", message_answer::cancel, false, 0, 0},
      {1, "", "", message_answer::ok, true, 2, SQL_TXN_READ_UNCOMMITTED},
      {4, "", "", message_answer::cancel, true, 4, 0},
  };
  for (const level_case& each : cases) {
    const std::string about = std::to_string(each.before) + " to " + each.chosen;
    session::isolation_level = each.before;
    driver.clear_log();
    const std::size_t transactions = driver.transactions().size();
    at.ui.answers = {each.answer};
    save([&](frmOptions& panel) {
      EXPECT_EQ(level(panel), each.shown);
      if (*each.chosen != 0) button(panel, each.chosen)->click();
    });
    EXPECT_EQ(session::isolation_level, each.after) << about;
    EXPECT_EQ(at.store.texts["IsolationLevel"], std::to_string(each.after)) << about;
    SQLULEN set = 0;
    for (const scripted::call& call : driver.calls("SQLSetConnectOption")) {
      if (call.args.at(0) == std::to_string(SQL_TXN_ISOLATION)) set = std::stoul(call.args.at(1));
    }
    EXPECT_EQ(set, each.on_connection) << about;
    const auto done = driver.transactions();
    EXPECT_EQ(done.size() > transactions && done[transactions] == "commit", each.on_connection != 0) << about;
    if (each.asked) {
      ASSERT_EQ(at.ui.messages.size(), 1U) << about;
      EXPECT_EQ(at.ui.messages[0].title, "Decision");
      EXPECT_EQ(at.ui.messages[0].buttons, message_buttons::ok_cancel);
    }
    EXPECT_EQ(at.ui.take_texts(), each.asked ? texts{decision} : texts{}) << about;
  }
}

TEST_F(frmoptions_test, autocommit_is_set_and_explained_at_every_save) {
  struct autocommit_case {
    bool on;
    const char* level;
    message_answer answer;
    texts messages;
  };
  const std::vector<autocommit_case> cases{
      {true, "chg", message_answer::ok, {none_mode}},
      {true, "chg", message_answer::ok, {none_mode}},
      {true, "cs", message_answer::cancel, {decision, none_mode}},
      {true, "cs", message_answer::ok, {decision, autocommit_is_on}},
      {true, "cs", message_answer::ok, {autocommit_is_on}},
      {false, "cs", message_answer::ok, {}},
  };
  for (const autocommit_case& each : cases) {
    driver.clear_log();
    at.ui.answers = {each.answer};
    save([&](frmOptions& panel) {
      static_cast<QCheckBox*>(button(panel, "Check2"))->setChecked(each.on);
      button(panel, each.level)->click();
    });
    EXPECT_EQ(session::autocommit_on, each.on);
    EXPECT_EQ(driver.connect_options().at(SQL_AUTOCOMMIT), each.on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF);
    EXPECT_EQ(driver.calls("SQLSetConnectOption").at(0).args.at(0), std::to_string(SQL_AUTOCOMMIT));
    EXPECT_EQ(at.store.texts["AutoCommitState"], each.on ? "True" : "False");
    if (!each.messages.empty()) {
      EXPECT_EQ(at.ui.messages.back().title, "Informational Message");
      EXPECT_EQ(at.ui.messages.back().icon, message_icon::question);
    }
    EXPECT_EQ(at.ui.take_texts(), each.messages);
  }
}

TEST_F(frmoptions_test, debug_mode_is_sent_when_it_changes_whatever_the_server_says) {
  session::qualifier_sep = "/";
  const std::string on = "call qsys/qcmdexc('strdbg updprod(*yes)',0000000020.00000)";
  const std::string off = "call qsys/qcmdexc('enddbg',0000000006.00000)";
  driver.answer_to(on, {});  // the other is refused
  const std::vector<std::pair<bool, texts>> saves{
      {false, {}}, {true, {on}}, {true, {on}}, {false, {on, off}}, {false, {on, off}}};
  for (const auto& each : saves) {
    save([&](frmOptions& panel) { button(panel, "Check1")->setChecked(each.first); });
    EXPECT_EQ(session::debug_on, each.first);
    EXPECT_EQ(sent(), each.second);
    EXPECT_EQ(driver.open_statements(), 1U) << "only the session's own";
  }
  EXPECT_EQ(driver.executions().size(), 1U);
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST_F(frmoptions_test, an_empty_directory_stops_the_save_half_way) {
  open([&](frmOptions& panel) {
    box(panel, "Text5")->setText("   ");
    box(panel, "Text1")->setText("7");
    for (const char* name : {"rr", "Check1", "Check2", "cb_extended_fetch"}) button(panel, name)->click();
    press_save(panel);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(at.ui.messages.back().title, "User Error");
    EXPECT_EQ(at.ui.messages.back().icon, message_icon::question);
    EXPECT_EQ(at.ui.take_texts(),
              (texts{decision, autocommit_is_on, "Database Directory can not be an empty string!"}));
    EXPECT_TRUE(session::autocommit_on);
    EXPECT_EQ(session::isolation_level, 3);
    EXPECT_FALSE(session::ext_fetch);
    EXPECT_EQ(session::ext_fetch_rows, 500);
    EXPECT_FALSE(session::debug_on);
    EXPECT_TRUE(at.store.texts.empty());
    box(panel, "Text5")->setText(" /my/data ");
    press_save(panel);
    EXPECT_FALSE(panel.isVisible());
  });
  EXPECT_EQ(session::database_dir, "/my/data");
  EXPECT_EQ(session::ext_fetch_rows, 7);
}

TEST_F(frmoptions_test, every_setting_is_written_and_read_again) {
  save([&](frmOptions& panel) {
    box(panel, "Text6")->setText(" MYPROC");
    box(panel, "Text7")->setText("");
    button(panel, "cb_extended_fetch")->click();
  });
  EXPECT_EQ(at.store.written,
            "DatabaseDirectory ExtFetch ExtFetch_NR DataWindowRows SpeedTestRows VarcharReturnChars IsolationLevel "
            "AutoCommitState JOBNOPROC JOBNOLIB");
  EXPECT_EQ(session::jobinfo_proc + ' ' + session::jobinfo_lib, "MYPROC TOOLLIB");
  settings::load_into_session(at.store, "/other/");
  EXPECT_EQ(session::jobinfo_proc + ' ' + session::jobinfo_lib + ' ' + session::database_dir,
            "MYPROC TOOLLIB /program/");
  EXPECT_FALSE(session::ext_fetch);
  EXPECT_TRUE(session::settings_notes.empty());
}

TEST_F(frmoptions_test, settings_that_cannot_be_written_are_told_and_hold_for_the_session) {
  at.store.refuses = "disk full";
  open([&](frmOptions& panel) {  // by keyboard alone
    for (int i = 0; i < 2; ++i) QTest::keyClick(panel.focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(panel.focusWidget(), "77");
    press_mnemonic(panel, Qt::Key_S);
    EXPECT_FALSE(panel.isVisible());
  });
  ASSERT_EQ(at.ui.messages.size(), 1U);
  EXPECT_EQ(at.ui.messages[0].details, "disk full");
  EXPECT_EQ(at.ui.take_texts(), texts{"The options hold for this session, but could not be saved for the next one."});
  EXPECT_EQ(session::speed_test_rows, 77);
}

TEST_F(frmoptions_test, what_the_connection_refuses_does_not_stop_the_save) {
  session::debug_on = true;
  at.ui.while_open = [&](const message&) { driver.fail_nth_call(1, {}, scripted::always); };
  save([&](frmOptions& panel) {
    button(panel, "rr")->click();
    button(panel, "Check1")->click();
  });
  EXPECT_GT(driver.faults_fired(), 2U);
  driver.clear_faults();
  EXPECT_EQ(at.ui.take_texts(), texts{decision});
  EXPECT_EQ(at.store.texts["IsolationLevel"], "3");
  EXPECT_FALSE(session::debug_on);
}

TEST_F(frmoptions_test, the_frame_may_go_while_a_message_stands) {
  at.ui.while_open = [&](const message&) {
    at.frame->close();
    settle();
  };
  in_modal<frmOptions>([this] { action_of(at.frame, "mnuEnvironmentOptionsPanel")->trigger(); },
                       [&](frmOptions& panel) {
                         button(panel, "rr")->click();
                         button(panel, "Command1")->click();
                       });
  EXPECT_TRUE(at.frame.isNull());
  EXPECT_EQ(at.store.texts["IsolationLevel"], "3") << "the save went on";
}

}  // namespace
