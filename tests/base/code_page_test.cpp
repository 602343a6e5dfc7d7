#include "base/code_page.h"

#include <gtest/gtest.h>

#include "support/scoped_state.h"

namespace {

TEST(code_page, reserves_bytes_per_character) {
  const struct {
    const char* name;
    std::size_t bytes;
    bool utf8;
  } cases[] = {
      {"UTF-8", 4, true},       {"utf8", 4, true},         {"ANSI_X3.4-1968", 4, true}, {"no such code page", 4, true},
      {"ISO-8859-1", 1, false}, {"ISO-8859-15", 1, false}, {"CP1252", 1, false},        {"EUC-JP", 4, false}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    const code_page page(each.name);
    EXPECT_EQ(page.max_bytes_per_char(), each.bytes);
    EXPECT_EQ(page.is_utf8(), each.utf8);
  }
}

TEST(code_page, converts_both_ways) {
  const code_page latin9("ISO-8859-15");
  EXPECT_EQ(latin9.to_utf8("\xA4 M\xFCller"), "€ Müller");
  EXPECT_EQ(latin9.from_utf8("€ Müller"), "\xA4 M\xFCller");
  EXPECT_EQ(latin9.from_utf8(""), "");
  EXPECT_EQ(latin9.from_utf8("Łódź"), std::nullopt);       // letters the code page lacks
  EXPECT_EQ(latin9.from_utf8("M\xFCller"), std::nullopt);  // no UTF-8 at all
  EXPECT_EQ(latin9.from_utf8("M\xC3"), std::nullopt);      // cut inside a character
  EXPECT_EQ(latin9.from_utf8(std::string("a\0b", 3)), std::string("a\0b", 3));

  const std::string many(5000, '\xFC');  // more than one piece of the conversion
  const std::string shown = latin9.to_utf8(many);
  EXPECT_EQ(shown.size(), 10000U);
  EXPECT_EQ(latin9.from_utf8(shown), many);

  const code_page utf8("UTF-8");
  EXPECT_EQ(utf8.to_utf8("M\xC3\xBCller \xFF"), "M\xC3\xBCller \xFF");  // broken bytes pass as they are
  EXPECT_EQ(utf8.from_utf8("Łódź"), "Łódź");
}

TEST(code_page, shows_bytes_without_a_character) {
  const code_page windows("CP1252");
  EXPECT_EQ(windows.to_utf8("a\x81\x80"), "a\xEF\xBF\xBD€");
  const code_page japanese("EUC-JP");
  EXPECT_EQ(japanese.to_utf8("\xA4\xA2\xA4"), "あ\xEF\xBF\xBD");  // the second character is cut
}

TEST(code_page, can_be_replaced) {
  const std::string before = current_code_page().name();
  {
    const scoped_code_page page("ISO-8859-15");
    EXPECT_EQ(current_code_page().from_utf8("é"), "\xE9");
  }
  EXPECT_EQ(current_code_page().name(), before);
}

}  // namespace
