// Allocation and freeing of the three kinds of handle, and their diagnostic records.
#include "driver_state.h"

#include <fmt/format.h>

#include <algorithm>

using namespace scripted;

namespace {

template <class Handle>
Handle& hand_out(SQLHANDLE* where) {
  if (!where) throw call_stopped("S1009", "no place for the new handle");
  auto& made = state().add<Handle>();
  *where = &made;
  return made;
}

void free_statement(statement& which, SQLUSMALLINT option) {
  switch (option) {
    case SQL_CLOSE:
      which.close();
      break;
    case SQL_DROP:
      state().remove(which);
      break;
    case SQL_UNBIND:
      which.columns.clear();
      break;
    case SQL_RESET_PARAMS:
      which.parameters.clear();
      break;
    default:
      throw call_stopped("S1092", fmt::format("SQLFreeStmt option {}", option));
  }
}

// Gives out the oldest record and forgets it.
SQLRETURN next_record(handle& from, SQLCHAR* sqlstate, SQLINTEGER* native, SQLCHAR* message, SQLSMALLINT max,
                      SQLSMALLINT* length) {
  if (from.records.empty()) {
    put_text(from, "00000", sqlstate, 6, nullptr);
    return SQL_NO_DATA_FOUND;
  }
  const failure record = from.records.front();
  from.records.erase(from.records.begin());
  put_text(from, record.state.substr(0, 5), sqlstate, 6, nullptr);
  put(native, record.native);
  handle scratch;  // a cut message is told by the return code, not by a record about a record
  put_text(scratch, record.message, message, max, length);
  return scratch.records.empty() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

}  // namespace

SQLRETURN SQLAllocEnv(SQLHENV* environment_out) {
  return run_call("SQLAllocEnv", &state().process, {}, true, [&]() -> SQLRETURN {
    hand_out<environment>(environment_out);
    return SQL_SUCCESS;
  });
}

SQLRETURN SQLFreeEnv(SQLHENV raw) {
  return on<environment>(raw, "SQLFreeEnv", {}, [](environment& env) {
    const auto& all = state().live<connection>();
    if (std::any_of(all.begin(), all.end(), [&](const auto& one) { return one.second->owner == &env; }))
      throw call_stopped("S1010", "the environment still has connections");
    state().remove(env);
  });
}

SQLRETURN SQLAllocConnect(SQLHENV raw, SQLHDBC* connection_out) {
  return on<environment>(raw, "SQLAllocConnect", {},
                         [&](environment& env) { hand_out<connection>(connection_out).owner = &env; });
}

SQLRETURN SQLFreeConnect(SQLHDBC raw) {
  return on<connection>(raw, "SQLFreeConnect", {}, [](connection& con) {
    if (con.connected) throw call_stopped("S1010", "the connection is still connected");
    state().remove(con);
  });
}

SQLRETURN SQLAllocStmt(SQLHDBC raw, SQLHSTMT* statement_out) {
  return on<connection>(raw, "SQLAllocStmt", {}, [&](connection& con) {
    if (!con.connected) throw call_stopped("08003", "not connected");
    auto& made = hand_out<statement>(statement_out);
    made.owner = &con;
    made.options = con.statement_options;
    made.cursor_name = fmt::format("SQL_CUR{:04}", ++state().cursor_names);
  });
}

SQLRETURN SQLFreeStmt(SQLHSTMT raw, SQLUSMALLINT option) {
  return on<statement>(raw, "SQLFreeStmt", args(option), [&](statement& stmt) { free_statement(stmt, option); });
}

SQLRETURN SQLError(SQLHENV env, SQLHDBC con, SQLHSTMT stmt, SQLCHAR* sqlstate, SQLINTEGER* native, SQLCHAR* message,
                   SQLSMALLINT max, SQLSMALLINT* length) {
  driver_state& driver = state();
  handle* asked = nullptr;
  const char* kind = "environment";
  if (stmt) {
    asked = driver.find<statement>(stmt);
    kind = "statement";
  } else if (con) {
    asked = driver.find<connection>(con);
    kind = "connection";
  } else {
    asked = driver.find<environment>(env);
  }
  const SQLRETURN rc =
      asked ? next_record(*asked, sqlstate, native, message, max, length) : SQLRETURN{SQL_INVALID_HANDLE};
  driver.entries.push_back({"SQLError", {kind}, rc});
  return rc;
}
