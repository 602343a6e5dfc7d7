#pragma once

#include <optional>
#include <string>
#include <string_view>

// Where user preferences live between runs: text values of one application, addressed by section and key. Nothing is
// ever deleted.
class settings_store {
 public:
  virtual ~settings_store() = default;
  // Nothing when the key is absent.
  [[nodiscard]] virtual std::optional<std::string> read(std::string_view section, std::string_view key) const = 0;
  // False when the value could not be stored; `why` then says so in the system's words.
  virtual bool write(std::string_view section, std::string_view key, std::string_view text, std::string& why) = 0;
};

namespace settings {

inline constexpr std::string_view section = "Startup";

// Every key of the section.
namespace key {
inline constexpr std::string_view data_source = "AS400Default";
inline constexpr std::string_view user = "AS400DefaultU";
inline constexpr std::string_view jobinfo_proc = "JOBNOPROC";
inline constexpr std::string_view jobinfo_lib = "JOBNOLIB";
inline constexpr std::string_view database_dir = "DatabaseDirectory";
inline constexpr std::string_view ext_fetch = "ExtFetch";
inline constexpr std::string_view ext_fetch_rows = "ExtFetch_NR";
inline constexpr std::string_view dw_rows = "DataWindowRows";
inline constexpr std::string_view speed_test_rows = "SpeedTestRows";
inline constexpr std::string_view varchar_return_chars = "VarcharReturnChars";
inline constexpr std::string_view autocommit_on = "AutoCommitState";
inline constexpr std::string_view isolation_level = "IsolationLevel";
}  // namespace key

// The store of a program that keeps nothing: every key is absent.
class no_store final : public settings_store {
 public:
  [[nodiscard]] std::optional<std::string> read(std::string_view, std::string_view) const override {
    return std::nullopt;
  }
  bool write(std::string_view, std::string_view, std::string_view, std::string&) override { return true; }
};

// A text of the section, "" when absent.
std::string read_text(const settings_store& store, std::string_view key);

// Reads every key into the session's globals; what is absent takes its default, and so does what does not read as a
// number or boolean, which session::settings_notes then names. `program_dir` is the default of the database directory.
void load_into_session(const settings_store& store, const std::string& program_dir);

}  // namespace settings
