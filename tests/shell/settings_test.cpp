#include "shell/settings.h"

#include <gtest/gtest.h>

#include "shell/session.h"
#include "support/memory_store.h"

namespace {

class settings_test : public testing::Test {
 protected:
  void TearDown() override { session::reset(); }
  void load() { settings::load_into_session(store, "/opt/sorvane/"); }
  memory_store store;
};

TEST_F(settings_test, an_empty_store_gives_the_defaults) {
  load();
  EXPECT_EQ(session::jobinfo_proc, "RETJOBINFO");
  EXPECT_EQ(session::jobinfo_lib, "TOOLLIB");
  EXPECT_EQ(session::database_dir, "/opt/sorvane/");
  EXPECT_TRUE(session::ext_fetch);
  EXPECT_EQ(session::ext_fetch_rows, 500);
  EXPECT_EQ(session::dw_rows, 500);
  EXPECT_EQ(session::speed_test_rows, 10000);
  EXPECT_EQ(session::varchar_return_chars, 500);
  EXPECT_FALSE(session::autocommit_on);
  EXPECT_EQ(session::isolation_level, 2);
  EXPECT_TRUE(session::settings_notes.empty());
  EXPECT_EQ(settings::read_text(store, settings::key::data_source), "");
}

TEST_F(settings_test, what_is_stored_is_read) {
  store.texts = {{"JOBNOPROC", "MYPROC"},    {"JOBNOLIB", "MYLIB"},         {"DatabaseDirectory", "/data/ü, v/"},
                 {"ExtFetch", "False"},      {"ExtFetch_NR", "1000"},       {"DataWindowRows", "-5"},
                 {"SpeedTestRows", "50000"}, {"VarcharReturnChars", "1E3"}, {"AutoCommitState", "True"},
                 {"IsolationLevel", "0"}};
  load();
  EXPECT_EQ(session::jobinfo_proc + session::jobinfo_lib + session::database_dir, "MYPROCMYLIB/data/ü, v/");
  EXPECT_FALSE(session::ext_fetch);
  EXPECT_EQ(session::ext_fetch_rows, 1000);
  EXPECT_EQ(session::dw_rows, -5);
  EXPECT_EQ(session::speed_test_rows, 50000);
  EXPECT_EQ(session::varchar_return_chars, 1000);
  EXPECT_TRUE(session::autocommit_on);
  EXPECT_EQ(session::isolation_level, 0);
  EXPECT_TRUE(session::settings_notes.empty());
}

TEST_F(settings_test, what_does_not_read_takes_its_default_and_is_noted) {
  store.texts = {{"ExtFetch", "yes"},          {"ExtFetch_NR", "many"},
                 {"DataWindowRows", ""},       {"SpeedTestRows", "99999999999"},
                 {"VarcharReturnChars", "5x"}, {"AutoCommitState", "T\u00dcre"},
                 {"IsolationLevel", "7"}};
  load();
  EXPECT_TRUE(session::ext_fetch);
  EXPECT_EQ(session::ext_fetch_rows, 500);
  EXPECT_EQ(session::dw_rows, 500);
  EXPECT_EQ(session::speed_test_rows, 10000);
  EXPECT_EQ(session::varchar_return_chars, 500);
  EXPECT_FALSE(session::autocommit_on);
  EXPECT_EQ(session::isolation_level, 2) << "no such level: a login with it could never succeed";
  EXPECT_EQ(session::settings_notes.size(), store.texts.size());
  EXPECT_EQ(session::settings_notes.at(0), "Setting ExtFetch_NR holds \"many\"; its default is used.");

  store.texts = {{"IsolationLevel", "-1"}};
  load();
  EXPECT_EQ(session::isolation_level, 2);
  EXPECT_EQ(session::settings_notes.size(), 1U) << "notes are of the last reading";

  store.texts.clear();
  store.unreadable = "the file is a folder";
  load();
  EXPECT_EQ(session::settings_notes, std::vector<std::string>{"the file is a folder"});
}

TEST_F(settings_test, a_boolean_is_its_text_or_a_number) {
  const std::vector<std::pair<const char*, bool>> cases{
      {"True", true}, {"TRUE", true}, {" false ", false}, {"0", false}, {"-1", true}, {"1", true}, {"0.0", false}};
  for (const auto& [text, expected] : cases) {
    for (const char* key : {"ExtFetch", "AutoCommitState"}) store.texts[key] = text;
    load();
    EXPECT_EQ(session::ext_fetch, expected) << text;
    EXPECT_EQ(session::autocommit_on, expected) << text;
    EXPECT_TRUE(session::settings_notes.empty()) << text;
  }
}

}  // namespace
