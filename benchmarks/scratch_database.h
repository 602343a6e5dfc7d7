#pragma once

#include <string>

// A SQLite database of a benchmark's own, reached through ODBC as the data source BENCH, in a temporary folder that
// goes with the object; and, where tools/benchmark has started its PostgreSQL server, that one as BENCHPG. Make it
// before the first ODBC call.
class scratch_database {
 public:
  // With a path, the driver there is the data source SCRIPTED.
  explicit scratch_database(const std::string& scripted_driver = {});
  ~scratch_database();
  scratch_database(const scratch_database&) = delete;
  scratch_database& operator=(const scratch_database&) = delete;

  static constexpr const char* data_source = "BENCH";
  static constexpr const char* postgres_source = "BENCHPG";
  static constexpr const char* postgres_user = "SORVANE";
  static constexpr const char* postgres_password = "SECRET";
  [[nodiscard]] bool has_postgres() const { return has_postgres_; }
  [[nodiscard]] const std::string& folder() const { return folder_; }
  static constexpr const char* scripted_source = "SCRIPTED";

 private:
  std::string folder_;
  bool has_postgres_ = false;
};

// Connects the bare way; ends the program with a message when that fails.
void* bare_connect(void*& environment, const char* data_source = scratch_database::data_source);
