// The control object: script, faults, what was seen; and the seam of the entry points.
#include "driver_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace scripted {

namespace {

std::string bytes_of(auto number) { return {reinterpret_cast<const char*>(&number), sizeof number}; }

std::shared_ptr<const answer> shared(answer what) { return std::make_shared<const answer>(std::move(what)); }

}  // namespace

driver_state& state() {
  // Never destroyed: handles may be freed by static objects of the program that ends.
  static auto& instance = *new driver_state;
  return instance;
}

void driver_state::set_defaults() {
  using word = SQLUSMALLINT;
  using long_word = SQLUINTEGER;
  set_info(SQL_DRIVER_NAME, "libsorvane_scripted_driver.so");
  set_info(SQL_DRIVER_VER, "01.00.0000");
  set_info(SQL_DRIVER_ODBC_VER, "02.50");
  set_info(SQL_DBMS_NAME, "Scripted");
  set_info(SQL_DBMS_VER, "01.00.0000");
  set_info(SQL_QUALIFIER_NAME_SEPARATOR, ".");
  set_info(SQL_IDENTIFIER_QUOTE_CHAR, "\"");
  set_info_raw(SQL_CURSOR_COMMIT_BEHAVIOR, bytes_of(word{SQL_CB_CLOSE}), sizeof(word));
  set_info_raw(SQL_CURSOR_ROLLBACK_BEHAVIOR, bytes_of(word{SQL_CB_CLOSE}), sizeof(word));
  set_info_raw(SQL_TXN_CAPABLE, bytes_of(word{SQL_TC_ALL}), sizeof(word));
  set_info_raw(SQL_FETCH_DIRECTION, bytes_of(long_word{SQL_FD_FETCH_NEXT}), sizeof(long_word));
}

void driver_state::reset() {
  answers.clear();
  fallback.reset();
  catalog_answers.clear();
  clear_faults();
  entries.clear();
  seen_executions.clear();
  seen_transactions.clear();
  seen_options.clear();
  seen_texts.clear();
  infos.clear();
  unsupported.clear();
  rows_fetched_lie.reset();
  login.reset();
  set_defaults();
}

void driver_state::answer_to(std::string statement_text, answer what) {
  answers[std::move(statement_text)] = shared(std::move(what));
}

void driver_state::default_answer(answer what) { fallback = shared(std::move(what)); }

void driver_state::catalog_answer(std::string function, answer what) {
  catalog_answers[std::move(function)] = shared(std::move(what));
}

std::shared_ptr<const answer> driver_state::script_of(const std::string& statement_text) const {
  const auto found = answers.find(statement_text);
  auto script = found == answers.end() ? fallback : found->second;
  if (!script) throw call_stopped("42000", fmt::format("no answer for the statement: {}", statement_text), -104);
  return script;
}

std::shared_ptr<const answer> driver_state::catalog_script(const std::string& function) const {
  const auto found = catalog_answers.find(function);
  if (found == catalog_answers.end())
    throw call_stopped("S1C00", fmt::format("no answer for the catalog function {}", function));
  return found->second;
}

void driver_state::fail_nth_call(unsigned nth, failure what, unsigned times) {
  counted_calls = 0;
  fail("", nth, std::move(what), times);
}

void driver_state::fail(std::string function, unsigned nth, failure what, unsigned times) {
  if (nth == 0 || times == 0 || function == "SQLError")
    throw std::invalid_argument("a fault strikes from the first call on, at least once, and never SQLError");
  faults.push_back({std::move(function), nth - 1, times, std::move(what)});
}

void driver_state::clear_faults() {
  faults.clear();
  counted_calls = 0;
  fired = 0;
}

std::optional<failure> driver_state::due_failure(const std::string& function, bool counted) {
  counted_calls += counted ? 1 : 0;
  std::optional<failure> due;
  for (fault& one : faults) {
    if (one.function.empty() ? !counted : one.function != function) continue;
    if (one.skip > 0) {
      --one.skip;
    } else if (!due) {
      due = one.what;
      one.times -= one.times == always ? 0 : 1;
    }
  }
  std::erase_if(faults, [](const fault& one) { return one.times == 0; });
  fired += due ? 1 : 0;
  return due;
}

