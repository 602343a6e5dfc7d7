#include "shell/settings.h"

#include <fmt/format.h>

#include <array>

#include "base/conversions.h"
#include "base/text.h"
#include "shell/session.h"

namespace settings {

namespace {

struct text_setting {
  std::string_view key;
  std::string* into;
  std::string_view fallback;
};
struct number_setting {
  std::string_view key;
  std::int32_t* into;
  std::int32_t fallback;
};
struct flag_setting {
  std::string_view key;
  bool* into;
  bool fallback;
};

const std::array text_settings{
    text_setting{key::jobinfo_proc, &session::jobinfo_proc, default_jobinfo_proc},
    text_setting{key::jobinfo_lib, &session::jobinfo_lib, default_jobinfo_lib},
};
const std::array number_settings{
    number_setting{key::ext_fetch_rows, &session::ext_fetch_rows, 500},
    number_setting{key::dw_rows, &session::dw_rows, 500},
    number_setting{key::speed_test_rows, &session::speed_test_rows, 10000},
    number_setting{key::varchar_return_chars, &session::varchar_return_chars, 500},
};
const number_setting isolation_setting{key::isolation_level, &session::isolation_level, 2};
const std::array flag_settings{
    flag_setting{key::ext_fetch, &session::ext_fetch, true},
    flag_setting{key::autocommit_on, &session::autocommit_on, false},
};

std::optional<std::int32_t> number_from(const std::string& text) {
  const auto number = parse_number(text);
  return number ? round_to_int32(*number) : std::nullopt;
}

// An index of isolation_table: with any other no login could succeed.
std::optional<std::int32_t> isolation_from(const std::string& text) {
  const auto level = number_from(text);
  return level && *level >= 0 && *level < static_cast<std::int32_t>(isolation_table.size()) ? level : std::nullopt;
}

// The text of a boolean, or a number that is zero or not.
std::optional<bool> flag_from(const std::string& text) {
  const std::string upper = upper_case(trim_blanks(text));
  if (upper == "TRUE") return true;
  if (upper == "FALSE") return false;
  const auto number = parse_number(text);
  return number ? std::optional(*number != 0) : std::nullopt;
}

template <typename Setting, typename Convert>
void load(const settings_store& store, const Setting& each, Convert convert) {
  *each.into = each.fallback;
  const auto stored = store.read(section, each.key);
  if (!stored) return;
  if (const auto converted = convert(*stored)) {
    *each.into = *converted;
  } else {
    session::settings_notes.push_back(fmt::format("Setting {} holds \"{}\"; its default is used.", each.key, *stored));
  }
}

}  // namespace

std::string read_text(const settings_store& store, std::string_view key) {
  return store.read(section, key).value_or("");
}

void load_into_session(const settings_store& store, const std::string& program_dir) {
  session::settings_notes.clear();
  if (const std::string trouble = store.trouble(); !trouble.empty()) session::settings_notes.push_back(trouble);
  const auto as_it_is = [](const std::string& text) { return std::optional(text); };
  for (const text_setting& each : text_settings) load(store, each, as_it_is);
  load(store, text_setting{key::database_dir, &session::database_dir, program_dir}, as_it_is);
  for (const number_setting& each : number_settings) load(store, each, number_from);
  load(store, isolation_setting, isolation_from);
  for (const flag_setting& each : flag_settings) load(store, each, flag_from);
}

}  // namespace settings
