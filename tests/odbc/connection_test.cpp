// The connection object, on the scripted driver.
#include <algorithm>

#include "odbc/manager_faults.h"
#include "odbc/odbc_fixture.h"
#include "support/scoped_state.h"

namespace {

using connection = scripted_test;
using scripted::failure;

constexpr std::uint16_t separator = SQL_QUALIFIER_NAME_SEPARATOR;

TEST_F(connection, sends_its_three_texts_while_busy) {
  odbccon other;
  ui.pointers.clear();
  driver.fail("SQLConnect", 1, {SQL_SUCCESS_WITH_INFO, "01000", 0, "password expires soon"});
  ASSERT_TRUE(other.Connect("SCRIPTED", "ÉMILE", ""));
  EXPECT_EQ(logged({"SQLConnect"}), texts{"SQLConnect SCRIPTED ÉMILE "});
  EXPECT_EQ(ui.pointers, (std::vector{pointer_shape::hourglass, pointer_shape::standard}));
  EXPECT_EQ(other.connected_dsn(), "SCRIPTED");
  EXPECT_EQ(ODBCD::open_connections().size(), 2U);
  EXPECT_TRUE(other.Disconnect());
  EXPECT_EQ(other.connected_dsn(), "");
}

TEST_F(connection, keeps_what_was_said_when_the_login_fails) {
  driver.require_login("ME", "SECRET");
  odbccon other;
  EXPECT_TRUE(failed_with(other.Connect("SCRIPTED", "ME", "WRONG"), other, odbc_fault::connect));
  EXPECT_EQ(other.Result(), SQL_ERROR);
  EXPECT_EQ(other.connect_failure().state, "28000");
  EXPECT_TRUE(failed_with(other.Connect("NOSUCH", "ME", "SECRET"), other, odbc_fault::connect));
  EXPECT_EQ(other.connect_failure().state, "IM002");
  EXPECT_TRUE(other.Free());
  EXPECT_EQ(ODBCD::open_connections().size(), 1U);
  EXPECT_TRUE(ui.messages.empty());
  EXPECT_EQ(other.ErrData().state, "Disconnected");
  EXPECT_TRUE(other.Connect("SCRIPTED", "ME", "SECRET"));
}

TEST_F(connection, a_text_that_the_code_page_lacks_is_not_sent) {
  const scoped_code_page page("ISO-8859-15");
  odbccon other;
  EXPECT_TRUE(failed_with(other.Connect("SCRIPTED", "ŁÓDŹ", "X"), other, odbc_fault::text_not_sendable));
  EXPECT_TRUE(other.Connect("SCRIPTED", "ÉMILE", "X"));
  EXPECT_EQ(logged({"SQLConnect"}), texts{"SQLConnect SCRIPTED \xC9MILE X"});
}

TEST_F(connection, shows_that_no_handle_could_be_allocated) {
  odbccon other;
  next_manager_faults().alloc_connect = SQL_ERROR;
  EXPECT_TRUE(failed_with(other.Connect("SCRIPTED", "ME", "X"), other, odbc_fault::allocate_connection));
  next_manager_faults().alloc_connect = SQL_INVALID_HANDLE;
  EXPECT_TRUE(
      failed_with(other.DrvConnect(nullptr, "SCRIPTED", "", "ME", "X"), other, odbc_fault::allocate_driver_connection));
  ASSERT_EQ(ui.messages.size(), 2U);
  EXPECT_EQ(ui.messages[0].title, "ODBC ERROR");
  EXPECT_EQ(ui.take_texts(), (texts{"SqlAllocConnect returned: -1", "SqlAllocConnect returned: -2"}));
}

TEST_F(connection, connects_anew_after_disconnecting) {
  answer("select 1", {integer("I")});
  ASSERT_TRUE(stmt.Prep("select 1"));
  driver.clear_log();
  ASSERT_TRUE(con.Connect("SCRIPTED", "YOU", "SECRET"));
  const texts order = logged({"SQLTransact", "SQLFreeStmt", "SQLDisconnect", "SQLFreeConnect", "SQLConnect"});
  EXPECT_EQ(order, (texts{"SQLTransact 1", "SQLFreeStmt 1", "SQLDisconnect", "SQLFreeConnect",
                          "SQLConnect SCRIPTED YOU SECRET"}));
  EXPECT_TRUE(stmt.Free());
  EXPECT_TRUE(con.registered_statements().empty());
  EXPECT_EQ(ODBCD::open_connections().size(), 1U);
  EXPECT_TRUE(stmt.Make(con));
}

TEST_F(connection, does_not_connect_anew_over_a_connection_that_stays) {
  const SQLHDBC before = con.Handle();
  driver.fail("SQLDisconnect", 1, {});
  EXPECT_TRUE(failed_with(con.Connect("SCRIPTED", "YOU", "SECRET"), con, odbc_fault::disconnect));
  EXPECT_EQ(con.Handle(), before);
  EXPECT_EQ(ODBCD::open_connections().size(), 1U);
  EXPECT_EQ(driver.count("SQLConnect"), 0U);
  EXPECT_TRUE(con.Connect("SCRIPTED", "YOU", "SECRET"));
}

TEST_F(connection, connects_through_a_connection_string) {
  odbccon other;
  ASSERT_TRUE(other.DrvConnect(nullptr, "SCRIPTED", "LIB", "ME", "P W"));
  EXPECT_EQ(logged({"SQLDriverConnect"}), texts{"SQLDriverConnect DSN=SCRIPTED;DB=LIB;UID=ME;PWD=P W; 0"});
  EXPECT_EQ(other.connected_dsn(), "LIB");
  driver.require_login("ME", "SECRET");
  EXPECT_TRUE(failed_with(other.DrvConnect(nullptr, "SCRIPTED", "LIB", "ME", "X"), other, odbc_fault::driver_connect));
  EXPECT_EQ(ui.take_texts(), texts{"SqlConnect returned -1.SQLFreeConnect returned 0."});
  EXPECT_EQ(other.connect_failure().state, "28000");
  EXPECT_TRUE(other.Free());
}

TEST_F(connection, disconnecting_rolls_back_and_frees_every_statement_first) {
  odbcstmt second;
  ASSERT_TRUE(second.Make(con));
  driver.clear_log();
  EXPECT_TRUE(con.Disconnect());
  EXPECT_EQ(logged({"SQLTransact", "SQLFreeStmt", "SQLDisconnect", "SQLFreeConnect"}),
            (texts{"SQLTransact 1", "SQLFreeStmt 1", "SQLFreeStmt 1", "SQLDisconnect", "SQLFreeConnect"}));
  EXPECT_TRUE(stmt.Free() && second.Free() && con.Free());
  EXPECT_EQ(stmt.Connection(), nullptr);
}

TEST_F(connection, what_stays_when_disconnecting_fails) {
  const SQLHDBC before = con.Handle();
  driver.fail("SQLTransact", 1, {});  // of no consequence
  driver.fail("SQLDisconnect", 1, {});
  EXPECT_TRUE(failed_with(con.Disconnect(), con, odbc_fault::disconnect));
  EXPECT_EQ(con.Handle(), before);
  EXPECT_EQ(con.connected_dsn(), "SCRIPTED");
  EXPECT_EQ(ODBCD::open_connections().find(handle_key(before)), &con);
  EXPECT_TRUE(stmt.Make(con));  // the connection still works

  next_manager_faults().free_connect = SQL_ERROR;
  EXPECT_TRUE(failed_with(con.Disconnect(), con, odbc_fault::free_connection));
  EXPECT_TRUE(con.Free());
  EXPECT_EQ(con.connected_dsn(), "");
  EXPECT_TRUE(ODBCD::open_connections().empty());
  SQLFreeConnect(before);  // what the failure left behind in the driver manager
}

TEST_F(connection, an_object_that_ends_leaves_nothing_pointing_at_it) {
  odbcstmt orphan;
  SQLHDBC left = nullptr;
  {
    odbccon brief;
    ASSERT_TRUE(brief.Connect("SCRIPTED", "ME", "X") && orphan.Make(brief));
    left = brief.Handle();
    driver.fail("SQLDisconnect", 1, {});
  }
  EXPECT_TRUE(orphan.Free());
  EXPECT_EQ(ODBCD::open_connections().size(), 1U);
  SQLDisconnect(left);
  SQLFreeConnect(left);
}

TEST_F(connection, ends_transactions_of_its_own_alone) {
  EXPECT_TRUE(con.Commit() && con.Rollback());
  EXPECT_EQ(driver.transactions(), (texts{"commit", "rollback"}));
  driver.fail("SQLTransact", 1, {}, 2);
  EXPECT_TRUE(failed_with(con.Commit(), con, odbc_fault::commit));
  EXPECT_TRUE(failed_with(con.Rollback(), con, odbc_fault::rollback));

  // Without a handle of its own a call would reach every connection of the environment.
  odbccon idle;
  EXPECT_TRUE(failed_with(idle.Commit(), idle, odbc_fault::commit));
  EXPECT_TRUE(failed_with(idle.Rollback(), idle, odbc_fault::rollback));
  EXPECT_FALSE(idle.Disconnect());
  EXPECT_EQ(driver.transactions().size(), 2U);
}

TEST_F(connection, sets_options_and_isolation_levels) {
  EXPECT_TRUE(con.SetACOff() && con.SetACOn());
  EXPECT_EQ(logged({"SQLSetConnectOption"}), (texts{"SQLSetConnectOption 102 0", "SQLSetConnectOption 102 1"}));
  const char* sent[] = {"2", "8", "1", "4"};
  for (int level = 0; level < 4; ++level) {
    driver.clear_log();
    EXPECT_TRUE(con.SIL(level));
    EXPECT_EQ(logged(), (texts{"SQLTransact 1", std::string("SQLSetConnectOption 108 ") + sent[level]}));
  }
  EXPECT_EQ(isolation_table[4], 16U);
  driver.fail("SQLTransact", 1, {});
  EXPECT_TRUE(con.SIL(0));  // the roll-back's result is ignored
  driver.fail("SQLSetConnectOption", 1, {});
  EXPECT_TRUE(failed_with(con.SetACOff(), con, odbc_fault::connect_option));
  driver.clear_log();
  for (const int outside : {-1, 5}) EXPECT_TRUE(failed_with(con.SIL(outside), con, odbc_fault::connect_option));
  EXPECT_EQ(driver.count("SQLSetConnectOption"), 0U);
}

TEST_F(connection, asks_for_information) {
  const std::string long_text(1500, 'x');
  const struct {
    std::string bytes;
    SQLSMALLINT length;
    std::string text;
  } cases[] = {
      {".", 1, "."}, {".", 0, ""}, {".", -1, ""}, {"\xC3\xA9/", 3, "é/"}, {long_text, 1500, long_text.substr(0, 999)}};
  for (const auto& each : cases) {
    driver.set_info_raw(separator, each.bytes, each.length);
    EXPECT_EQ(con.GetInfoChar_XX(separator), each.text) << each.length;
  }
  driver.set_info_raw(SQL_TXN_ISOLATION_OPTION, std::string("\x0F\0\0\0", 4), 4);
  std::uint32_t answer = 0xFFFFFFFF;
  std::int16_t length = 0;
  con.GetDWInfo_XX(SQL_TXN_ISOLATION_OPTION, answer, length);
  EXPECT_EQ(answer, 15U);
  EXPECT_EQ(length, 4);

  driver.fail("SQLGetInfo", 1, {}, 2);
  odbccon idle;
  for (odbccon* asked : {&con, &idle}) {
    const auto fault = asked == &con ? odbc_fault::get_info : odbc_fault::not_connected;
    std::int32_t number = 0;
    EXPECT_FALSE(trap(number, [&] { static_cast<void>(asked->GetInfoChar_XX(separator)); }));
    EXPECT_EQ(number, error_number(fault));
    EXPECT_FALSE(trap(number, [&] { asked->GetDWInfo_XX(SQL_TXN_ISOLATION_OPTION, answer, length); }));
    EXPECT_EQ(number, error_number(fault));
  }
}

TEST_F(connection, knows_which_functions_there_are) {
  odbccon idle;
  driver.set_unsupported(SQL_API_SQLSTATISTICS);
  driver.clear_log();
  EXPECT_FALSE(con.GetFunction(0) || con.GetFunction(101) || con.GetFunction(-1) || idle.GetFunction(SQL_API_SQLFETCH));
  EXPECT_TRUE(logged().empty());
  odbccon fresh;  // the driver manager asks the driver once, when it connects
  ASSERT_TRUE(fresh.Connect("SCRIPTED", "ME", "X"));
  EXPECT_TRUE(fresh.GetFunction(SQL_API_SQLFETCH));
  EXPECT_FALSE(fresh.GetFunction(SQL_API_SQLSTATISTICS));
  EXPECT_FALSE(fresh.GetFunction(99));
  EXPECT_EQ(fresh.last_error(), 0);
  next_manager_faults().get_functions = SQL_ERROR;
  EXPECT_TRUE(failed_with(fresh.GetFunction(SQL_API_SQLFETCH), fresh, odbc_fault::get_functions));
  EXPECT_TRUE(fresh.GetFunction(SQL_API_SQLFETCH));
}

TEST_F(connection, keeps_a_registry_of_its_statements) {
  odbcstmt second;
  ASSERT_TRUE(second.Make(con));
  EXPECT_EQ(con.registered_statements().all(), (std::vector<odbcstmt*>{&stmt, &second}));
  EXPECT_FALSE(con.DropStmt(nullptr));
  EXPECT_NE(con.last_error(), 0);
  EXPECT_EQ(con.registered_statements().size(), 2U);
  odbcstmt empty;
  con.AddStmt(empty);  // has no handle to be known by
  EXPECT_TRUE(second.Kill());
  EXPECT_EQ(con.registered_statements().all(), std::vector<odbcstmt*>{&stmt});
  driver.fail("SQLFreeStmt", 1, {});
  con.Kill_Statements();  // forgets a statement that the driver would not drop
  EXPECT_TRUE(stmt.Free());
  EXPECT_TRUE(con.registered_statements().empty());
}

}  // namespace
