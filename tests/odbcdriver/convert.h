// Cells into bound buffers, and what is known of SQL and C types.
#pragma once

#include "driver_state.h"

namespace scripted {

// S1003 for an unknown C type, S1090 for a buffer length below zero or too short for a C type of fixed size
// (0 says nothing there).
void require_sound(const binding& bound);

// SQL_C_DEFAULT resolved by the SQL type; any other C type as it is.
SQLSMALLINT actual_c_type(SQLSMALLINT c_type, SQLSMALLINT sql_type);

// Bytes of a C type; 0 for characters and binary, which are as long as their buffer.
std::size_t fixed_size(SQLSMALLINT c_type);

// The place of one row (from 0) of a column-wise array: strides are the size of a fixed C type, the bound
// buffer length of the others, one SQLLEN of the length words. The C type is the actual one.
binding at_row(const binding& bound, SQLSMALLINT c_type, SQLULEN row);

// Writes the cell in the C type of the place, and its length word. Never writes past the buffer length.
// Returns whether it had to cut; throws call_stopped when the cell can't be converted.
bool store(const cell& from, const binding& to);

struct type_traits_row {
  SQLSMALLINT sql_type = SQL_CHAR;
  const char* name = "UNKNOWN";
  SQLSMALLINT c_type = SQL_C_CHAR;  // default C type
  bool number = false;
  SQLLEN length = 0;   // 0: the precision
  SQLLEN display = 0;  // 0: the precision plus extra_display
  SQLLEN extra_display = 0;
};

type_traits_row traits_of(SQLSMALLINT sql_type);

}  // namespace scripted
