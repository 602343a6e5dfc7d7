#pragma once

#include "base/value.h"
#include "odbc/odbc_headers.h"
#include "odbc/raw_buffer.h"

// Cells that are more than a number: texts and ODBC's date structures, read and written at any address.

// The bytes of a text cell as cell_text takes them, in the code page in force.
std::string_view cell_bytes(const unsigned char* bytes, std::size_t width, SQLLEN length);
// The text of a cell of `width` bytes whose length word is `length`: "" below 1, never more than width - 1 bytes, and
// where the driver cut the value, cut back to a whole character. UTF-8.
std::string cell_text(const unsigned char* bytes, std::size_t width, SQLLEN length);
// The same text without its leading and trailing blanks, at the end of `out`.
void append_trimmed_cell_text(const unsigned char* bytes, std::size_t width, SQLLEN length, std::string& out);

// The date-time of a SQL_C_DATE, SQL_C_TIME or SQL_C_TIMESTAMP cell, fractions of a second dropped; `impossible` when
// it names none.
value moment_cell(SQLSMALLINT ctype, const unsigned char* bytes, error_value impossible);

// The text of that value at the end of `out`.
void append_moment_cell(SQLSMALLINT ctype, const unsigned char* bytes, error_value impossible, std::string& out);

void put_date_cell(unsigned char* bytes, date_time moment);
void put_time_cell(unsigned char* bytes, date_time moment);
void put_timestamp_cell(unsigned char* bytes, date_time moment);
