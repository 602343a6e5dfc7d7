#include "platform/ini_settings.h"

#include <gtest/gtest.h>

#include <QSettings>

#include "support/temporary_folder.h"

namespace {

using found = std::optional<std::string>;

class ini_settings_test : public testing::Test {
 protected:
  bool write(ini_settings& into, std::string_view key, std::string_view text) {
    return into.write("Startup", key, text, why);
  }

  const temporary_folder folder;
  const std::string path = folder.file("Sorvane.ini");
  ini_settings store{QString::fromStdString(path)};
  std::string why;
};

TEST_F(ini_settings_test, texts_come_back_as_they_were_written) {
  EXPECT_EQ(store.read("Startup", "AS400Default"), found());
  for (const char* text :
       {"MYDSN", "", " blanks ", "a, b;c", "\"quoted\"", "Grüße €", "True", "@Invalid()", "C:\\data\\", "500", "x=y"}) {
    ASSERT_TRUE(write(store, "AS400Default", text)) << why;
    EXPECT_EQ(store.read("Startup", "AS400Default"), found(text));
    EXPECT_EQ(ini_settings(QString::fromStdString(path)).read("Startup", "AS400Default"), found(text))
        << "for the next program";
    EXPECT_EQ(store.read("Other", "AS400Default"), found());
  }
}

TEST_F(ini_settings_test, keys_of_others_stay) {
  write_file(path, "[Startup]\nExtFetch=False\nDatabaseDirectory=/a, b\n\n[Theirs]\nkey=kept\n");
  EXPECT_EQ(store.read("Startup", "DatabaseDirectory"), found("/a, b")) << "a comma that nobody quoted";
  ASSERT_TRUE(write(store, "AS400Default", "ONE"));
  ini_settings second(QString::fromStdString(path));
  ASSERT_TRUE(write(second, "AS400DefaultU", "TWO"));
  ASSERT_TRUE(write(store, "AS400Default", "THREE"));
  // Another program, while this one has the file in mind.
  write_file(path, bytes_of(path) + "\n[Later]\nkey=too\n");
  ASSERT_TRUE(write(store, "IsolationLevel", "3"));
  const ini_settings seen(QString::fromStdString(path));
  EXPECT_EQ(seen.read("Startup", "ExtFetch"), found("False"));
  EXPECT_EQ(seen.read("Theirs", "key"), found("kept"));
  EXPECT_EQ(seen.read("Later", "key"), found("too"));
  EXPECT_EQ(seen.read("Startup", "AS400Default"), found("THREE"));
  EXPECT_EQ(seen.read("Startup", "AS400DefaultU"), found("TWO"));
  EXPECT_EQ(seen.read("Startup", "IsolationLevel"), found("3"));
}

TEST_F(ini_settings_test, a_place_that_cannot_be_written_is_told) {
  const std::string below = folder.with("plain", "a file") + "/Sorvane.ini";
  ini_settings nowhere(QString::fromStdString(below));
  EXPECT_FALSE(write(nowhere, "AS400Default", "X"));
  EXPECT_EQ(why, "The settings file can not be written: " + below);
  EXPECT_EQ(bytes_of(folder.file("plain")), "a file");
}

TEST_F(ini_settings_test, the_users_own_file_unless_the_environment_names_another) {
  EXPECT_TRUE(ini_settings::default_path().endsWith("/Sorvane/Sorvane.ini"));
  const scoped_environment chosen("SORVANE_SETTINGS", "/somewhere/else.ini");
  EXPECT_EQ(ini_settings::default_path(), "/somewhere/else.ini");
}

}  // namespace
