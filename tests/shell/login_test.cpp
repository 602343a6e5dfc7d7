#include "shell/login.h"

#include <gtest/gtest.h>

#include "shell/session.h"
#include "support/fault_sweep.h"
#include "support/memory_store.h"
#include "support/recording_user_interface.h"
#include "support/scoped_state.h"
#include "support/session_scope.h"

using texts = std::vector<std::string>;

namespace {

constexpr const char* refused = "Invalid Data Scource, User ID  or Password!";

class login_test : public testing::Test {
 protected:
  void SetUp() override {
    driver.reset();
    ASSERT_TRUE(ODBCD::odbc_alloc_env());
    load();
  }
  void TearDown() override {
    driver.clear_faults();
    session::reset();
    EXPECT_TRUE(ODBCD::odbc_free_env());
    EXPECT_EQ(session_scope::open_driver_handles(), 0U);
  }
  void load() { settings::load_into_session(store, "/program/"); }
  void expect_logged_out() {
    EXPECT_TRUE(session::g_con.Free());
    EXPECT_TRUE(session::g_stmt.Free());
    EXPECT_EQ(driver.open_connections() + driver.open_statements(), 0U);
  }

  recording_user_interface ui;
  scripted::driver& driver = scripted::control();
  memory_store store;
  const login_request good{"scripted", "tester", "secret"};
};

TEST_F(login_test, names_are_trimmed_and_raised_for_the_driver_and_the_store) {
  driver.set_info(SQL_QUALIFIER_NAME_SEPARATOR, "/");
  ASSERT_TRUE(log_in({"  Scripted ", " müLLer ", " geHeim\tß ", true}, store));
  EXPECT_EQ(driver.calls("SQLConnect").at(0).args, (texts{"SCRIPTED", "MÜLLER", "GEHEIM\tß"}));
  EXPECT_EQ(store.texts,
            (std::map<std::string, std::string>{{"AS400Default", "SCRIPTED"}, {"AS400DefaultU", "MÜLLER"}}));
  EXPECT_EQ(session::qualifier_sep, "/");
  EXPECT_TRUE(session::is_udb);
  EXPECT_FALSE(session::g_stmt.Free());
  EXPECT_EQ(session::g_stmt.Connection(), &session::g_con);
  EXPECT_EQ(driver.connect_options().at(SQL_AUTOCOMMIT), SQL_AUTOCOMMIT_OFF);
  EXPECT_EQ(driver.connect_options().at(SQL_TXN_ISOLATION), SQL_TXN_READ_UNCOMMITTED);
  EXPECT_TRUE(ui.messages.empty());
}

TEST_F(login_test, names_travel_in_the_code_page) {
  const scoped_code_page page("ISO-8859-1");
  ASSERT_TRUE(log_in({"scripted", "müller", "é"}, store));
  EXPECT_EQ(driver.calls("SQLConnect").at(0).args, (texts{"SCRIPTED", "M\xDCLLER", "\xC9"}));
  session::reset();
  EXPECT_FALSE(log_in({"scripted", "müller", "€"}, store)) << "a password that cannot be sent";
  EXPECT_EQ(ui.take_texts(), texts{refused});
}

TEST_F(login_test, a_refusal_says_what_the_driver_said_and_can_be_tried_again) {
  driver.require_login("TESTER", "SECRET");
  EXPECT_FALSE(log_in({"scripted", "tester", "wrong"}, store));
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0].text, refused);
  EXPECT_EQ(ui.messages[0].title, "Error");
  EXPECT_EQ(ui.messages[0].icon, message_icon::question);
  EXPECT_EQ(ui.messages[0].buttons, message_buttons::ok);
  EXPECT_NE(ui.messages[0].details.find("State = 28000"), std::string::npos) << ui.messages[0].details;
  expect_logged_out();

  EXPECT_FALSE(log_in({"no such source", "tester", "secret"}, store));
  EXPECT_NE(ui.messages[1].details.find("State = IM002"), std::string::npos) << ui.messages[1].details;
  EXPECT_TRUE(store.texts.empty());
  EXPECT_TRUE(log_in(good, store));
  EXPECT_EQ(ui.messages.size(), 2U);
}

