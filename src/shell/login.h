#pragma once

#include <string>
#include <string_view>

#include "shell/settings.h"

// What the user typed at the login.
struct login_request {
  std::string data_source;
  std::string user;
  std::string password;
  bool udb = false;
};

// The names as they are connected and remembered: trimmed and in upper case, the password too.
std::string login_name(std::string_view typed);

// Connects session::g_con, sets autocommit and isolation as the session's settings say, makes session::g_stmt and
// remembers data source and user in the store. Every failure is shown and answers false with nothing connected and
// nothing remembered; a store that cannot be written is told and does not stop the login.
bool log_in(const login_request& typed, settings_store& store);
