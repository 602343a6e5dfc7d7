#pragma once

#include <cstdint>
#include <string>

#include "odbc/odbc_headers.h"

// One diagnostic record, as SQLError gives it.
struct diagnostic_record {
  std::int16_t rc = 0;      // of the SQLError call itself; 0 when the object has no handle
  std::int32_t native = 0;  // -1 when SQLError failed
  std::string state;
  std::string text;
};

// An ODBC return code counts as success when it is SQL_SUCCESS or SQL_SUCCESS_WITH_INFO.
constexpr bool sql_ok(int rc) { return rc == SQL_SUCCESS || rc == SQL_SUCCESS_WITH_INFO; }

// The record of an object without a handle: 0, 0, "Disconnected", "Inactive connection".
diagnostic_record disconnected_record();

// Reads the first pending record of the handles; SQLError is called exactly once.
diagnostic_record read_diagnostic(SQLHENV environment, SQLHDBC connection, SQLHSTMT statement);

// The text that the message box shows for a record.
std::string diagnostic_text(const diagnostic_record& record);

// Shows the record in one box with an OK button and the application's title; returns the native code.
std::int32_t show_diagnostic(const diagnostic_record& record);
