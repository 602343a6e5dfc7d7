#pragma once

#include <filesystem>
#include <string>

// The process's own ODBC configuration: a temporary folder, removed at the end, with an odbcinst.ini, an odbc.ini that
// names the data sources SQLITE (a file in the folder), POSTGRES (the server that the environment variables
// SORVANE_TEST_PG_HOST and SORVANE_TEST_PG_PORT name, database SORVANE) and SCRIPTED, and the variables that lead the
// driver manager there and nowhere else.
class odbc_sandbox {
 public:
  // Made at the first call, which must come before the first ODBC call of the process.
  static odbc_sandbox& instance();
  ~odbc_sandbox();
  odbc_sandbox(const odbc_sandbox&) = delete;
  odbc_sandbox& operator=(const odbc_sandbox&) = delete;

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  // Whether the environment names a server; tests that need it fail without.
  [[nodiscard]] bool has_postgres() const { return has_postgres_; }

 private:
  odbc_sandbox();
  std::filesystem::path folder_;
  bool has_postgres_ = false;
};

// An environment variable set for a scope.
class scoped_environment {
 public:
  scoped_environment(const char* name, const std::string& setting);
  ~scoped_environment();
  scoped_environment(const scoped_environment&) = delete;
  scoped_environment& operator=(const scoped_environment&) = delete;

 private:
  const char* name_;
  bool was_set_;
  std::string previous_;
};

void write_file(const std::filesystem::path& file, const std::string& bytes);
