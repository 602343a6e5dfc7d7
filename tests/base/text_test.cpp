#include "base/text.h"

#include <gtest/gtest.h>

namespace {

TEST(text, trims_blanks_alone) {
  const struct {
    const char* text;
    const char* trimmed;
  } cases[] = {{"  AB      ", "AB"}, {"a b", "a b"}, {"    ", ""}, {"", ""}, {" \tx\n ", "\tx\n"}};
  for (const auto& each : cases) EXPECT_EQ(trim_blanks(each.text), each.trimmed);
}

TEST(text, upper_case_keeps_the_number_of_characters_and_broken_bytes) {
  const struct {
    const char* text;
    const char* upper;
  } cases[] = {
      {"select 'x' from t1", "SELECT 'X' FROM T1"},
      {"é ö ÿ ł", "É Ö Ÿ Ł"},
      {"straße", "STRAßE"},
      {"日本", "日本"},
      {"a\xC3", "A\xC3"},
      {"\xC3z\x80\xFFz", "\xC3Z\x80\xFFZ"},
      {"\xE0\x81\xA1\xF0\x80\x81\xA1\xC1\xA1", "\xE0\x81\xA1\xF0\x80\x81\xA1\xC1\xA1"},  // overlong forms of 'a'
      {"\xED\xA0\x80\xF4\x90\x80\x80", "\xED\xA0\x80\xF4\x90\x80\x80"}  // a surrogate, and beyond Unicode
  };
  for (const auto& each : cases) EXPECT_EQ(upper_case(each.text), each.upper);
}

TEST(text, counts_and_takes_characters) {
  const struct {
    const char* text;
    std::size_t characters;
    const char* first_two;
  } cases[] = {{"", 0, ""},           {"a", 1, "a"},
               {"aéb", 3, "aé"},      {"日本語", 3, "日本"},
               {"😀x", 2, "😀x"},       {"\xFF\xFFz", 3, "\xFF\xFF"},
               {"é\xC3", 2, "é\xC3"}, {"\xE6\x97z", 3, "\xE6\x97"}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.text);
    EXPECT_EQ(count_characters(each.text), each.characters);
    EXPECT_EQ(first_characters(each.text, 2), each.first_two);
  }
}

TEST(text, drops_a_cut_character_only) {
  const struct {
    const char* text;
    const char* whole;
  } cases[] = {{"abc", "abc"},
               {"ab\xC3", "ab"},
               {"ab\xE6\x97", "ab"},
               {"ab\xF0\x9F\x98", "ab"},
               {"abé", "abé"},
               {"ab日", "ab日"},
               {"ab😀", "ab😀"},
               {"\xC3", ""},
               {"", ""},
               {"ab\x80", "ab\x80"},
               {"\x80\x80\x80\x80\x80", "\x80\x80\x80\x80\x80"},
               {"ab\xFF", "ab\xFF"}};
  for (const auto& each : cases) EXPECT_EQ(without_cut_character(each.text), each.whole);
}

TEST(text, begins_with_ignores_the_case_of_the_text) {
  EXPECT_TRUE(begins_with("select 1", "SELECT"));
  EXPECT_TRUE(begins_with("SeLeCT", "SELECT"));
  EXPECT_TRUE(begins_with("x", ""));
  EXPECT_FALSE(begins_with("selec", "SELECT"));
  EXPECT_FALSE(begins_with(" select", "SELECT"));
}

}  // namespace
