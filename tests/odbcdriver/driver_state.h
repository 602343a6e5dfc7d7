// Inside of the scripted driver: handles, script, and the one seam every ODBC entry point goes through.
#pragma once

// sql.h declares the entry points; pushed, so that they alone are visible outside the library.
#pragma GCC visibility push(default)
#define ODBCVER 0x0250
#include <sql.h>
#include <sqlext.h>
#pragma GCC visibility pop

#include "scripted_driver.h"

#include <memory>
#include <set>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_map>

namespace scripted {

// Ends the running call; the seam turns it into the diagnostic record and the return code.
struct call_stopped {
  failure what;
  explicit call_stopped(failure why) : what(std::move(why)) {}
  // An error of the driver's own.
  call_stopped(std::string_view state, std::string_view message, SQLINTEGER native = 0);
};

struct handle {
  std::vector<failure> records;  // what SQLError gives out, each once, oldest first

  void warn(failure what) { records.push_back(std::move(what)); }
  void warn_truncated();
  // Throws call_stopped unless the failure is only a warning, which is posted.
  void raise(const failure& what);
};

struct environment : handle {};

struct connection : handle {
  environment* owner = nullptr;
  bool connected = false;
  std::map<SQLUSMALLINT, SQLULEN> options;
  std::map<SQLUSMALLINT, std::string> texts;
  std::map<SQLUSMALLINT, SQLULEN> statement_options;  // defaults for statements to come
};

// A bound buffer of one row or, column-wise, of many.
struct binding {
  SQLSMALLINT c_type = SQL_C_CHAR;
  void* buffer = nullptr;
  SQLLEN buffer_length = 0;
  SQLLEN* length = nullptr;
};

struct parameter_binding : binding {
  SQLSMALLINT io_type = SQL_PARAM_INPUT;
  SQLSMALLINT sql_type = SQL_CHAR;
  SQLULEN column_size = 0;
  SQLSMALLINT scale = 0;
};

enum class fetching { not_yet, single_rows, rowsets };

struct statement : handle {
  connection* owner = nullptr;
  std::shared_ptr<const answer> script;  // what the statement text or catalog call answers
  std::string text;
  bool prepared = false;  // can be executed again
  bool executed = false;
  bool open = false;  // cursor
  fetching mode = fetching::not_yet;
  SQLULEN next_row = 0;
  std::map<SQLUSMALLINT, binding> columns;
  std::map<SQLUSMALLINT, parameter_binding> parameters;
  SQLULEN parameter_rows = 1;
  SQLULEN* parameter_row = nullptr;
  std::map<SQLUSMALLINT, SQLULEN> options;
  std::string cursor_name;

  void require_closed() const;
  void forget_script();
  void close();
  SQLULEN option(SQLUSMALLINT which) const;
  void set_option(SQLUSMALLINT which, SQLULEN value);
};

template <class Handle>
using handles = std::unordered_map<SQLHANDLE, std::unique_ptr<Handle>>;

struct info_answer {
  std::string bytes;
  std::optional<SQLSMALLINT> reported_length;  // nothing: text
};

struct fault {
  std::string function;  // empty: any counted one
  unsigned skip = 0;
  unsigned times = 1;
  failure what;
};

class driver_state final : public driver {
 public:
  driver_state() { set_defaults(); }

  void reset() override;
  void answer_to(std::string statement_text, answer what) override;
  void default_answer(answer what) override;
  void catalog_answer(std::string function, answer what) override;
  void fail_nth_call(unsigned nth, failure what, unsigned times) override;
  void fail(std::string function, unsigned nth, failure what, unsigned times) override;
  void clear_faults() override;
  unsigned calls_made() const override { return counted_calls; }
  unsigned faults_fired() const override { return fired; }
  std::vector<call> log() const override { return entries; }
  std::vector<call> calls(const std::string& function) const override;
  std::size_t count(const std::string& function) const override;
  void clear_log() override { entries.clear(); }
  std::vector<execution> executions() const override { return seen_executions; }
  std::vector<std::string> transactions() const override { return seen_transactions; }
  std::map<SQLUSMALLINT, SQLULEN> connect_options() const override { return seen_options; }
  std::map<SQLUSMALLINT, std::string> connect_texts() const override { return seen_texts; }
  std::size_t open_environments() const override { return live<environment>().size(); }
  std::size_t open_connections() const override { return live<connection>().size(); }
  std::size_t open_statements() const override { return live<statement>().size(); }
  void require_login(std::string user, std::string password) override;
  void set_info(SQLUSMALLINT type, std::string text) override;
  void set_info_raw(SQLUSMALLINT type, std::string bytes, SQLSMALLINT reported_length) override;
  void set_unsupported(SQLUSMALLINT function_id) override { unsupported.insert(function_id); }
  void lie_about_rows_fetched(std::optional<SQLULEN> rows) override { rows_fetched_lie = rows; }

