#include "platform/ini_settings.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <QFileInfo>
#include <QLockFile>

#include "platform/user_data.h"
#include "support/temporary_folder.h"

namespace {

using found = std::optional<std::string>;

class ini_settings_test : public testing::Test {
 protected:
  bool write(ini_settings& into, std::string_view key, std::string_view text) {
    return into.write("Startup", {{key, std::string(text)}}, why);
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

TEST_F(ini_settings_test, a_change_of_the_same_length_at_the_same_moment_is_seen) {
  ASSERT_TRUE(write(store, "ExtFetch_NR", "1000"));
  ASSERT_TRUE(write(store, "IsolationLevel", "2"));
  const auto moment = std::filesystem::last_write_time(path);
  write_file(path, "[Startup]\nExtFetch_NR=1000\nIsolationLevel=3\n");
  std::filesystem::last_write_time(path, moment);
  ASSERT_TRUE(write(store, "ExtFetch_NR", "500"));
  EXPECT_EQ(bytes_of(path), "[Startup]\nExtFetch_NR=500\nIsolationLevel=3\n");
}

TEST_F(ini_settings_test, a_place_that_cannot_be_written_is_told) {
  const std::string below = folder.with("plain", "a file") + "/Sorvane.ini";
  ini_settings nowhere(QString::fromStdString(below));
  EXPECT_FALSE(write(nowhere, "AS400Default", "X"));
  EXPECT_EQ(why.find("The settings file can not be written: " + below), 0U) << why;
  EXPECT_EQ(bytes_of(folder.file("plain")), "a file");
}

TEST_F(ini_settings_test, a_place_that_cannot_be_read_is_told_and_left_alone) {
  EXPECT_EQ(store.trouble(), "") << "no file yet";
  std::filesystem::create_directories(path);
  EXPECT_EQ(store.trouble(), "The settings file can not be read: " + path + " (Is a directory)");
  EXPECT_EQ(store.read("Startup", "AS400Default"), found());
  EXPECT_FALSE(write(store, "AS400Default", "X"));
  EXPECT_EQ(why, store.trouble());
}

TEST_F(ini_settings_test, a_save_waits_for_another_ones_lock_but_not_for_ever) {
  QLockFile held(QString::fromStdString(path) + ".lock");
  ASSERT_TRUE(held.tryLock(0));
  EXPECT_FALSE(write(store, "AS400Default", "X"));
  EXPECT_NE(why.find("another program holds it"), std::string::npos) << why;
  EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(path)));
  held.unlock();
  EXPECT_TRUE(write(store, "AS400Default", "X")) << why;
  EXPECT_EQ(folder.entries(), 1U) << "no lock is left";
}

// Programs that save values of one length at the same moment: nothing but the bytes tells that the file has changed.
TEST_F(ini_settings_test, programs_that_save_at_once_lose_nothing_of_each_other) {
  constexpr int programs = 3;
  constexpr int saves = 40;
  const auto text = [](int number) { return std::to_string(1000 + number); };
  ASSERT_TRUE(write(store, "AS400Default", "KEPT"));
  std::vector<pid_t> children;
  for (int program = 0; program < programs; ++program) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      // Each finds, before its next save, what its last one wrote.
      bool good = true;
      const std::string key = "key" + std::to_string(program);
      for (int i = 0; i < saves && good; ++i) {
        good = (i == 0 || store.read("Startup", key) == text(i - 1)) && write(store, key, text(i));
      }
      _exit(good ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "a save was refused, or lost to another program";
  }
  for (int program = 0; program < programs; ++program) {
    EXPECT_EQ(store.read("Startup", "key" + std::to_string(program)), found(text(saves - 1)));
  }
  EXPECT_EQ(store.read("Startup", "AS400Default"), found("KEPT"));
}

TEST_F(ini_settings_test, the_users_own_file_unless_the_environment_names_another) {
  {
    const scoped_environment none("SORVANE_SETTINGS", "");
    EXPECT_TRUE(ini_settings::default_path().endsWith("/Sorvane/Sorvane.ini"));
    EXPECT_TRUE(user_data_folder().string().ends_with("/Sorvane"));
  }
  const scoped_environment chosen("SORVANE_SETTINGS", "/somewhere/else.ini");
  EXPECT_EQ(ini_settings::default_path(), "/somewhere/else.ini");
  EXPECT_EQ(user_data_folder(), "/somewhere");
}

}  // namespace
