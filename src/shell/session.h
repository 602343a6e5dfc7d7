#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/user_interface.h"
#include "odbc/odbccon.h"
#include "odbc/odbcstmt.h"

// The state of one program run, shared by all forms. Filled by the login from the settings store; the options panel
// changes it. Forms and main programs read it, logic takes what it needs as arguments.
namespace session {

extern odbccon g_con;    // the one connection
extern odbcstmt g_stmt;  // a general-purpose statement on it

extern std::string qualifier_sep;  // the driver's separator between a library and an object name
extern bool is_udb;                // DB2 Universal rather than DB2 on an AS/400

extern bool autocommit_on;
extern std::int32_t isolation_level;  // index of isolation_table
extern std::string jobinfo_proc;
extern std::string jobinfo_lib;
extern bool debug_on;
extern std::string database_dir;  // with the path separator at its end
extern bool ext_fetch;            // fetch result sets in blocks
extern std::int32_t ext_fetch_rows;
extern std::int32_t dw_rows;
extern std::int32_t speed_test_rows;
extern std::int32_t varchar_return_chars;
extern std::string find_text;

extern std::int16_t& busy_depth;
extern pointer_shape& saved_pointer;

// What the settings store held that could not be read as what it should be; the frame says it once.
extern std::vector<std::string> settings_notes;

// Disconnects and puts everything back as at program start.
void reset();

}  // namespace session
