// The control side of the scripted ODBC 2.x driver: what a test tells it to answer, which calls it is to
// fail, and what it saw. The driver is loaded by the driver manager like any other; a test reaches the very
// instance through control(), which needs no link to the driver (scripted_driver_control gives the path).
#pragma once

#ifndef ODBCVER
#define ODBCVER 0x0250
#endif
#include <sql.h>
#include <sqlext.h>

#include <dlfcn.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace scripted {

using cell_value = std::variant<std::monostate, std::int32_t, std::int64_t, double, std::string, DATE_STRUCT,
                                TIME_STRUCT, TIMESTAMP_STRUCT>;

// One value of a result or of an output parameter; a default cell or nullptr is Null. Text is bytes, given
// out as they are (zero bytes and broken UTF-8 too). The driver converts to the bound C type.
struct cell {
  cell() = default;
  cell(std::nullptr_t) {}
  cell(std::int32_t number) : value(number) {}
  cell(std::int64_t number) : value(number) {}
  cell(double number) : value(number) {}
  cell(const char* text) : value(std::string(text)) {}
  cell(std::string bytes) : value(std::move(bytes)) {}
  cell(DATE_STRUCT date) : value(date) {}
  cell(TIME_STRUCT time) : value(time) {}
  cell(TIMESTAMP_STRUCT stamp) : value(stamp) {}

  // The same cell with a length word that lies: written in place of the true one (or of SQL_NULL_DATA).
  [[nodiscard]] cell reporting(SQLLEN length) const {
    cell lying = *this;
    lying.reported_length = length;
    return lying;
  }

  cell_value value;
  std::optional<SQLLEN> reported_length;
};

// rc decides what happens: SQL_ERROR posts the record and stops the call; SQL_SUCCESS_WITH_INFO posts the
// record and lets the call do its work; any other code is returned with no record and no work done.
struct failure {
  SQLRETURN rc = SQL_ERROR;
  std::string state = "S1000";
  SQLINTEGER native = 0;
  std::string message = "scripted failure";
};

struct column {
  std::string name;
  SQLSMALLINT sql_type = SQL_CHAR;
  SQLULEN precision = 0;
  SQLSMALLINT scale = 0;
  SQLSMALLINT nullable = SQL_NULLABLE;
  std::string label{};      // SQLColAttributes(SQL_COLUMN_LABEL); the name when empty
  std::string type_name{};  // SQLColAttributes(SQL_COLUMN_TYPE_NAME); by the type when empty
};

struct parameter {
  SQLSMALLINT sql_type = SQL_CHAR;
  SQLULEN precision = 0;
  SQLSMALLINT scale = 0;
  SQLSMALLINT nullable = SQL_NULLABLE;
};

// A result too large to store. Row and column count from 0, as in answer::rows.
struct generated_rows {
  SQLULEN count = 0;
  std::function<cell(SQLULEN row, std::size_t column)> cell_at;
};

struct answer {
  std::vector<column> columns{};  // none: the statement opens no cursor
  std::vector<std::vector<cell>> rows{};
  std::optional<generated_rows> generated{};  // takes the place of rows
  std::vector<parameter> parameters{};        // SQLNumParams; all must be bound at execute, else 07001
  std::map<SQLUSMALLINT, cell> outputs{};     // by parameter number from 1; only into output and in/out bindings
  SQLLEN row_count = -1;                      // SQLRowCount
  std::optional<failure> prepare_failure{};
  std::optional<failure> execute_failure{};
  SQLULEN failing_parameter_row = 1;  // the row SQLParamOptions' pirow names when execute_failure strikes
  // By row from 0. SQL_ERROR stops the fetch at that row (rows before it in the rowset are delivered, the
  // next fetch goes on behind it); SQL_SUCCESS_WITH_INFO marks the row SQL_ROW_ERROR in SQLExtendedFetch
  // and leaves its cells alone, while SQLFetch delivers it with the record.
  std::map<SQLULEN, failure> fetch_failures{};
  bool columns_after_execute = false;  // a procedure: no result columns until it has run
};

// Arguments in the order of the ODBC call, handles and pure output pointers left out. Numbers are decimal;
// text is cut at its length argument, which is itself left out, a null text is "<null>"; of a bound buffer
// or length pointer only "set" or "null" is kept. SQLError's one argument is the kind of handle asked:
// "environment", "connection" or "statement".
struct call {
  std::string function;
  std::vector<std::string> args;
  SQLRETURN rc = SQL_SUCCESS;
};

