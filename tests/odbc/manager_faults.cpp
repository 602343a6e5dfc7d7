#include "odbc/manager_faults.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>
#include <utility>

manager_faults& next_manager_faults() {
  static manager_faults waiting;
  return waiting;
}

namespace {

// The driver manager's own function of this name.
template <typename Function>
Function* manager(Function*, const char* name) {
  void* found = dlsym(RTLD_NEXT, name);
  if (found == nullptr) throw std::runtime_error(std::string("the driver manager has no ") + name);
  return reinterpret_cast<Function*>(found);
}

template <typename Function, typename... Arguments>
SQLRETURN unless(std::optional<SQLRETURN>& fault, Function* own, const char* name, Arguments... arguments) {
  if (fault) return *std::exchange(fault, std::nullopt);
  return manager(own, name)(arguments...);
}

}  // namespace

SQLRETURN SQL_API SQLAllocEnv(SQLHENV* environment) {
  return unless(next_manager_faults().alloc_env, SQLAllocEnv, "SQLAllocEnv", environment);
}
SQLRETURN SQL_API SQLFreeEnv(SQLHENV environment) {
  return unless(next_manager_faults().free_env, SQLFreeEnv, "SQLFreeEnv", environment);
}
SQLRETURN SQL_API SQLAllocConnect(SQLHENV environment, SQLHDBC* connection) {
  return unless(next_manager_faults().alloc_connect, SQLAllocConnect, "SQLAllocConnect", environment, connection);
}
SQLRETURN SQL_API SQLFreeConnect(SQLHDBC connection) {
  return unless(next_manager_faults().free_connect, SQLFreeConnect, "SQLFreeConnect", connection);
}
SQLRETURN SQL_API SQLGetFunctions(SQLHDBC connection, SQLUSMALLINT function, SQLUSMALLINT* supported) {
  return unless(next_manager_faults().get_functions, SQLGetFunctions, "SQLGetFunctions", connection, function,
                supported);
}
SQLRETURN SQL_API SQLError(SQLHENV environment, SQLHDBC connection, SQLHSTMT statement, SQLCHAR* state,
                           SQLINTEGER* native, SQLCHAR* text, SQLSMALLINT most, SQLSMALLINT* length) {
  return unless(next_manager_faults().error, SQLError, "SQLError", environment, connection, statement, state, native,
                text, most, length);
}
SQLRETURN SQL_API SQLGetCursorName(SQLHSTMT statement, SQLCHAR* name, SQLSMALLINT most, SQLSMALLINT* length) {
  const SQLRETURN rc = manager(SQLGetCursorName, "SQLGetCursorName")(statement, name, most, length);
  if (auto& lie = next_manager_faults().cursor_name_length) *length = *std::exchange(lie, std::nullopt);
  return rc;
}