  template <class Handle>
  handles<Handle>& live() {
    return std::get<handles<Handle>>(all_handles);
  }
  template <class Handle>
  const handles<Handle>& live() const {
    return std::get<handles<Handle>>(all_handles);
  }

  // Null when the handle isn't one of the driver's.
  template <class Handle>
  Handle* find(SQLHANDLE raw) {
    const auto found = live<Handle>().find(raw);
    return found == live<Handle>().end() ? nullptr : found->second.get();
  }
  template <class Handle>
  Handle& add() {
    auto made = std::make_unique<Handle>();
    Handle& result = *made;
    live<Handle>().emplace(&result, std::move(made));
    return result;
  }
  // The handle is dead at once; its memory lasts until the running call has been logged.
  template <class Handle>
  void remove(Handle& which) {
    auto node = live<Handle>().extract(static_cast<SQLHANDLE>(&which));
    retired.push_back(std::shared_ptr<Handle>(std::move(node.mapped())));
  }

  std::shared_ptr<const answer> script_of(const std::string& statement_text) const;
  std::shared_ptr<const answer> catalog_script(const std::string& function) const;
  std::optional<failure> due_failure(const std::string& function, bool counted);
  SQLUSMALLINT cursor_behaviour(SQLUSMALLINT info_type) const;

  std::vector<call> entries;
  std::vector<execution> seen_executions;
  std::vector<std::string> seen_transactions;
  std::map<SQLUSMALLINT, SQLULEN> seen_options;
  std::map<SQLUSMALLINT, std::string> seen_texts;
  std::map<SQLUSMALLINT, info_answer> infos;
  std::set<SQLUSMALLINT> unsupported;
  std::optional<SQLULEN> rows_fetched_lie;
  std::optional<std::pair<std::string, std::string>> login;
  std::vector<std::shared_ptr<handle>> retired;
  handle process;  // calls that have no handle yet
  unsigned cursor_names = 0;

 private:
  void set_defaults();

  std::tuple<handles<environment>, handles<connection>, handles<statement>> all_handles;
  std::unordered_map<std::string, std::shared_ptr<const answer>> answers;
  std::shared_ptr<const answer> fallback;
  std::unordered_map<std::string, std::shared_ptr<const answer>> catalog_answers;
  std::vector<fault> faults;
  unsigned counted_calls = 0;
  unsigned fired = 0;
};

driver_state& state();

// The seam: clears the handle's records, lets faults strike, runs the body, turns what it throws into
// records, makes a success with records SQL_SUCCESS_WITH_INFO, and logs. No handle: SQL_INVALID_HANDLE.
// A body of on() may return nothing for SQL_SUCCESS.
SQLRETURN run_call(const char* function, handle* target, std::vector<std::string> args, bool counted,
                   const std::function<SQLRETURN()>& body);

template <class Handle, class Body>
SQLRETURN on(SQLHANDLE raw, const char* function, std::vector<std::string> args, Body body, bool counted = true) {
  Handle* target = state().find<Handle>(raw);
  return run_call(function, target, std::move(args), counted, [&]() -> SQLRETURN {
    if constexpr (std::is_void_v<decltype(body(*target))>) {
      body(*target);
      return SQL_SUCCESS;
    } else {
      return body(*target);
    }
  });
}

// Arguments for the log.
struct shown {
  std::string text;
  template <class Number, class = std::enable_if_t<std::is_integral_v<Number>>>
  shown(Number number) : text(std::to_string(number)) {}
  shown(std::string given) : text(std::move(given)) {}
  shown(const void* pointer) : text(pointer ? "set" : "null") {}
};
template <class... Values>
std::vector<std::string> args(const Values&... values) {
  return {shown(values).text...};
}

// A text argument for the log, and for use: S1009 when null, S1090 when the length is neither SQL_NTS nor >= 0.
std::string show_text(const SQLCHAR* text, SQLINTEGER length);
std::string given_text(const SQLCHAR* text, SQLINTEGER length);

// Writes text and terminating zero into a buffer of max bytes, the full length into length (both may be
// null); posts 01004 when it had to cut.
void put_text(handle& on, std::string_view text, void* buffer, SQLLEN max, SQLSMALLINT* length);

template <class Word, class Value>
void put(Word* where, Value value) {
  if (where) *where = static_cast<Word>(value);
}

}  // namespace scripted
