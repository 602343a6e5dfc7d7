#include "support/odbc_sandbox.h"

#include <fmt/format.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "scripted_driver.h"

namespace {

// Bare names: the driver manager looks for them where the distribution keeps drivers.
constexpr const char* drivers = R"([SQLite3]
Driver=libsqlite3odbc.so
[PostgreSQL ANSI]
Driver=psqlodbca.so
[PostgreSQL Unicode]
Driver=psqlodbcw.so
[Scripted]
Driver={}
)";

constexpr const char* sources = R"([SQLITE]
Driver=SQLite3
Database={folder}/test.sqlite
Timeout=5000
[POSTGRES]
Driver=PostgreSQL Unicode
Servername={host}
Port={port}
Database=SORVANE
[SCRIPTED]
Driver=Scripted
)";

std::string variable(const char* name) {
  const char* found = std::getenv(name);
  return found == nullptr ? std::string() : std::string(found);
}

}  // namespace

odbc_sandbox& odbc_sandbox::instance() {
  static odbc_sandbox made;
  return made;
}

odbc_sandbox::odbc_sandbox() {
  std::string pattern = (std::filesystem::temp_directory_path() / "sorvane-tests-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder for the tests: " + pattern);
  folder_ = pattern;
  const std::string host = variable("SORVANE_TEST_PG_HOST");
  const std::string port = variable("SORVANE_TEST_PG_PORT");
  has_postgres_ = !host.empty() && !port.empty();
  // In a folder of its own, where no odbc.ini adds the system's data sources to the user's.
  std::filesystem::create_directory(folder_ / "drivers");
  write_file(folder_ / "drivers" / "odbcinst.ini", fmt::format(drivers, SCRIPTED_DRIVER_PATH));
  write_file(folder_ / "odbc.ini", fmt::format(sources, fmt::arg("folder", folder_.string()), fmt::arg("host", host),
                                               fmt::arg("port", port)));
  setenv("ODBCSYSINI", (folder_ / "drivers").c_str(), 1);
  setenv("ODBCINI", (folder_ / "odbc.ini").c_str(), 1);
  unsetenv("ODBCINSTINI");
}

odbc_sandbox::~odbc_sandbox() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

scoped_environment::scoped_environment(const char* name, const std::string& setting)
    : name_(name), was_set_(std::getenv(name) != nullptr), previous_(variable(name)) {
  setenv(name, setting.c_str(), 1);
}

scoped_environment::~scoped_environment() {
  if (was_set_) {
    setenv(name_, previous_.c_str(), 1);
  } else {
    unsetenv(name_);
  }
}

void write_file(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary);
  out << bytes;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + file.string());
}
