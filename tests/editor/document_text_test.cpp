#include "editor/document_text.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

struct file_case {
  std::string content;
  document_encoding encoding;
  bool mark;
  std::string as_utf8;
};

TEST(document_text, every_file_comes_back_byte_for_byte) {
  using enum document_encoding;
  const std::vector<file_case> cases{
      {"", utf8, false, ""},
      {"select 1;\r\n", utf8, false, "select 1;\r\n"},
      {"a\rb\nc\r\nd\n\re", utf8, false, "a\rb\nc\r\nd\n\re"},
      {"a\0b\0"s, utf8, false, "a\0b\0"s},
      {"'Grüße'", utf8, false, "'Grüße'"},
      {"'Gr\xFC\xDF\x65 \x80'", latin1, false, "'Grüße \xC2\x80'"},
      {"\xEF\xBB\xBFselect 'ü'", utf8, true, "select 'ü'"},
      {"\xEF\xBB\xBF", utf8, true, ""},
      {"\xEF\xBB\xBF\xEF\xBB\xBF", utf8, true, "\xEF\xBB\xBF"},
      {"\xEF\xBB\xBFsplit \xE2\x82", utf8, true, "split \xE2\x82"},
      {"\xEF\xBB", latin1, false, "ï»"},
      {"\xED\xA0\x80", latin1, false, "í\xC2\xA0\xC2\x80"},  // a lone surrogate is no UTF-8
  };
  for (const file_case& each : cases) {
    SCOPED_TRACE(testing::PrintToString(each.content));
    const document_text document = document_from_file(each.content);
    EXPECT_EQ(document.encoding, each.encoding);
    EXPECT_EQ(document.byte_order_mark, each.mark);
    EXPECT_EQ(document_to_utf8(document.bytes, document.encoding), each.as_utf8);
    EXPECT_EQ(file_from_document(document), each.content);
  }
}

}  // namespace
