#include "odbc/odbccon.h"

#include <fmt/format.h>

#include "base/user_interface.h"
#include "odbc/layer_error.h"
#include "odbc/odbcstmt.h"
#include "odbc/raw_buffer.h"
#include "odbc/struct_cells.h"
#include "odbc/text_argument.h"

namespace {

constexpr std::string_view error_title = "ODBC ERROR";
constexpr std::int32_t no_such_entry = 5;

void show_odbc_error(std::string text) {
  show_message({std::move(text), std::string(error_title), message_icon::none, message_buttons::ok, {}});
}

}  // namespace

odbccon::~odbccon() {
  if (Free()) return;
  Disconnect();
  if (Free()) return;
  // The driver would not disconnect: nothing may keep pointing here.
  ODBCD::open_connections().remove(handle_key(hdbc));
}

SQLRETURN odbccon::record(SQLRETURN rc) {
  last_rc = rc;
  return rc;
}

SQLHDBC odbccon::allocate(odbc_fault fault) {
  SQLHDBC handle = nullptr;
  if (!sql_ok(record(SQLAllocConnect(ODBCD::henv, &handle)))) {
    show_odbc_error(fmt::format("SqlAllocConnect returned: {}", last_rc));
    raise_error(fault);
  }
  return handle;
}

// A connection that will not go is not forgotten for a new one: it would stay open, and registered, for good.
void odbccon::leave_previous() {
  if (!Free() && !Disconnect() && !Free()) raise_error(last_err);
}

void odbccon::connected(SQLHDBC handle) {
  hdbc = handle;
  ODBCD::open_connections().add(handle_key(handle), this);
}

bool odbccon::Connect(std::string_view data_source, std::string_view user, std::string_view password) {
  return trap(last_err, [&] { Connect_XX(data_source, user, password); });
}

void odbccon::Connect_XX(std::string_view data_source, std::string_view user, std::string_view password) {
  leave_previous();
  failure = {SQL_NO_DATA_FOUND, -1, {}, {}};
  text_argument dsn_text(data_source);
  text_argument uid_text(user);
  text_argument pwd_text(password);
  const SQLHDBC handle = allocate(odbc_fault::allocate_connection);
  {
    const busy_section busy;
    record(SQLConnect(handle, dsn_text.data(), dsn_text.length(), uid_text.data(), uid_text.length(), pwd_text.data(),
                      pwd_text.length()));
  }
  if (!OK()) {
    failure = read_diagnostic(ODBCD::henv, handle, SQL_NULL_HSTMT);
    SQLFreeConnect(handle);
    raise_error(odbc_fault::connect);
  }
  connected(handle);
  dsn = data_source;
  uid = user;
  pwd = password;
}

bool odbccon::DrvConnect(SQLHWND owner, std::string_view data_source, std::string_view database, std::string_view user,
                         std::string_view password) {
  return trap(last_err, [&] { DrvConnect_XX(owner, data_source, database, user, password); });
}

void odbccon::DrvConnect_XX(SQLHWND owner, std::string_view data_source, std::string_view database,
                            std::string_view user, std::string_view password) {
  leave_previous();
  failure = {SQL_NO_DATA_FOUND, -1, {}, {}};
  text_argument request(fmt::format("DSN={};DB={};UID={};PWD={};", data_source, database, user, password));
  const SQLHDBC handle = allocate(odbc_fault::allocate_driver_connection);
  byte_buffer completed(256, 0);
  SQLSMALLINT completed_length = 0;
  record(SQLDriverConnect(handle, owner, request.data(), request.length(), cfrptr(completed), 255, &completed_length,
                          owner == nullptr ? SQL_DRIVER_NOPROMPT : SQL_DRIVER_COMPLETE));
  if (!OK()) {
    failure = read_diagnostic(ODBCD::henv, handle, SQL_NULL_HSTMT);
    const SQLRETURN freed = SQLFreeConnect(handle);
    show_odbc_error(fmt::format("SqlConnect returned {}.SQLFreeConnect returned {}.", last_rc, freed));
    raise_error(odbc_fault::driver_connect);
  }
  connected(handle);
  dsn = database;
  uid = user;
  pwd = password;
}

bool odbccon::Disconnect() {
  return trap(last_err, [&] { DisConnect_XX(); });
}

void odbccon::DisConnect_XX() {
  functions.fill(0);
  Rollback();
  Kill_Statements();
  if (!sql_ok(record(SQLDisconnect(hdbc)))) raise_error(odbc_fault::disconnect);
  const SQLRETURN freed = record(SQLFreeConnect(hdbc));
  release();
  if (!sql_ok(freed)) raise_error(odbc_fault::free_connection);
}

