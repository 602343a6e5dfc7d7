#include "editor/text_search.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

struct search_case {
  std::string text;
  wanted_text wanted;
  std::size_t start;
  int found;  // -1: nowhere
  std::size_t length;
};

TEST(text_search, finds_every_way_of_writing_and_nothing_beyond_the_text) {
  const wanted_text a{{"a", "A"}};
  const wanted_text end{{"e", "E"}, {"n", "N"}, {"d", "D"}};
  const wanted_text two_lengths{{"\xC3\xBF", "\xC5\xB8"}, {"s", "\xC5\xBF"}};
  for (const search_case& each : {
           search_case{"EnD", end, 0, 0, 3},
           {"EnD", end, 1, -1, 0},
           {"eend", end, 0, 1, 3},
           {"xxen", end, 0, -1, 0},
           {"a;A;a", a, 1, 2, 1},
           {"x\xC5\xB8\xC5\xBF", two_lengths, 0, 1, 4},
           {"\xC3\xBFs", two_lengths, 0, 0, 3},
           {"\xC3", two_lengths, 0, -1, 0},
           {"x\0A"s, a, 0, 2, 1},
           {"", a, 0, -1, 0},
           {"a", {}, 0, -1, 0},
           {"ab", {{"a"}, {}}, 0, -1, 0},
           {"a", a, 99, -1, 0},
       }) {
    const auto found = find_text(each.text, each.wanted, each.start);
    EXPECT_EQ(found ? static_cast<int>(found->start) : -1, each.found) << each.text;
    EXPECT_EQ(found ? found->length : 0, each.length) << each.text;
  }
}

}  // namespace
