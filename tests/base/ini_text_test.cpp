#include "base/ini_text.h"

#include <gtest/gtest.h>

using found = std::optional<std::string>;
using namespace std::string_literals;

namespace {

TEST(ini_text, reads_what_people_write) {
  const ini_text file(
      "\xEF\xBB\xBF; mine\r\n[ Startup ]\r\n key = a value \t\r\nlist=a, b; c=d\nno equals sign\nempty=\nquoted=\" x "
      "\\\"\\\\\\n\\t\"\n"
      "path=C:\\new\\\nquoted path=\"C:\\dir\\\\\"\nbad=\"\\\n=nameless\n[Other]\nkey=theirs\n[Startup]\nlist=later"s);
  const std::vector<std::pair<const char*, found>> cases{{"key", "a value"},    {"list", "later"},
                                                         {"empty", ""},         {"quoted", " x \"\\\n\t"},
                                                         {"path", "C:\\new\\"}, {"quoted path", "C:\\dir\\"},
                                                         {"bad", "\"\\"},       {"", "nameless"},
                                                         {"KEY", found()},      {"no equals sign", found()}};
  for (const auto& [key, expected] : cases) EXPECT_EQ(file.value_of("Startup", key), expected) << key;
  EXPECT_EQ(file.value_of("Other", "key"), found("theirs"));
  EXPECT_EQ(file.value_of("", "key"), found());
}

TEST(ini_text, changes_no_line_but_its_own) {
  struct put_case {
    std::string before;
    std::string after;
  };
  const std::vector<put_case> cases{
      {"", "[S]\nk=v\n"},
      {"[S]", "[S]\nk=v"},
      {"[S]\n\n[T]\nk=1\n", "[S]\nk=v\n\n[T]\nk=1\n"},
      {"[S]\r\na=1\r\n\r\n; note\r\n\r\n[T]\r\n", "[S]\r\na=1\r\n\r\n; note\r\nk=v\r\n\r\n[T]\r\n"},
      {"\x01\xFFjunk\n[S]\nk = old \r\na=1", "\x01\xFFjunk\n[S]\nk=v\r\na=1"},
      {"[T]\nk=1", "[T]\nk=1\n\n[S]\nk=v\n"},
      {"\xEF\xBB\xBF[S]\r\nk=1\r\n", "\xEF\xBB\xBF[S]\r\nk=v\r\n"},
  };
  for (const put_case& each : cases) {
    ini_text file(each.before);
    file.put("S", "k", "v");
    EXPECT_EQ(file.bytes(), each.after) << each.before;
    EXPECT_EQ(file.value_of("S", "k"), found("v")) << each.before;
  }
}

}  // namespace
