#include "editor/statement_text.h"

#include <gtest/gtest.h>

#include <string>

#include "editor/statement_pipeline.h"

using namespace std::string_literals;
using found = std::optional<std::string_view>;

namespace {

struct caret_case {
  std::string text;
  std::size_t caret;
  found expected;
};

TEST(statement_text, the_caret_chooses_the_statement_whose_end_follows_it) {
  const std::string two = "select a from t;\r\nselect b from t;";
  const std::vector<caret_case> cases{
      {"", 0, std::nullopt},
      {"select 1 from t", 0, std::nullopt},
      {"select 1 from t", 9, std::nullopt},
      {two, 0, "select a from t"},
      {two, 1, "select a from t"},
      {two, 15, "select a from t"},  // directly before the ';'
      {two, 16, "select b from t"},  // directly after it
      {two, 17, "select b from t"},  // between CR and LF
      {two, 33, "select b from t"},
      {two, 34, std::nullopt},  // after the last ';'
      {two, 900, std::nullopt},
      {";a;", 0, ""},
      {";a;", 1, ""},  // as if it stood before the first character
      {";a;", 2, "a"},
      {"a;;b;", 2, ""},
      {"a; \r\n\t;b;", 3, ""},
      {"select ';' from t;", 3, "select '"},
      {"-- no; comment\r\nselect 1;", 8, "comment\r\nselect 1"},
      {"\x01\t select 1 \t\r\n;", 5, "select 1 \t\r\n"},
      {"select 'ü';select 'ß';", 12, "select 'ß'"},
  };
  for (const caret_case& each : cases) {
    EXPECT_EQ(get_sql_str(each.text, each.caret), each.expected) << each.text << " at " << each.caret;
  }
}

TEST(statement_text, trima_drops_leading_characters_up_to_code_32_only) {
  EXPECT_EQ(trima("\0\t\r\n\x1f x \t"s), "x \t");
  EXPECT_EQ(trima("\xC3\xBC"), "\xC3\xBC");
  EXPECT_EQ(trima("\xA0x"), "\xA0x");
  EXPECT_EQ(trima("\x7Fx"), "\x7Fx");
  EXPECT_EQ(trima(" \r\n"), "");
  EXPECT_EQ(trima(""), "");
}

TEST(statement_text, every_terminated_statement_has_a_span_and_the_rest_has_none) {
  const auto shown = [](std::string_view text) {
    std::string pieces;
    for (const statement_span& each : statement_spans(text)) {
      pieces += '[' + std::to_string(each.start) + ' ' + std::string(text.substr(each.start, each.length)) + ']';
    }
    return pieces;
  };
  EXPECT_EQ(shown("a;b;c;"), "[0 a][2 b][4 c]");
  EXPECT_EQ(shown("a;b;c;d"), "[0 a][2 b][4 c]");
  EXPECT_EQ(shown(";;"), "[0 ][1 ]");
  EXPECT_EQ(shown("a;\r\n b ;"), "[0 a][2 \r\n b ]");
  EXPECT_EQ(shown("abc"), "");
  EXPECT_EQ(shown(""), "");
}

TEST(statement_text, the_first_characters_decide_the_class) {
  using enum statement_class;
  const std::vector<std::pair<std::string_view, statement_class>> cases{
      {"select 1", query},
      {"\r\n\t SeLeCt 1", query},
      {"SELECTED", query},
      {"with x as (select 1) select * from x", query},
      {"WITHOUT", query},
      {"exe400 DSPJOB", host_command},
      {" EXE400", host_command},
      {"call p", call},
      {"CALLX", call},
      {"update t set a = 1", other},
      {"(select 1)", other},
      {"selec", other},
      {"", other},
      {" \r\n", other},
      {"-- note\nselect 1", other},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(classify(text), expected) << text;
}

}  // namespace
