#pragma once

#include <string>

#include "shell/settings.h"

// What stands on the options panel when the user saves it.
struct option_entries {
  std::string ext_fetch_rows;
  std::string dw_rows;
  std::string speed_test_rows;
  std::string varchar_return_chars;
  std::string database_dir;
  std::string jobinfo_proc;
  std::string jobinfo_lib;
  bool ext_fetch = false;
  bool debug_on = false;
  bool autocommit_on = false;
  std::int32_t isolation_level = 2;  // index of isolation_table
};

// Checks the entries, applies them to the session and its connection, and writes the settings. Every wrong entry is
// told; false then, and the panel stays open. A wrong number changes nothing; an empty directory is found after
// autocommit, isolation and block fetching are already in force. Settings that cannot be written are told, and the
// session keeps them. An empty name of the job-information procedure or its library is its default.
bool save_options(const option_entries& typed, settings_store& store);
