// The texts of unsaved documents: kept, bounded, taken back, and left alone while their program lives.
#include "editor/recovery_folder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "support/temporary_folder.h"

using namespace std::string_literals;
namespace fs = std::filesystem;

namespace {

class recovery_test : public testing::Test {
 protected:
  std::shared_ptr<recovery_folder> open() {
    return std::make_shared<recovery_folder>(folder.file("recovery"), [this] { return now; });
  }
  bool close_text(const std::shared_ptr<recovery_folder>& at, const std::string& bytes) {
    recovery_folder::copy copy(at);
    ++now;
    return copy.close({{"caption", "name"}, bytes}, why);
  }
  // Runs a program that leaves a copy of an open text and is killed.
  void crash_with(const std::string& bytes, bool finished = true) {
    const pid_t child = fork();
    if (child == 0) {
      recovery_folder::copy copy(open());
      std::string ignored;
      copy.begin({"Mirelta Editor: \n/a b", "/a b"}, ignored);
      copy.append(bytes, ignored);
      if (finished) copy.finish(ignored);
      raise(SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
  }
  static std::string taken(const std::shared_ptr<recovery_folder>& from) {
    recovery_folder::copy copy(from);
    const auto text = from->take_latest(copy);
    return text ? text->bytes : "nothing";
  }

  const temporary_folder folder;
  std::int64_t now = 1'700'000'000'000;
  std::string why;
};

TEST_F(recovery_test, closed_texts_come_back_latest_first_with_every_byte) {
  const auto at = open();
  EXPECT_EQ(taken(at), "nothing");
  const std::string odd =
      "\xEF\xBB\xBF"
      "a\0\r\nb\n\xFF"s;
  for (const std::string& bytes : {"first"s, odd, "Sorvane kept text 1\n99 x"s}) EXPECT_TRUE(close_text(at, bytes));
  EXPECT_EQ(taken(open()), "Sorvane kept text 1\n99 x") << "whichever program closed it";
  EXPECT_EQ(taken(at), odd);
  EXPECT_EQ(taken(at), "first");
  EXPECT_EQ(taken(at), "nothing");
}

TEST_F(recovery_test, a_taken_text_is_a_copy_again) {
  close_text(open(), "typed");
  const pid_t child = fork();
  if (child == 0) {
    const auto at = open();
    recovery_folder::copy copy(at);
    at->take_latest(copy);
    raise(SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  const auto next = open();
  EXPECT_EQ(next->closed_count(), 0U);
  EXPECT_EQ(next->adopt_crashed(), 1U);
  EXPECT_EQ(taken(next), "typed");
}

TEST_F(recovery_test, what_a_killed_program_left_is_adopted_once) {
  crash_with("typed");
  crash_with("half", false);
  const auto at = open();
  EXPECT_EQ(at->adopt_crashed(), 1U);
  EXPECT_EQ(at->adopt_crashed(), 0U);
  recovery_folder::copy copy(at);
  const auto text = at->take_latest(copy);
  ASSERT_TRUE(text);
  EXPECT_EQ(text->bytes, "typed");
  EXPECT_EQ(text->heading.caption, "Mirelta Editor: \n/a b");
  EXPECT_EQ(text->heading.file_name, "/a b");
}

TEST_F(recovery_test, a_living_programs_texts_are_its_own) {
  const auto living = open();
  recovery_folder::copy copy(living);
  ASSERT_TRUE(copy.begin({"c", ""}, why) && copy.append("open", why) && copy.finish(why)) << why;
  EXPECT_EQ(open()->adopt_crashed(), 0U);
  EXPECT_EQ(living->adopt_crashed(), 0U);
  // An unfinished new copy leaves the whole one.
  ASSERT_TRUE(copy.begin({"c", ""}, why) && copy.append("more", why));
  copy.abandon();
  std::size_t texts = 0;
  for (const auto& each : fs::recursive_directory_iterator(folder.file("recovery")))
    texts += each.path().extension() == ".text" ? 1 : 0;
  EXPECT_EQ(texts, 1U);
}

TEST_F(recovery_test, fifty_texts_for_thirty_days) {
  const auto at = open();
  for (int i = 1; i <= 53; ++i) close_text(at, std::to_string(i));
  EXPECT_EQ(at->closed_count(), 50U);
  now += recovery_folder::longest_stay_ms - 1;
  EXPECT_EQ(open()->adopt_crashed(), 0U);
  EXPECT_EQ(at->closed_count(), 2U) << "those of the last two milliseconds";
  EXPECT_EQ(taken(at), "53");
}

TEST_F(recovery_test, a_file_of_another_kind_is_a_text_and_no_harm) {
  const auto at = open();
  close_text(at, "good");
  const std::string closed = folder.file("recovery") + "/closed/";
  write_file(closed + "9999999999999-x.text", "Sorvane kept text 1\n18446744073709551615 x\n");
  fs::create_directories(closed + "99999999999999-folder.text");
  fs::create_directories(folder.file("recovery") + "/session-not ours/lock");
  EXPECT_EQ(open()->adopt_crashed(), 0U);
  EXPECT_EQ(taken(at), "Sorvane kept text 1\n18446744073709551615 x\n");
  EXPECT_EQ(taken(at), "good");
}

TEST_F(recovery_test, a_text_that_finds_no_room_stays_in_memory) {
  write_file(folder.file("recovery"), "a file in the way");
  const auto at = open();
  EXPECT_FALSE(close_text(at, "typed"));
  EXPECT_NE(why, "");
  EXPECT_EQ(taken(at), "typed");
  fs::remove(folder.file("recovery"));

  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const bool closed = close_text(at, std::string(5000, 'x'));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_FALSE(closed);
  EXPECT_EQ(why, "File too large");
  EXPECT_EQ(taken(at), std::string(5000, 'x'));
}

}  // namespace
