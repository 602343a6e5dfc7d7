#pragma once

#include <iosfwd>

#include "batch/batch_options.h"
#include "editor/statement_pipeline.h"

// The exit statuses of the console program.
inline constexpr int batch_all_ran = 0;
inline constexpr int batch_statement_failed = 1;
inline constexpr int batch_usage_or_login = 2;

// One JSON object on one line, and one line of the plain table, for a statement's figures. `number` counts from 1.
// `returned`, the markers of a call after it, becomes the array "values": null for Null, numbers and booleans as such,
// all else as text.
std::string json_line(int number, const std::string& text, const run_result& result,
                      const std::optional<std::vector<value>>& returned = std::nullopt);
std::string plain_header();
std::string plain_line(int number, const run_result& result);

// Logs in, runs every statement, prints a line for each as soon as it is done, logs out. Messages go to the user
// interface in force, remarks to `remarks`. Gives the exit status.
int run_batch(const batch_options& options, const std::string& password, std::ostream& out, std::ostream& remarks);
