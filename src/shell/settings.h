#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A key of the store and the text to keep under it.
struct setting_text {
  std::string_view key;
  std::string text;
};

// Where user preferences live between runs: text values of one application, addressed by section and key. Nothing is
// ever deleted.
class settings_store {
 public:
  virtual ~settings_store() = default;
  // Nothing when the key is absent.
  [[nodiscard]] virtual std::optional<std::string> read(std::string_view section, std::string_view key) const = 0;
  // Stores the texts in their order, all of them or none. False when they could not be stored; `why` then says so in
  // the system's words.
  virtual bool write(std::string_view section, const std::vector<setting_text>& texts, std::string& why) = 0;
  // Why nothing can be read although something is there; "" while all is well.
  [[nodiscard]] virtual std::string trouble() const { return {}; }
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

inline constexpr std::string_view default_jobinfo_proc = "RETJOBINFO";
inline constexpr std::string_view default_jobinfo_lib = "TOOLLIB";

// The store of a program that keeps nothing: every key is absent.
class no_store final : public settings_store {
 public:
  [[nodiscard]] std::optional<std::string> read(std::string_view, std::string_view) const override {
    return std::nullopt;
  }
  bool write(std::string_view, const std::vector<setting_text>&, std::string&) override { return true; }
};

// A text of the section, "" when absent.
std::string read_text(const settings_store& store, std::string_view key);

// Reads every key into the session's globals; what is absent takes its default, and so does what does not read as a
// number or boolean, which session::settings_notes then names. `program_dir` is the default of the database directory.
void load_into_session(const settings_store& store, const std::string& program_dir);

}  // namespace settings
