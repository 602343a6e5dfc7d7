#include "shell/options.h"

#include <fmt/format.h>

#include <array>

#include "as400/qcmdexc.h"
#include "base/conversions.h"
#include "base/text.h"
#include "base/user_interface.h"
#include "shell/session.h"

namespace {

struct number_rule {
  std::string option_entries::*entry;
  std::int32_t* into;
  std::int32_t most;
  const char* not_a_number;
  const char* too_great;
};

// In the order in which they are checked.
const std::array number_rules{
    number_rule{&option_entries::ext_fetch_rows, &session::ext_fetch_rows, 1000,
                "Extended Fetch Rows Must be a Number!", "Extended fetch rows can not be greater than 1000!"},
    number_rule{&option_entries::varchar_return_chars, &session::varchar_return_chars, 32000,
                "Number of LongVarchar characters must be a number!",
                "Number of longvarchar characters can not be greater than 32000"},
    number_rule{&option_entries::dw_rows, &session::dw_rows, 25000, "Data Window Rows Must be a Number!",
                "Data Window rows can not be greater than 25000!"},
    number_rule{&option_entries::speed_test_rows, &session::speed_test_rows, 50000, "Speed Test Rows Must be a Number!",
                "Speed Test rows can not be greater than 50000!"},
};
using checked_numbers = std::array<std::int32_t, number_rules.size()>;

void show_plain(const char* text) { show_message({text, {}, message_icon::none, message_buttons::ok, {}}); }

void show_information(const char* text) {
  show_message({text, "Informational Message", message_icon::question, message_buttons::ok, {}});
}

// A number beyond 32 bits is too great; one as far below cannot be kept and counts as none.
bool check_numbers(const option_entries& typed, checked_numbers& numbers) {
  for (std::size_t i = 0; i < number_rules.size(); ++i) {
    const number_rule& rule = number_rules[i];
    const auto number = parse_number(typed.*rule.entry);
    const auto rounded = number ? round_to_int32(*number) : std::nullopt;
    if (!number || (!rounded && *number < 0)) {
      show_plain(rule.not_a_number);
      return false;
    }
    if (!rounded || *rounded > rule.most) {
      show_plain(rule.too_great);
      return false;
    }
    numbers[i] = *rounded;
  }
  return true;
}

void apply_autocommit(bool wanted) {
  session::autocommit_on = wanted;
  if (wanted) {
    session::g_con.SetACOn();
  } else {
    session::g_con.SetACOff();
  }
}

void apply_isolation(std::int32_t wanted) {
  if (wanted == session::isolation_level) return;
  const message_answer answer =
      show_message({"Changing Isolation Level is an IMPLIED COMMIT.\rDo you wish to continue?",
                    "Decision",
                    message_icon::question,
                    message_buttons::ok_cancel,
                    {}});
  if (answer != message_answer::ok) return;
  session::g_con.Commit();
  session::g_con.SIL(wanted);
  session::isolation_level = wanted;
}

void explain_autocommit() {
  if (!session::autocommit_on) return;
  constexpr std::int32_t read_uncommitted = 2;
  if (session::isolation_level == read_uncommitted) {
    show_information(
        "Because you have set AutoCommit on and Isolation to *CHG, you are now in implied commit mode *NONE.  You may "
        "now work on non Journaled Tables.");
  } else {
    show_information(
        "Autocommit is now ON!  Commit and Rollback are non functional.  Each operation will be commited as soon as "
        "execution is finished.  No transactional recover can be made.  However, locks can be thrown but will be "
        "released upon completion of statement execution.");
  }
}

void apply_debug(bool wanted) {
  odbcstmt statement;
  statement.Make(session::g_con);
  if (wanted != session::debug_on) {
    statement.Prep(qcmdexc_call(wanted ? "strdbg updprod(*yes)" : "enddbg", session::qualifier_sep));
    statement.Execute();
    session::debug_on = wanted;
  }
  statement.Kill();
}

std::string name_or(std::string_view typed, std::string_view otherwise) {
  const std::string_view name = trim_blanks(typed);
  return std::string(name.empty() ? otherwise : name);
}

std::string flag_text(bool flag) { return flag ? "True" : "False"; }

void write_settings(settings_store& store) {
  namespace key = settings::key;
  std::string why;
  const bool written = store.write(settings::section,
                                   {{key::database_dir, session::database_dir},
                                    {key::ext_fetch, flag_text(session::ext_fetch)},
                                    {key::ext_fetch_rows, fmt::to_string(session::ext_fetch_rows)},
                                    {key::dw_rows, fmt::to_string(session::dw_rows)},
                                    {key::speed_test_rows, fmt::to_string(session::speed_test_rows)},
                                    {key::varchar_return_chars, fmt::to_string(session::varchar_return_chars)},
                                    {key::isolation_level, fmt::to_string(session::isolation_level)},
                                    {key::autocommit_on, flag_text(session::autocommit_on)},
                                    {key::jobinfo_proc, session::jobinfo_proc},
                                    {key::jobinfo_lib, session::jobinfo_lib}},
                                   why);
  if (written) return;
  show_message({"The options hold for this session, but could not be saved for the next one.",
                {},
                message_icon::none,
                message_buttons::ok,
                why});
}

}  // namespace

bool save_options(const option_entries& typed, settings_store& store) {
  checked_numbers numbers{};
  if (!check_numbers(typed, numbers)) return false;
  apply_autocommit(typed.autocommit_on);
  apply_isolation(typed.isolation_level);
  explain_autocommit();
  session::ext_fetch = typed.ext_fetch;
  const std::string_view directory = trim_blanks(typed.database_dir);
  if (directory.empty()) {
    show_user_error("Database Directory can not be an empty string!");
    return false;
  }
  session::database_dir = directory;
  apply_debug(typed.debug_on);
  for (std::size_t i = 0; i < number_rules.size(); ++i) *number_rules[i].into = numbers[i];
  session::jobinfo_proc = name_or(typed.jobinfo_proc, settings::default_jobinfo_proc);
  session::jobinfo_lib = name_or(typed.jobinfo_lib, settings::default_jobinfo_lib);
  write_settings(store);
  return true;
}
