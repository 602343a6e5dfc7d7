// Connections: login, options, what the driver tells about itself, transactions.
#include "driver_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>

using namespace scripted;

namespace {

constexpr std::array<SQLUSMALLINT, 44> exported = {
    SQL_API_SQLALLOCENV,         SQL_API_SQLFREEENV,          SQL_API_SQLALLOCCONNECT,  SQL_API_SQLCONNECT,
    SQL_API_SQLDRIVERCONNECT,    SQL_API_SQLDISCONNECT,       SQL_API_SQLFREECONNECT,   SQL_API_SQLTRANSACT,
    SQL_API_SQLSETCONNECTOPTION, SQL_API_SQLGETCONNECTOPTION, SQL_API_SQLGETINFO,       SQL_API_SQLGETFUNCTIONS,
    SQL_API_SQLALLOCSTMT,        SQL_API_SQLFREESTMT,         SQL_API_SQLPREPARE,       SQL_API_SQLEXECUTE,
    SQL_API_SQLEXECDIRECT,       SQL_API_SQLCANCEL,           SQL_API_SQLNUMRESULTCOLS, SQL_API_SQLDESCRIBECOL,
    SQL_API_SQLCOLATTRIBUTES,    SQL_API_SQLBINDCOL,          SQL_API_SQLFETCH,         SQL_API_SQLEXTENDEDFETCH,
    SQL_API_SQLROWCOUNT,         SQL_API_SQLNUMPARAMS,        SQL_API_SQLDESCRIBEPARAM, SQL_API_SQLBINDPARAMETER,
    SQL_API_SQLPARAMOPTIONS,     SQL_API_SQLSETSTMTOPTION,    SQL_API_SQLGETSTMTOPTION, SQL_API_SQLSETSCROLLOPTIONS,
    SQL_API_SQLSETCURSORNAME,    SQL_API_SQLGETCURSORNAME,    SQL_API_SQLERROR,         SQL_API_SQLTABLES,
    SQL_API_SQLTABLEPRIVILEGES,  SQL_API_SQLPRIMARYKEYS,      SQL_API_SQLFOREIGNKEYS,   SQL_API_SQLSPECIALCOLUMNS,
    SQL_API_SQLSTATISTICS,       SQL_API_SQLCOLUMNS,          SQL_API_SQLPROCEDURES,    SQL_API_SQLPROCEDURECOLUMNS};

constexpr SQLUSMALLINT first_driver_option = 1000;  // below lie the options ODBC 2 defines

bool is_text_option(SQLUSMALLINT option) {
  return option == SQL_CURRENT_QUALIFIER || option == SQL_OPT_TRACEFILE || option == SQL_TRANSLATE_DLL;
}

bool is_known_option(SQLUSMALLINT option) {
  return (option >= SQL_ACCESS_MODE && option <= SQL_PACKET_SIZE) || option >= first_driver_option;
}

SQLULEN default_option(SQLUSMALLINT option) {
  switch (option) {
    case SQL_AUTOCOMMIT:
      return SQL_AUTOCOMMIT_ON;
    case SQL_TXN_ISOLATION:
      return SQL_TXN_READ_COMMITTED;
    default:
      return 0;
  }
}

void log_in(connection& con, const std::string& user, const std::string& password) {
  if (con.connected) throw call_stopped("08002", "already connected");
  const auto& required = state().login;
  if (required && *required != std::pair(user, password))
    throw call_stopped("28000", fmt::format("invalid user or password for user {}", user));
  con.connected = true;
}

void require_connected(const connection& con) {
  if (!con.connected) throw call_stopped("08003", "not connected");
}

// The value of a keyword (in capitals) of a connection string; empty when it isn't there.
std::string attribute_of(const std::string& connection_string, std::string_view keyword) {
  std::size_t start = 0;
  while (start < connection_string.size()) {
    const std::size_t end = std::min(connection_string.find(';', start), connection_string.size());
    const std::string pair = connection_string.substr(start, end - start);
    const std::size_t equals = std::min(pair.find('='), pair.size());
    std::string name = pair.substr(0, equals);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (name == keyword) return pair.substr(std::min(equals + 1, pair.size()));
    start = end + 1;
  }
  return {};
}

std::vector<statement*> statements_of(const connection& con) {
  std::vector<statement*> found;
  for (const auto& one : state().live<statement>())
    if (one.second->owner == &con) found.push_back(one.second.get());
  return found;
}

void end_transaction(const connection& con, SQLUSMALLINT behaviour_info) {
  const SQLUSMALLINT behaviour = state().cursor_behaviour(behaviour_info);
  for (statement* one : statements_of(con)) {
    if (behaviour != SQL_CB_PRESERVE) one->close();
    if (behaviour == SQL_CB_DELETE) one->forget_script();
  }
}

void set_option(connection& con, SQLUSMALLINT option, SQLULEN value) {
  if (option <= SQL_STMT_OPT_MAX) {
    for (statement* one : statements_of(con)) one->set_option(option, value);
    con.statement_options[option] = value;
  } else if (!is_known_option(option)) {
    throw call_stopped("S1092", fmt::format("connection option {}", option));
  } else if (option == SQL_AUTOCOMMIT && value > SQL_AUTOCOMMIT_ON) {
    throw call_stopped("S1009", fmt::format("autocommit mode {}", value));
  }
  if (is_text_option(option)) {
    const std::string text = given_text(reinterpret_cast<const SQLCHAR*>(value), SQL_NTS);
    con.texts[option] = state().seen_texts[option] = text;
  } else {
    con.options[option] = state().seen_options[option] = value;
  }
}

void give_raw_info(const info_answer& info, void* value, SQLSMALLINT max, SQLSMALLINT* length) {
  put(length, *info.reported_length);
  if (value) {
    // ODBC lets a caller pass any buffer length with a number, 0 included.
    const std::size_t room = max > 0 ? static_cast<std::size_t>(max) : sizeof(SQLUINTEGER);
    std::memcpy(value, info.bytes.data(), std::min(info.bytes.size(), room));
  }
}

bool driver_managers_own_question(SQLUSMALLINT info_type) {
  return info_type == SQL_CURSOR_COMMIT_BEHAVIOR || info_type == SQL_CURSOR_ROLLBACK_BEHAVIOR;
}

}  // namespace

