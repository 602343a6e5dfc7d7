// The files that the frame and the console program open.
#include "base/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/odbc_sandbox.h"

using namespace std::string_literals;

namespace {

class files_test : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder / "sub");
    write_file(folder / "some.sql", content);
    write_file(folder / "empty.sql", "");
    std::filesystem::create_symlink(folder / "some.sql", folder / "link.sql");
    std::filesystem::create_symlink(folder / "nowhere", folder / "broken.sql");
    ASSERT_EQ(mkfifo((folder / "pipe.sql").c_str(), 0600), 0);
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  const std::filesystem::path folder = odbc_sandbox::instance().folder() / "files";
  const std::string content = "a,b;\r\nc\0d\n"s + std::string(200'000, 'x');
};

TEST_F(files_test, only_regular_files_exist_and_read) {
  for (const char* name : {"some.sql", "empty.sql", "link.sql"}) EXPECT_TRUE(file_exists(folder / name)) << name;
  for (const char* name : {"sub", "broken.sql", "missing.sql", "pipe.sql", "some.sql/below", "some.sql/"}) {
    EXPECT_FALSE(file_exists(folder / name)) << name;
    const file_content none = read_whole_file(folder / name);
    EXPECT_FALSE(none.ok()) << name;
    EXPECT_EQ(none.bytes, "") << name;
  }
  EXPECT_FALSE(file_exists(""));
  EXPECT_FALSE(file_exists("/dev/null"));
  EXPECT_EQ(read_whole_file(folder / "missing.sql").error, "No such file or directory");
  EXPECT_EQ(read_whole_file(folder / "sub").error, "Is a directory");
}

TEST_F(files_test, a_file_is_read_whole) {
  EXPECT_TRUE(read_whole_file(folder / "link.sql").bytes == content);
  const file_content empty = read_whole_file(folder / "empty.sql");
  EXPECT_TRUE(empty.ok());
  EXPECT_EQ(empty.bytes, "");
  EXPECT_FALSE(read_whole_file("/proc/self/status").bytes.empty()) << "a file that says it holds 0 bytes";
}

}  // namespace
