#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "odbc/diagnostics.h"
#include "odbc/layer_error.h"
#include "odbc/odbcd.h"

class odbcstmt;

// One ODBC connection. It keeps the registry of the statements made on it and frees them before it disconnects.
//
// Operations whose name ends in _XX throw a layer_error when an ODBC call fails; the operation of the same name without
// the ending answers true, or false after storing the error's number in last_err. `last_rc` is the code of the most
// recent ODBC call. One environment must be allocated (ODBCD::odbc_alloc_env) while an object is connected.
class odbccon {
 public:
  odbccon() = default;
  // A connection still open is rolled back and closed; statements made on it survive without handles.
  ~odbccon();
  odbccon(const odbccon&) = delete;
  odbccon& operator=(const odbccon&) = delete;

  // Connects, after disconnecting an object that is connected; where that fails, the object stays connected as it was.
  // After any other failure there is no handle, and connect_failure() holds what the driver said.
  bool Connect(std::string_view data_source, std::string_view user, std::string_view password);
  void Connect_XX(std::string_view data_source, std::string_view user, std::string_view password);

  // Connects with a connection string through SQLDriverConnect, which may complete it by a dialog of the driver on
  // `owner`; with no owner the driver is told not to prompt. A failure shows both return codes.
  bool DrvConnect(SQLHWND owner, std::string_view data_source, std::string_view database, std::string_view user,
                  std::string_view password);
  void DrvConnect_XX(SQLHWND owner, std::string_view data_source, std::string_view database, std::string_view user,
                     std::string_view password);

  // Rolls back, frees all statements, disconnects and frees the handle. When SQLDisconnect fails the handle stays.
  bool Disconnect();
  void DisConnect_XX();

  bool Commit();
  void Commit_XX();
  bool Rollback();
  void Rollback_XX();

  bool SetOption(std::uint16_t option, std::uint32_t setting);
  void SetOption_XX(std::uint16_t option, std::uint32_t setting);
  bool SetACOn();
  bool SetACOff();
  // Rolls back, then sets the isolation level with this index (0 to 4) of isolation_table.
  bool SIL(int level_index);
  void SIL_XX(int level_index);

  // A character-valued answer of SQLGetInfo, at most 999 bytes of it; `length` is what the driver reported.
  void GetInfoChar_XX(std::uint16_t type, std::string& text, std::int16_t& length);
  [[nodiscard]] std::string GetInfoChar_XX(std::uint16_t type);
  // A 32-bit answer of SQLGetInfo.
  void GetDWInfo_XX(std::uint16_t type, std::uint32_t& answer, std::int16_t& length);
  // Whether the driver supports the ODBC function of this number; false without a call outside 1 to 100 or when not
  // connected.
  bool GetFunction(int function);
  bool GetFunction_XX(int function);

  void AddStmt(odbcstmt& statement);
  // False, with last_err 5 (no such entry), when the handle is not registered.
  bool DropStmt(SQLHSTMT handle);
  void Kill_Statements();

  [[nodiscard]] SQLHDBC Handle() const { return hdbc; }
  [[nodiscard]] bool Free() const { return hdbc == nullptr; }
  [[nodiscard]] std::int32_t Result() const { return last_rc; }
  [[nodiscard]] bool OK() const { return sql_ok(last_rc); }
  [[nodiscard]] std::int32_t last_error() const { return last_err; }
  [[nodiscard]] const keyed_collection<odbcstmt>& registered_statements() const { return statements; }
  [[nodiscard]] const std::string& connected_dsn() const { return dsn; }

  // What the driver said when Connect or DrvConnect last failed; its rc is SQL_NO_DATA_FOUND when nothing was said.
  [[nodiscard]] const diagnostic_record& connect_failure() const { return failure; }

  diagnostic_record ErrData();
  std::int32_t Errd();
  std::int32_t Errnum();

 private:
  SQLRETURN record(SQLRETURN rc);
  SQLHDBC allocate(odbc_fault fault);
  void leave_previous();
  void connected(SQLHDBC handle);
  void release();
  void transact(SQLUSMALLINT type, odbc_fault fault);

  SQLHDBC hdbc = nullptr;
  std::int32_t last_rc = 0;
  std::int32_t last_err = 0;
  std::string dsn;
  std::string uid;
  std::string pwd;
  std::array<SQLUSMALLINT, 101> functions{};
  keyed_collection<odbcstmt> statements;
  diagnostic_record failure;
};

// The SQL_TXN_ISOLATION value of each level index.
inline constexpr std::array<std::uint32_t, 5> isolation_table{SQL_TXN_READ_COMMITTED, SQL_TXN_SERIALIZABLE,
                                                              SQL_TXN_READ_UNCOMMITTED, SQL_TXN_REPEATABLE_READ,
                                                              16 /* SQL_TXN_VERSIONING */};
