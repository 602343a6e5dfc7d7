#include "batch/batch_options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <limits>

namespace {

const std::vector<std::pair<std::string, catalog_list>> catalog_lists{{"tables", catalog_list::tables},
                                                                      {"columns", catalog_list::columns},
                                                                      {"keys", catalog_list::keys},
                                                                      {"indexes", catalog_list::indexes}};

std::int32_t speed_test_target(const std::string& text) {
  std::string rows = text;
  const std::string wrong = CLI::Range(1, std::numeric_limits<std::int32_t>::max())(rows);
  if (!wrong.empty()) throw CLI::ValidationError("--target", wrong);
  return std::stoi(rows);
}

}  // namespace

std::optional<batch_options> parse_batch_options(int argc, const char* const* argv, int& exit_status) {
  batch_options options;
  bool no_block_fetch = false;
  bool checks = false;
  bool speed_tests = false;
  std::string statements;
  std::string target_text;
  std::string asked_list;
  CLI::App app(
      "Executes the SQL statements of a script, each ended by ';', and prints the figures of each.\n"
      "The password comes from the environment variable SORVANE_PWD, or is asked for without echo.",
      "sorvane-batch");
  app.add_option("--dsn", options.data_source, "ODBC data source")->required();
  app.add_option("--uid", options.user, "user");
  app.add_flag("--udb", options.udb, "the database is DB2 Universal, not DB2 on an AS/400");
  auto* rowset =
      app.add_option("--rowset", options.rowset, "rows per block fetch, 1 to 1000 (500)")->check(CLI::Range(1, 1000));
  app.add_flag("--no-block-fetch", no_block_fetch, "fetch rows one by one")->excludes(rowset);
  app.add_flag("--autocommit", options.autocommit,
               "commit each statement; without it, all is rolled back at the end unless a COMMIT ran");
  app.add_option("--isolation", options.isolation,
                 "0 cursor stability, 2 read uncommitted (the default), 3 read repeatability")
      ->check(CLI::IsMember({0, 2, 3}));
  auto* check = app.add_flag("--check", checks, "only prepare each statement, and tell what the database finds wrong");
  auto* speed = app.add_flag("--speed-test", speed_tests,
                             "fetch each SELECT up to a target number of rows, however many blocks that takes")
                    ->excludes(check);
  auto* drive = app.add_option("--drive", options.drive_source,
                               "execute the statement given with --target once for each row of this query, its columns "
                               "bound to the statement's markers")
                    ->excludes(check)
                    ->excludes(speed);
  auto* target = app.add_option("--target", target_text,
                                "with --speed-test: the rows to fetch (10000); with --drive: the statement to execute");
  drive->needs(target);
  auto* param =
      app.add_option("--param", options.parameters,
                     "a value for the next parameter marker, #NULL# for a null; repeat it for every marker of the "
                     "script, calls included")
          ->allow_extra_args(false)
          ->excludes(check)
          ->excludes(speed);
  drive->excludes(param);
  app.add_flag("--all-rows", options.all_rows, "fetch each result to its end, not its first block only")
      ->excludes(check)
      ->excludes(speed)
      ->excludes(drive);
  app.add_flag("--json", options.json, "print one JSON object per statement");
  auto* catalog = app.add_option("--catalog", asked_list,
                                 "print the tables, or the columns, keys or indexes of one table, and execute nothing")
                      ->check(CLI::IsMember(std::vector<std::string>{"tables", "columns", "keys", "indexes"}))
                      ->excludes(check)
                      ->excludes(speed)
                      ->excludes("--param")
                      ->excludes("--all-rows");
  app.add_option("--library", options.library, "the library (owner) of the table; for tables a search pattern")
      ->needs(catalog);
  app.add_option("--table", options.table, "the table; for tables a search pattern")->needs(catalog);
  auto* file = app.add_option("FILE.sql", options.file, "the script");
  auto* text = app.add_option("-e", statements, "statements given on the command line")->excludes(file);
  drive->excludes(file)->excludes(text)->excludes(catalog);
  catalog->excludes(file)->excludes(text);
  try {
    app.parse(argc, argv);
    if (!drive->empty()) {
      options.drive_target = target_text;
    } else if (!target->empty()) {
      if (speed->empty()) throw CLI::RequiresError("--target", "--speed-test or --drive");
      options.speed_test_rows = speed_test_target(target_text);
    }
    if (drive->empty() && catalog->empty() && file->empty() && text->empty())
      throw CLI::RequiredError("FILE.sql, -e, --drive or --catalog");
    if (!catalog->empty() && asked_list != "tables" && options.table.empty()) throw CLI::RequiredError("--table");
  } catch (const CLI::ParseError& error) {
    exit_status = app.exit(error, std::cout, std::cerr) == 0 ? 0 : 2;
    return std::nullopt;
  }
  options.ext_fetch = !no_block_fetch;
  if (checks) options.mode = batch_mode::check;
  if (!drive->empty()) options.mode = batch_mode::drive;
  if (speed_tests) options.mode = batch_mode::speed_test;
  if (!catalog->empty()) options.mode = batch_mode::catalog;
  for (const auto& [name, list] : catalog_lists) {
    if (name == asked_list) options.catalog = list;
  }
  if (!text->empty()) options.statements = statements;
  return options;
}
