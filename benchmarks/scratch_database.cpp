#include "benchmarks/scratch_database.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "odbc/odbc_headers.h"

namespace {

std::string driver(const char* library) {
  for (const auto& entry : std::filesystem::directory_iterator("/usr/lib")) {
    const auto candidate = entry.path() / "odbc" / library;
    if (std::filesystem::exists(candidate)) return candidate;
  }
  fmt::print(stderr, "The ODBC driver {} is not installed.\n", library);
  std::exit(1);
}

}  // namespace

scratch_database::scratch_database(const std::string& scripted_driver) {
  std::string name = (std::filesystem::temp_directory_path() / "sorvane-bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    fmt::print(stderr, "No temporary folder can be made.\n");
    std::exit(1);
  }
  folder_ = name;
  std::ofstream drivers(folder_ + "/odbcinst.ini");
  std::ofstream sources(folder_ + "/odbc.ini");
  drivers << "[SQLite3]\nDriver=" << driver("libsqlite3odbc.so") << "\n";
  sources << "[" << data_source << "]\nDriver=SQLite3\nDatabase=" << folder_ << "/bench.sqlite\n";
  const char* host = std::getenv("SORVANE_TEST_PG_HOST");
  const char* port = std::getenv("SORVANE_TEST_PG_PORT");
  has_postgres_ = host != nullptr && port != nullptr;
  if (has_postgres_) {
    drivers << "[PostgreSQL]\nDriver=" << driver("psqlodbcw.so") << "\n";
    sources << "[" << postgres_source << "]\nDriver=PostgreSQL\nServername=" << host << "\nPort=" << port
            << "\nDatabase=SORVANE\n";
  }
  if (!scripted_driver.empty()) {
    drivers << "[Scripted]\nDriver=" << scripted_driver << "\n";
    sources << "[" << scripted_source << "]\nDriver=Scripted\n";
  }
  setenv("ODBCSYSINI", folder_.c_str(), 1);
  setenv("ODBCINI", (folder_ + "/odbc.ini").c_str(), 1);
}

scratch_database::~scratch_database() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void* bare_connect(void*& environment, const char* data_source) {
  SQLHDBC connection = nullptr;
  auto* name = reinterpret_cast<SQLCHAR*>(const_cast<char*>(data_source));
  SQLCHAR nothing[1] = {0};
  if (SQLAllocEnv(&environment) != SQL_SUCCESS || SQLAllocConnect(environment, &connection) != SQL_SUCCESS ||
      !SQL_SUCCEEDED(SQLConnect(connection, name, SQL_NTS, nothing, 0, nothing, 0))) {
    fmt::print(stderr, "The benchmark's database can not be connected.\n");
    std::exit(1);
  }
  return connection;
}