SQLRETURN SQLConnect(SQLHDBC raw, SQLCHAR* dsn, SQLSMALLINT dsn_length, SQLCHAR* user, SQLSMALLINT user_length,
                     SQLCHAR* password, SQLSMALLINT password_length) {
  const auto shown_args =
      args(show_text(dsn, dsn_length), show_text(user, user_length), show_text(password, password_length));
  return on<connection>(raw, "SQLConnect", shown_args, [&](connection& con) {
    log_in(con, user ? given_text(user, user_length) : "", password ? given_text(password, password_length) : "");
  });
}

SQLRETURN SQLDriverConnect(SQLHDBC raw, SQLHWND, SQLCHAR* in, SQLSMALLINT in_length, SQLCHAR* out, SQLSMALLINT out_max,
                           SQLSMALLINT* out_length, SQLUSMALLINT completion) {
  const auto shown_args = args(show_text(in, in_length), completion);
  return on<connection>(raw, "SQLDriverConnect", shown_args, [&](connection& con) {
    const std::string text = given_text(in, in_length);
    log_in(con, attribute_of(text, "UID"), attribute_of(text, "PWD"));
    put_text(con, text, out, out_max, out_length);
  });
}

SQLRETURN SQLDisconnect(SQLHDBC raw) {
  return on<connection>(raw, "SQLDisconnect", {}, [](connection& con) {
    require_connected(con);
    for (statement* one : statements_of(con)) state().remove(*one);
    con.connected = false;
  });
}

// The driver manager asks each connection by itself, also for a whole environment.
SQLRETURN SQLTransact(SQLHENV, SQLHDBC raw, SQLUSMALLINT type) {
  return on<connection>(raw, "SQLTransact", args(type), [&](connection& con) {
    require_connected(con);
    if (type != SQL_COMMIT && type != SQL_ROLLBACK)
      throw call_stopped("S1012", fmt::format("transaction operation {}", type));
    const bool commit = type == SQL_COMMIT;
    end_transaction(con, commit ? SQL_CURSOR_COMMIT_BEHAVIOR : SQL_CURSOR_ROLLBACK_BEHAVIOR);
    state().seen_transactions.emplace_back(commit ? "commit" : "rollback");
  });
}

SQLRETURN SQLSetConnectOption(SQLHDBC raw, SQLUSMALLINT option, SQLULEN value) {
  const auto shown_args = is_text_option(option)
                              ? args(option, show_text(reinterpret_cast<const SQLCHAR*>(value), SQL_NTS))
                              : args(option, value);
  return on<connection>(raw, "SQLSetConnectOption", shown_args,
                        [&](connection& con) { set_option(con, option, value); });
}

SQLRETURN SQLGetConnectOption(SQLHDBC raw, SQLUSMALLINT option, SQLPOINTER value) {
  return on<connection>(raw, "SQLGetConnectOption", args(option), [&](connection& con) {
    if (!is_known_option(option)) throw call_stopped("S1092", fmt::format("connection option {}", option));
    if (is_text_option(option)) {
      put_text(con, con.texts[option], value, SQL_MAX_OPTION_STRING_LENGTH, nullptr);
      return;
    }
    const auto found = con.options.find(option);
    const SQLULEN number = found == con.options.end() ? default_option(option) : found->second;
    if (option == SQL_QUIET_MODE)  // a window handle
      put(static_cast<SQLULEN*>(value), number);
    else
      put(static_cast<SQLUINTEGER*>(value), number);
  });
}

SQLRETURN SQLGetInfo(SQLHDBC raw, SQLUSMALLINT type, SQLPOINTER value, SQLSMALLINT max, SQLSMALLINT* length) {
  const auto answer_question = [&](connection& con) {
    require_connected(con);
    const auto found = state().infos.find(type);
    if (found == state().infos.end()) throw call_stopped("S1096", fmt::format("information type {}", type));
    if (found->second.reported_length)
      give_raw_info(found->second, value, max, length);
    else
      put_text(con, found->second.bytes, value, max, length);
  };
  return on<connection>(raw, "SQLGetInfo", args(type, max), answer_question, !driver_managers_own_question(type));
}

SQLRETURN SQLGetFunctions(SQLHDBC raw, SQLUSMALLINT function_id, SQLUSMALLINT* supported) {
  const auto answer_question = [&](connection&) -> SQLRETURN {
    constexpr SQLUSMALLINT table_size = 100;  // of SQL_API_ALL_FUNCTIONS
    const auto offered = [](SQLUSMALLINT id) {
      return std::count(exported.begin(), exported.end(), id) > 0 && !state().unsupported.contains(id);
    };
    if (!supported || function_id > table_size) throw call_stopped("S1095", fmt::format("function {}", function_id));
    if (function_id != SQL_API_ALL_FUNCTIONS) {
      *supported = offered(function_id) ? 1 : 0;
      return SQL_SUCCESS;
    }
    for (SQLUSMALLINT id = 0; id < table_size; ++id) supported[id] = offered(id) ? 1 : 0;
    return SQL_SUCCESS;
  };
  return on<connection>(raw, "SQLGetFunctions", args(function_id), answer_question, false);
}