TEST_F(login_test, autocommit_is_switched_on_with_a_warning) {
  store.texts["AutoCommitState"] = "True";
  load();
  std::size_t connects_before_the_box = 0;
  ui.while_open = [&](const message&) { connects_before_the_box = driver.count("SQLConnect"); };
  ASSERT_TRUE(log_in(good, store));
  EXPECT_EQ(driver.connect_options().at(SQL_AUTOCOMMIT), SQL_AUTOCOMMIT_ON);
  EXPECT_EQ(connects_before_the_box, 1U);
  EXPECT_EQ(ui.messages.at(0).title, "Informational Message");
  EXPECT_EQ(ui.take_texts(), texts{"Warning... Autocommit is ON.  Any statements executed will be commited immedeatly "
                                   "upon completion of execution.  "
                                   "To turn autocommit off, go to the Environment -> Options menu."});
}

TEST_F(login_test, the_stored_isolation_level_is_set) {
  const std::vector<std::pair<const char*, SQLULEN>> levels{{"0", SQL_TXN_READ_COMMITTED},
                                                            {"1", SQL_TXN_SERIALIZABLE},
                                                            {"2", SQL_TXN_READ_UNCOMMITTED},
                                                            {"3", SQL_TXN_REPEATABLE_READ}};
  for (const auto& [text, isolation] : levels) {
    store.texts["IsolationLevel"] = text;
    load();
    ASSERT_TRUE(log_in(good, store)) << text;
    EXPECT_EQ(driver.connect_options().at(SQL_TXN_ISOLATION), isolation) << text;
    session::reset();
  }
  EXPECT_TRUE(ui.messages.empty());

  store.texts = {{"IsolationLevel", "4"}};  // which the driver manager refuses
  load();
  EXPECT_FALSE(log_in(good, store));
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_NE(ui.messages[0].text.find("State = S1009"), std::string::npos) << ui.messages[0].text;
  EXPECT_EQ(store.texts.size(), 1U);
  expect_logged_out();
}

TEST_F(login_test, whatever_call_fails_leaves_nothing_behind_and_the_next_login_works) {
  const unsigned calls = fault_sweep({
      .setup =
          [&] {
            session::reset();
            load();
            ui.messages.clear();
            store.texts.clear();
          },
      .operation = [&] { return log_in(good, store); },
      .check =
          [&](const scripted::call& struck, bool answered) {
            // The rollback before the isolation level is set may fail: there is nothing to roll back.
            if (struck.function == "SQLTransact") {
              EXPECT_TRUE(answered);
              return;
            }
            EXPECT_FALSE(answered);
            ASSERT_EQ(ui.messages.size(), 1U);
            const bool connecting = ui.messages[0].text == refused;
            const std::string& said = connecting ? ui.messages[0].details : ui.messages[0].text;
            // The driver manager words the failures of the handles that it allocates itself.
            const bool handle = struck.function == "SQLAllocEnv" || struck.function == "SQLAllocConnect";
            EXPECT_NE(said.find(handle ? "SQLAllocHandle on SQL_HANDLE_" : "the call that was to fail"),
                      std::string::npos)
                << said;
            EXPECT_TRUE(store.texts.empty());
            expect_logged_out();
            EXPECT_TRUE(log_in(good, store));
          },
  });
  EXPECT_GE(calls, 6U) << "connect, separator, autocommit, rollback, isolation, statement";
}

TEST_F(login_test, a_store_that_cannot_be_written_is_told_and_does_not_stop_the_login) {
  store.refuses = "the disk is full";
  EXPECT_TRUE(log_in(good, store));
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0].text, "The data source and user could not be saved for the next login.");
  EXPECT_EQ(ui.messages[0].details, "the disk is full");
}

}  // namespace