struct bound_parameter {
  SQLUSMALLINT number = 0;
  SQLSMALLINT io_type = SQL_PARAM_INPUT;
  SQLSMALLINT c_type = SQL_C_CHAR;
  SQLSMALLINT sql_type = SQL_CHAR;
  SQLULEN column_size = 0;
  SQLSMALLINT scale = 0;
  SQLLEN buffer_length = 0;
  std::optional<SQLLEN> length_word;  // nothing: bound without a length pointer
  std::string bytes;                  // empty for Null and for pure output parameters
};

struct execution {
  std::string statement;
  std::vector<std::vector<bound_parameter>> rows;  // one per row of the parameter array, parameters in order
};

inline constexpr unsigned always = 0xFFFFFFFFU;  // a number of times that doesn't run out

class driver {
 public:
  virtual ~driver() = default;

  // Forgets answers, faults, log, executions, transactions, infos, lies and logins. Handles stay open.
  virtual void reset() = 0;

  // What a statement text, compared byte for byte, answers. Texts without an answer get the default
  // answer; as long as there is none they fail at SQLPrepare with 42000, native -104, naming the text.
  virtual void answer_to(std::string statement_text, answer what) = 0;
  virtual void default_answer(answer what) = 0;
  // Answer of a catalog function ("SQLTables" ...), whatever its arguments; without one it fails S1C00.
  virtual void catalog_answer(std::string function, answer what) = 0;

  // Fails the nth call from now on (from 1) and the times - 1 following ones. Counted is every call that
  // reaches the driver except SQLError, SQLGetFunctions and the SQLGetInfo questions about cursor
  // behaviour (info types 23 and 24) that the driver manager asks of its own accord after the first SQLTransact.
  // A failing SQLFreeStmt(SQL_DROP), SQLDisconnect, SQLFreeConnect or SQLFreeEnv leaves the handle alive.
  virtual void fail_nth_call(unsigned nth, failure what, unsigned times = 1) = 0;
  // The same for the calls of one function; any function but SQLError.
  virtual void fail(std::string function, unsigned nth, failure what, unsigned times = 1) = 0;
  virtual void clear_faults() = 0;
  // Counted calls since the last fail_nth_call, clear_faults or reset; a failing call counts.
  virtual unsigned calls_made() const = 0;
  // Calls that a fault struck since the last clear_faults or reset.
  virtual unsigned faults_fired() const = 0;

  virtual std::vector<call> log() const = 0;
  virtual std::vector<call> calls(const std::string& function) const = 0;
  virtual std::size_t count(const std::string& function) const = 0;
  virtual void clear_log() = 0;  // executions and transactions stay

  // SQLExecute and SQLExecDirect that succeeded, in order.
  virtual std::vector<execution> executions() const = 0;
  virtual std::vector<std::string> transactions() const = 0;  // "commit" and "rollback" that succeeded
  // What SQLSetConnectOption last set on any connection: numbers, and the options that are text.
  virtual std::map<SQLUSMALLINT, SQLULEN> connect_options() const = 0;
  virtual std::map<SQLUSMALLINT, std::string> connect_texts() const = 0;

  virtual std::size_t open_environments() const = 0;
  virtual std::size_t open_connections() const = 0;  // allocated, connected or not
  virtual std::size_t open_statements() const = 0;

  // From now on every other user or password is refused with 28000; unset, all are accepted.
  virtual void require_login(std::string user, std::string password) = 0;

  // SQLGetInfo: a text, or bytes as they are with any length word (numbers: 2 or 4 bytes of the host).
  // Types without an answer fail S1096. SQL_CURSOR_COMMIT_BEHAVIOR and SQL_CURSOR_ROLLBACK_BEHAVIOR
  // (default SQL_CB_CLOSE) are also obeyed by SQLTransact.
  virtual void set_info(SQLUSMALLINT type, std::string text) = 0;
  virtual void set_info_raw(SQLUSMALLINT type, std::string bytes, SQLSMALLINT reported_length) = 0;
  // SQLGetFunctions denies the function from now on.
  virtual void set_unsupported(SQLUSMALLINT function_id) = 0;

  // SQLExtendedFetch reports this many rows whenever it delivers any; nothing: the truth.
  virtual void lie_about_rows_fetched(std::optional<SQLULEN> rows) = 0;
};

#ifdef SCRIPTED_DRIVER_PATH
// The instance the driver manager uses. Throws std::runtime_error when the library can't be loaded.
inline driver& control() {
  static driver& instance = []() -> driver& {
    void* library = dlopen(SCRIPTED_DRIVER_PATH, RTLD_NOW);
    void* entry = library ? dlsym(library, "sorvane_scripted_driver_control") : nullptr;
    if (!entry) throw std::runtime_error(dlerror());
    return *reinterpret_cast<driver* (*)()>(entry)();
  }();
  return instance;
}
#endif

}  // namespace scripted
