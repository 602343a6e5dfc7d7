#pragma once

#include <optional>

#include "odbc/odbc_headers.h"

// Calls that end in the driver manager, so that no driver can make them fail. This program's own definitions of them
// stand before the driver manager's; each passes its call on, unless a code waits here, which it then returns once
// without doing anything.
struct manager_faults {
  std::optional<SQLRETURN> alloc_env;
  std::optional<SQLRETURN> free_env;
  std::optional<SQLRETURN> alloc_connect;
  std::optional<SQLRETURN> free_connect;
  std::optional<SQLRETURN> get_functions;
  std::optional<SQLRETURN> error;
  std::optional<SQLSMALLINT> cursor_name_length;  // reported in place of the true one, by a call that succeeds
};
manager_faults& next_manager_faults();
