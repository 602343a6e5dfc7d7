#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What is done with each statement; or, without a script, that one statement is driven by the rows of another, or that
// the catalog is asked.
enum class batch_mode { execute, check, speed_test, drive, catalog };

// What the catalog is asked for.
enum class catalog_list { tables, columns, keys, indexes };

// What the console program was asked to do.
struct batch_options {
  std::string data_source;
  std::string user;
  bool udb = false;
  bool ext_fetch = true;
  std::int32_t rowset = 500;
  bool autocommit = false;
  std::int32_t isolation = 2;
  batch_mode mode = batch_mode::execute;
  std::int32_t speed_test_rows = 10000;  // the speed test's target
  std::string drive_source;
  std::string drive_target;
  bool all_rows = false;
  bool json = false;
  catalog_list catalog = catalog_list::tables;
  std::string library;  // "" for any
  std::string table;
  std::string file;                       // the script, unless statements are given
  std::optional<std::string> statements;  // the text given with -e
  std::vector<std::string> parameters;    // values for markers, statement after statement
};

// The options of a command line; nothing when the program is to end with `exit_status` (2 after a usage message on
// standard error, 0 after help).
std::optional<batch_options> parse_batch_options(int argc, const char* const* argv, int& exit_status);