std::vector<call> driver_state::calls(const std::string& function) const {
  std::vector<call> found;
  std::copy_if(entries.begin(), entries.end(), std::back_inserter(found),
               [&](const call& one) { return one.function == function; });
  return found;
}

std::size_t driver_state::count(const std::string& function) const {
  return static_cast<std::size_t>(
      std::count_if(entries.begin(), entries.end(), [&](const call& one) { return one.function == function; }));
}

void driver_state::require_login(std::string user, std::string password) {
  login.emplace(std::move(user), std::move(password));
}

void driver_state::set_info(SQLUSMALLINT type, std::string text) { infos[type] = {std::move(text), std::nullopt}; }

void driver_state::set_info_raw(SQLUSMALLINT type, std::string bytes, SQLSMALLINT reported_length) {
  infos[type] = {std::move(bytes), reported_length};
}

SQLUSMALLINT driver_state::cursor_behaviour(SQLUSMALLINT info_type) const {
  SQLUSMALLINT behaviour = SQL_CB_CLOSE;
  const auto found = infos.find(info_type);
  if (found != infos.end() && found->second.bytes.size() == sizeof behaviour)
    std::memcpy(&behaviour, found->second.bytes.data(), sizeof behaviour);
  return behaviour;
}

SQLRETURN run_call(const char* function, handle* target, std::vector<std::string> args, bool counted,
                   const std::function<SQLRETURN()>& body) {
  driver_state& driver = state();
  SQLRETURN rc = SQL_INVALID_HANDLE;
  if (target) {
    target->records.clear();
    try {
      if (const auto due = driver.due_failure(function, counted)) target->raise(*due);
      rc = body();
    } catch (const call_stopped& stop) {
      rc = stop.what.rc;
      if (rc == SQL_ERROR) target->records.push_back(stop.what);
    } catch (const std::exception& error) {  // a script's own function, or out of memory
      rc = SQL_ERROR;
      target->records.push_back({SQL_ERROR, "S1000", 0, error.what()});
    }
    if (rc == SQL_SUCCESS && !target->records.empty()) rc = SQL_SUCCESS_WITH_INFO;
  }
  driver.entries.push_back({function, std::move(args), rc});
  driver.retired.clear();
  return rc;
}

call_stopped::call_stopped(std::string_view state, std::string_view message, SQLINTEGER native)
    : what{SQL_ERROR, std::string(state), native, fmt::format("[Sorvane][Scripted driver] {}", message)} {}

void handle::warn_truncated() {
  warn({SQL_SUCCESS_WITH_INFO, "01004", 0, "[Sorvane][Scripted driver] Data truncated"});
}

void handle::raise(const failure& what) {
  if (what.rc != SQL_SUCCESS_WITH_INFO) throw call_stopped(what);
  warn(what);
}

std::string show_text(const SQLCHAR* text, SQLINTEGER length) {
  if (!text) return "<null>";
  if (length < 0 && length != SQL_NTS) return fmt::format("<length {}>", length);
  const auto* chars = reinterpret_cast<const char*>(text);
  return length == SQL_NTS ? std::string(chars) : std::string(chars, static_cast<std::size_t>(length));
}

std::string given_text(const SQLCHAR* text, SQLINTEGER length) {
  if (!text) throw call_stopped("S1009", "null text argument");
  if (length < 0 && length != SQL_NTS) throw call_stopped("S1090", fmt::format("text length {}", length));
  return show_text(text, length);
}

void put_text(handle& on, std::string_view text, void* buffer, SQLLEN max, SQLSMALLINT* length) {
  put(length, std::min<std::size_t>(text.size(), 32767));
  if (!buffer) return;
  const auto room = static_cast<std::size_t>(std::max<SQLLEN>(max, 0));
  if (room > 0) {
    const std::size_t copied = std::min(text.size(), room - 1);
    std::memcpy(buffer, text.data(), copied);
    static_cast<char*>(buffer)[copied] = '\0';
  }
  if (text.size() >= room) on.warn_truncated();
}

}  // namespace scripted

extern "C" __attribute__((visibility("default"))) scripted::driver* sorvane_scripted_driver_control();
extern "C" scripted::driver* sorvane_scripted_driver_control() { return &scripted::state(); }
