#include "shell/command_line.h"

#include <gtest/gtest.h>

namespace {

using slots = std::vector<std::string>;

struct line_case {
  std::string text;
  std::size_t most;
  slots expected;  // slot 0 left out
};

TEST(command_line, blanks_and_tabs_separate_and_every_quote_opens_a_slot) {
  const std::vector<line_case> cases{
      {"", 10, {}},
      {" \t ", 10, {}},
      {"a.sql \"my file.sql\" b.sql", 10, {"a.sql", "my file.sql", "", "b.sql"}},
      {"a\tb \t c", 10, {"a", "b", "c"}},
      {"\"a\tb\"", 10, {"a\tb", ""}},
      {"a\"b c\"d", 10, {"a", "b c", "", "d"}},
      {"\"never closed ", 10, {"never closed "}},
      {"\"\"", 10, {"", ""}},
      {"1 2 3 4 5 6 7 8 9 10 11", 10, {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}},
      {"1 2 3", 2, {"1", "2"}},
      {"\"a\" \"b\" c", 2, {"a", ""}},  // what would go beyond is dropped
      {"x \"y z\" w", 1, {"x"}},
      {"x", 0, {}},
  };
  for (const line_case& each : cases) {
    slots expected(1);
    expected.insert(expected.end(), each.expected.begin(), each.expected.end());
    EXPECT_EQ(GetCommandLine(each.text, each.most), expected) << each.text << ", at most " << each.most;
  }
  EXPECT_EQ(GetCommandLine("1 2 3 4 5 6 7 8 9 10 11").size(), 11U) << "ten, when nothing is said";
}

TEST(command_line, the_text_of_arguments_quotes_those_with_blanks) {
  EXPECT_EQ(command_line_text({"a.sql", "my file.sql", "tab\tname", "b.sql"}),
            "a.sql \"my file.sql\" \"tab\tname\" b.sql");
  EXPECT_EQ(command_line_text({}), "");
}

}  // namespace