void odbccon::release() {
  ODBCD::open_connections().remove(handle_key(hdbc));
  hdbc = nullptr;
  dsn.clear();
  uid.clear();
  pwd.clear();
}

void odbccon::transact(SQLUSMALLINT type, odbc_fault fault) {
  // Without a connection handle the call would end the transactions of every connection of the environment.
  if (Free()) {
    record(SQL_INVALID_HANDLE);
    raise_error(fault);
  }
  if (!sql_ok(record(SQLTransact(ODBCD::henv, hdbc, type)))) raise_error(fault);
}

bool odbccon::Commit() {
  return trap(last_err, [&] { Commit_XX(); });
}
void odbccon::Commit_XX() { transact(SQL_COMMIT, odbc_fault::commit); }

bool odbccon::Rollback() {
  return trap(last_err, [&] { Rollback_XX(); });
}
void odbccon::Rollback_XX() { transact(SQL_ROLLBACK, odbc_fault::rollback); }

bool odbccon::SetOption(std::uint16_t option, std::uint32_t setting) {
  return trap(last_err, [&] { SetOption_XX(option, setting); });
}

void odbccon::SetOption_XX(std::uint16_t option, std::uint32_t setting) {
  if (!sql_ok(record(SQLSetConnectOption(hdbc, option, setting)))) raise_error(odbc_fault::connect_option);
}

bool odbccon::SetACOn() { return SetOption(SQL_AUTOCOMMIT, SQL_AUTOCOMMIT_ON); }
bool odbccon::SetACOff() { return SetOption(SQL_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF); }

bool odbccon::SIL(int level_index) {
  return trap(last_err, [&] { SIL_XX(level_index); });
}

void odbccon::SIL_XX(int level_index) {
  Rollback();
  if (level_index < 0 || level_index >= static_cast<int>(isolation_table.size()))
    raise_error(odbc_fault::connect_option);
  SetOption_XX(SQL_TXN_ISOLATION, isolation_table[static_cast<std::size_t>(level_index)]);
}

void odbccon::GetInfoChar_XX(std::uint16_t type, std::string& text, std::int16_t& length) {
  if (Free()) raise_error(odbc_fault::not_connected);
  byte_buffer answer(1000, 0);
  length = 0;
  if (!sql_ok(record(SQLGetInfo(hdbc, type, cfrptr(answer), static_cast<SQLSMALLINT>(answer.size()), &length)))) {
    raise_error(odbc_fault::get_info);
  }
  // A longer answer was cut to make room for its zero byte.
  text = cell_text(answer.data(), answer.size(), length);
}

std::string odbccon::GetInfoChar_XX(std::uint16_t type) {
  std::string text;
  std::int16_t length = 0;
  GetInfoChar_XX(type, text, length);
  return text;
}

void odbccon::GetDWInfo_XX(std::uint16_t type, std::uint32_t& answer, std::int16_t& length) {
  if (Free()) raise_error(odbc_fault::not_connected);
  // A driver may write a wider word than it was asked for.
  byte_buffer raw(16, 0);
  length = 0;
  if (!sql_ok(record(SQLGetInfo(hdbc, type, cfrptr(raw), 4, &length)))) raise_error(odbc_fault::get_info);
  answer = get_raw<std::uint32_t>(raw.data());
}

bool odbccon::GetFunction(int function) {
  bool supported = false;
  trap(last_err, [&] { supported = GetFunction_XX(function); });
  return supported;
}

bool odbccon::GetFunction_XX(int function) {
  if (function < 1 || function > 100 || Free()) return false;
  if (!sql_ok(record(SQLGetFunctions(hdbc, SQL_API_ALL_FUNCTIONS, functions.data()))))
    raise_error(odbc_fault::get_functions);
  return functions[static_cast<std::size_t>(function)] != 0;
}

void odbccon::AddStmt(odbcstmt& statement) {
  if (!statement.Free()) statements.add(handle_key(statement.Handle()), &statement);
}

bool odbccon::DropStmt(SQLHSTMT handle) {
  if (statements.remove(handle_key(handle))) return true;
  last_err = no_such_entry;
  return false;
}

void odbccon::Kill_Statements() {
  for (odbcstmt* statement : statements.all()) statement->Kill();
}

diagnostic_record odbccon::ErrData() {
  return Free() ? disconnected_record() : read_diagnostic(ODBCD::henv, hdbc, SQL_NULL_HSTMT);
}
std::int32_t odbccon::Errd() { return show_diagnostic(ErrData()); }
std::int32_t odbccon::Errnum() { return ErrData().native; }
