#pragma once

#include <string>

// A SQLite database of a benchmark's own, reached through ODBC as the data source BENCH, in a temporary folder that
// goes with the object. Make it before the first ODBC call.
class scratch_database {
 public:
  scratch_database();
  ~scratch_database();
  scratch_database(const scratch_database&) = delete;
  scratch_database& operator=(const scratch_database&) = delete;

  static constexpr const char* data_source = "BENCH";

 private:
  std::string folder_;
};

// Connects the bare way; ends the program with a message when that fails.
void* bare_connect(void*& environment);
