#include "editor/text_search.h"

#include <gtest/gtest.h>

using namespace std::string_view_literals;

namespace {

struct search_case {
  std::string_view text;
  std::string_view wanted;
  std::size_t start;
  int found;  // -1: nowhere
};

TEST(text_search, finds_in_any_case_and_nothing_beyond_the_text) {
  for (const search_case& each : {
           search_case{"SELECT a", "select", 0, 0},
           {"SELECT a", "select", 1, -1},
           {"selselect", "SELECT", 0, 3},
           {"aaab", "aab", 0, 1},
           {"a;A;a", "a", 1, 2},
           {"xxend", "END", 2, 2},
           {"xxend", "END", 3, -1},
           {"[@`{", "{", 0, 3},  // neighbours of the letters are not letters
           {"\xC3\xA9t\xC3\xA9", "T", 0, 2},
           {"a\0b"sv, "\0B"sv, 0, 1},
           {"", "a", 0, -1},
           {"a", "", 0, -1},
           {"a", "ab", 0, -1},
           {"ab", "b", 99, -1},
       }) {
    const auto found = find_ignoring_case(each.text, each.wanted, each.start);
    EXPECT_EQ(found ? static_cast<int>(*found) : -1, each.found) << each.text << " / " << each.wanted;
  }
}

}  // namespace
