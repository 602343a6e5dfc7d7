#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "odbc/failure_text.h"
#include "odbc/odbcstmt.h"

// The seven panels that a run reports to.
enum class panel : int { phase = 1, prepare = 2, execute = 3, fetch = 4, rows_per_second = 5, rows = 6, render = 7 };
inline constexpr int panel_count = 7;

class pipeline_status {
 public:
  virtual ~pipeline_status() = default;
  virtual void set_panel(panel which, const std::string& text) = 0;
  // Shows at once what was set.
  virtual void refresh() = 0;
};

// What the pipeline asks of whoever runs it.
class pipeline_host {
 public:
  virtual ~pipeline_host() = default;
  // Has values bound to the markers of the prepared statement and answers true, or false when the run is given up. May
  // process events.
  virtual bool enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool is_call) = 0;
  // Shows the markers' values after a call; returns at once.
  virtual void show_returned_parameters(const std::shared_ptr<odbcstmt>& statement) = 0;
  // Whether the rows of a query go to a data window.
  [[nodiscard]] virtual bool data_window_wanted() const = 0;
  // Opens a data window on the result; `rows` of it stand in the statement's rowset. Returns as soon as these are
  // shown.
  virtual void open_data_window(const std::string& text, const std::shared_ptr<odbcstmt>& statement,
                                std::int64_t rows) = 0;
};

enum class statement_class { query, host_command, call, other };
// "query", "host", "call" or "other".
std::string_view class_name(statement_class which);
// By the first characters of the text after its leading blanks, without looking for a word's end.
statement_class classify(std::string_view text);

// How much of a result set is fetched: its first block, as the bench does; that or, where blocks are off, its first
// row; or all of it.
enum class fetch_extent { first_block, first_block_or_row, all_rows };

struct run_options {
  bool ext_fetch = true;
  std::int32_t ext_fetch_rows = 500;
  std::int32_t speed_test_rows = 10000;  // the speed test's target; a plain run only shows it
  std::int32_t dw_rows = 1000;           // only shown
  fetch_extent extent = fetch_extent::first_block;
};

enum class run_outcome { ok, error, cancelled };
std::string_view outcome_name(run_outcome outcome);

// The figures of one run, unrounded; times in seconds, 0 for a phase that was not reached.
struct run_result {
  statement_class kind = statement_class::other;
  double prepare_s = 0;
  double execute_s = 0;
  double fetch_s = 0;
  std::int64_t rows = 0;  // fetched, or affected as the driver reports them (-1 when it does not know)
  double rows_per_s = 0;  // 0 when it cannot be told
  run_outcome outcome = run_outcome::cancelled;
  std::optional<diagnostic_record> diagnostic;  // with an error
};

// Carries one statement after the other through classification, prepare, parameters, execute and fetch. It never
// commits or rolls back.
class statement_pipeline {
 public:
  statement_pipeline(std::shared_ptr<odbcstmt> statement, pipeline_host& host, pipeline_status& status)
      : statement_(std::move(statement)), host_(&host), status_(&status) {}

  // `text` as it stands in the editor. Failures are shown as the driver tells them. A run whose document goes away
  // while it waits ends as cancelled; keep the pipeline itself alive until run_stmt returns.
  run_result run_stmt(std::string_view text, const run_options& options);

  // Prepares the text and releases it, so that the database tells what it finds wrong; the panels stay as they are.
  run_result prep_stmt(std::string_view text);
  // Prepares, executes and fetches a SELECT until `options.speed_test_rows` rows or more have come, and shows the time
  // of each phase. Markers are not asked for. What is no SELECT ends as an error without a diagnostic; a failing fetch
  // ends the fetching, with the figures of the rows before it.
  run_result speed_stmt(std::string_view text, const run_options& options);

  // The document is going: from now on nothing of host and status is touched.
  void detach();
  [[nodiscard]] bool detached() const { return host_ == nullptr; }

 private:
  bool prepare(std::string_view text, const run_options& options, run_result& result);
  bool prepare_call(std::string_view text, const run_options& options);
  bool enter_parameters(run_result& result);
  bool execute(const run_options& options, run_result& result);
  // What both a run and a speed test do after their prepare and their execute: keep and show the time, or the failure.
  bool show_prepared(bool ok, double seconds, run_result& result);
  bool show_executed(bool ok, double seconds, const run_options& options, run_result& result);
  void finish_without_rows(run_result& result);
  void fetch_things(std::string_view text, const run_options& options, run_result& result);
  void fetch_with_dw(std::string_view text, const run_options& options, run_result& result);
  bool speed_fetch(const run_options& options, run_result& result);
  // One block, or one row where blocks are off or hold a single row; false when nothing came.
  bool fetch_some(bool in_blocks, std::int64_t& rows);
  void note_fetch_failure(run_result& result);
  bool fetch_extent_of(const run_options& options, std::int64_t& rows);
  void fail(run_result& result);
  void reset_status();
  void set(panel which, const std::string& text);
  void refresh();

  std::shared_ptr<odbcstmt> statement_;
  pipeline_host* host_;
  pipeline_status* status_;
};
