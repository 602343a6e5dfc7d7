#include "benchmarks/scratch_database.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "odbc/odbc_headers.h"

namespace {

std::string sqlite_driver() {
  for (const auto& entry : std::filesystem::directory_iterator("/usr/lib")) {
    const auto candidate = entry.path() / "odbc" / "libsqlite3odbc.so";
    if (std::filesystem::exists(candidate)) return candidate;
  }
  fmt::print(stderr, "The SQLite ODBC driver is not installed.\n");
  std::exit(1);
}

}  // namespace

scratch_database::scratch_database() {
  std::string name = (std::filesystem::temp_directory_path() / "sorvane-bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    fmt::print(stderr, "No temporary folder can be made.\n");
    std::exit(1);
  }
  folder_ = name;
  std::ofstream(folder_ + "/odbcinst.ini") << "[SQLite3]\nDriver=" << sqlite_driver() << "\n";
  std::ofstream(folder_ + "/odbc.ini") << "[" << data_source << "]\nDriver=SQLite3\nDatabase=" << folder_
                                       << "/bench.sqlite\n";
  setenv("ODBCSYSINI", folder_.c_str(), 1);
  setenv("ODBCINI", (folder_ + "/odbc.ini").c_str(), 1);
}

scratch_database::~scratch_database() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void* bare_connect(void*& environment) {
  SQLHDBC connection = nullptr;
  auto* name = reinterpret_cast<SQLCHAR*>(const_cast<char*>(scratch_database::data_source));
  SQLCHAR nothing[1] = {0};
  if (SQLAllocEnv(&environment) != SQL_SUCCESS || SQLAllocConnect(environment, &connection) != SQL_SUCCESS ||
      !SQL_SUCCEEDED(SQLConnect(connection, name, SQL_NTS, nothing, 0, nothing, 0))) {
    fmt::print(stderr, "The benchmark's database can not be connected.\n");
    std::exit(1);
  }
  return connection;
}
