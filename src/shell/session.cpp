#include "shell/session.h"

#include "shell/settings.h"

namespace session {

odbccon g_con;
odbcstmt g_stmt;

std::string qualifier_sep;
bool is_udb = false;
bool autocommit_on = false;
std::int32_t isolation_level = 0;
std::string jobinfo_proc;
std::string jobinfo_lib;
bool debug_on = false;
std::string database_dir;
bool ext_fetch = false;
std::int32_t ext_fetch_rows = 0;
std::int32_t dw_rows = 0;
std::int32_t speed_test_rows = 0;
std::int32_t varchar_return_chars = 0;
std::string find_text;
std::int16_t& busy_depth = busy().busy_depth;
pointer_shape& saved_pointer = busy().saved_pointer;
std::vector<std::string> settings_notes;

void reset() {
  g_stmt.Kill();
  if (!g_con.Free()) g_con.Disconnect();
  for (std::string* text : {&qualifier_sep, &jobinfo_proc, &jobinfo_lib, &database_dir, &find_text}) text->clear();
  for (bool* flag : {&is_udb, &autocommit_on, &debug_on, &ext_fetch}) *flag = false;
  for (std::int32_t* number : {&isolation_level, &ext_fetch_rows, &dw_rows, &speed_test_rows, &varchar_return_chars})
    *number = 0;
  busy() = {};
  settings_notes.clear();
}

}  // namespace session
