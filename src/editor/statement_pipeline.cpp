#include "editor/statement_pipeline.h"

#include <fmt/format.h>

#include "as400/qcmdexc.h"
#include "base/clock.h"
#include "base/conversions.h"
#include "base/number_format.h"
#include "base/text.h"
#include "base/user_interface.h"
#include "editor/panel_formats.h"
#include "editor/statement_text.h"

namespace {

constexpr std::string_view zero_time = "0.00000";
constexpr std::string_view host_command_word = "EXE400";

double now() { return current_clock().seconds(); }

}  // namespace

std::string_view class_name(statement_class which) {
  switch (which) {
    case statement_class::query:
      return "query";
    case statement_class::host_command:
      return "host";
    case statement_class::call:
      return "call";
    case statement_class::other:
      break;
  }
  return "other";
}

std::string_view outcome_name(run_outcome outcome) {
  switch (outcome) {
    case run_outcome::ok:
      return "ok";
    case run_outcome::error:
      return "error";
    case run_outcome::cancelled:
      break;
  }
  return "cancelled";
}

statement_class classify(std::string_view text) {
  const std::string_view statement = trima(text);
  if (begins_with(statement, "SELECT") || begins_with(statement, "WITH")) return statement_class::query;
  if (begins_with(statement, host_command_word)) return statement_class::host_command;
  if (begins_with(statement, "CALL")) return statement_class::call;
  return statement_class::other;
}

void statement_pipeline::detach() {
  host_ = nullptr;
  status_ = nullptr;
}

void statement_pipeline::set(panel which, const std::string& text) {
  if (status_ != nullptr) status_->set_panel(which, text);
}

void statement_pipeline::refresh() {
  if (status_ != nullptr) status_->refresh();
}

void statement_pipeline::reset_status() {
  set(panel::phase, "Prepare...");
  for (const panel each : {panel::prepare, panel::execute, panel::fetch, panel::rows_per_second, panel::render}) {
    set(each, std::string(zero_time));
  }
  set(panel::rows, "0");
  refresh();
}

// Shows the driver's diagnostic, and the layer's own finding where the driver has none.
void statement_pipeline::fail(run_result& result) {
  const std::string own = layer_failure_text(*statement_);
  diagnostic_record record = statement_->ErrData();
  show_diagnostic(record);
  if (!own.empty()) {
    show_user_error(own, "Program Error");
    record.text = own;
  }
  result.outcome = run_outcome::error;
  result.diagnostic = std::move(record);
}

run_result statement_pipeline::run_stmt(std::string_view text, const run_options& options) {
  run_result result;
  result.kind = classify(text);
  if (detached() || !prepare(text, options, result) || !enter_parameters(result)) return result;
  if (!execute(options, result) || detached()) return result;
  if (statement_->NCols() >= 1) fetch_things(text, options, result);
  return result;
}

bool statement_pipeline::prepare(std::string_view text, const run_options& options, run_result& result) {
  reset_status();
  const double start = now();
  bool ok = false;
  switch (result.kind) {
    case statement_class::query:
      ok = options.ext_fetch ? statement_->Prep(text, options.ext_fetch_rows) : statement_->Prep(text);
      break;
    case statement_class::host_command:
      ok = statement_->Prep(qcmdexc_call(trima(text).substr(host_command_word.size()), "."));
      break;
    case statement_class::call:
      ok = prepare_call(text, options);
      break;
    case statement_class::other:
      ok = statement_->Prep(text);
      break;
  }
  return show_prepared(ok, now() - start, result);
}

bool statement_pipeline::show_prepared(bool ok, double seconds, run_result& result) {
  result.prepare_s = seconds;
  if (!ok) {
    fail(result);
    return false;
  }
  set(panel::phase, "Executing");
  set(panel::prepare, format_number(seconds, seconds_pattern));
  refresh();
  return true;
}

bool statement_pipeline::prepare_call(std::string_view text, const run_options& options) {
  if (!statement_->ProcPrep(text, options.ext_fetch_rows)) return false;
  for (int marker = 1; marker <= statement_->Nparms(); ++marker) {
    statement_->BindProcParm(statement_->ProcParmDefault(marker), marker);
  }
  return true;
}

bool statement_pipeline::enter_parameters(run_result& result) {
  if (statement_->Nparms() < 1) return true;
  set(panel::phase, "Waiting for Parameters....");
  refresh();
  const bool bound = host_->enter_parameters(statement_, result.kind == statement_class::call);
  if (bound && !detached()) return true;
  set(panel::phase, "Status...");
  refresh();
  result.outcome = run_outcome::cancelled;
  return false;
}

bool statement_pipeline::execute(const run_options& options, run_result& result) {
  const bool is_call = result.kind == statement_class::call;
  const double start = now();
  const bool ok = statement_->Execute();
  const bool described = ok && (!is_call || statement_->ProcSRS());
  if (!show_executed(ok, now() - start, options, result)) return false;
  if (!described) fail(result);
  if (detached()) return false;
  if (is_call && statement_->Nparms() >= 1) host_->show_returned_parameters(statement_);
  if (!detached() && statement_->NCols() < 1) finish_without_rows(result);
  return true;
}

bool statement_pipeline::show_executed(bool ok, double seconds, const run_options& options, run_result& result) {
  result.execute_s = seconds;
  if (!ok) {
    fail(result);
    return false;
  }
  result.outcome = run_outcome::ok;
  set(panel::execute, format_number(seconds, seconds_pattern));
  set(panel::phase, fmt::format("Fetching {} target rows", options.speed_test_rows));
  refresh();
  return true;
}

void statement_pipeline::finish_without_rows(run_result& result) {
  result.rows = statement_->RowCount();
  set(panel::rows, fmt::to_string(result.rows));
  set(panel::phase, "Status...");
  if (result.rows >= 1 && result.execute_s > 0) result.rows_per_s = static_cast<double>(result.rows) / result.execute_s;
  // The panel is computed from the panel: what is shown fits together.
  if (const double shown = leading_number(format_number(result.execute_s, seconds_pattern));
      result.rows >= 1 && shown > 0) {
    set(panel::rows_per_second, format_number(static_cast<double>(result.rows) / shown, rate_pattern));
  }
  refresh();
}

void statement_pipeline::note_fetch_failure(run_result& result) {
  // 100 is the end of the data; a rowset of one row is no block to fetch, and makes no call.
  if (sql_ok(statement_->Result()) || statement_->Result() == SQL_NO_DATA_FOUND) return;
  result.outcome = run_outcome::error;
  result.diagnostic = statement_->ErrData();
}

void statement_pipeline::fetch_things(std::string_view text, const run_options& options, run_result& result) {
  if (host_->data_window_wanted()) {
    fetch_with_dw(text, options, result);
    return;
  }
  const double start = now();
  const bool fetched = fetch_extent_of(options, result.rows);
  result.fetch_s = now() - start;
  if (!fetched) {
    note_fetch_failure(result);
    if (result.rows == 0) return;
  }
  if (result.rows > 0 && result.fetch_s > 0) result.rows_per_s = static_cast<double>(result.rows) / result.fetch_s;
  set(panel::rows, fmt::to_string(result.rows));
  set(panel::fetch, format_number(result.fetch_s, seconds_pattern));
  set(panel::phase, "Status...");
  if (result.rows_per_s > 0) set(panel::rows_per_second, format_number(result.rows_per_s, rate_pattern));
  set(panel::render, std::string(zero_time));
  refresh();
}

void statement_pipeline::fetch_with_dw(std::string_view text, const run_options& options, run_result& result) {
  set(panel::phase, fmt::format("Fetch to Window: {} rows", options.dw_rows));
  refresh();
  const double start = now();
  const bool fetched = fetch_some(options.ext_fetch, result.rows);
  result.fetch_s = now() - start;
  const std::string fetch_text = result.rows > 0 ? format_number(result.fetch_s, "##0.000000") : "0";
  set(panel::rows, fmt::to_string(result.rows));
  set(panel::phase, "Status...");
  set(panel::fetch, fetch_text);
  if (result.rows > 0 && result.fetch_s > 0) result.rows_per_s = static_cast<double>(result.rows) / result.fetch_s;
  if (const double shown = leading_number(fetch_text); result.rows > 0 && shown > 0) {
    set(panel::rows_per_second, format_number(static_cast<double>(result.rows) / shown, rate_pattern));
  }
  refresh();
  // A window without a row is an empty result; a failure must not look like one.
  if (!fetched) note_fetch_failure(result);
  if (result.diagnostic) show_diagnostic(*result.diagnostic);
  if (detached()) return;
  const double shown_from = now();
  host_->open_data_window(std::string(text), statement_, result.rows);
  set(panel::render, format_number(now() - shown_from, "##,##0.000"));
  refresh();
}

bool statement_pipeline::fetch_some(bool in_blocks, std::int64_t& rows) {
  const busy_section busy;
  std::int64_t got = 1;
  if (!(in_blocks && statement_->RowSetSize() > 1 ? statement_->ExtFetchNext(got) : statement_->Fetch())) return false;
  rows += got;
  return got > 0;
}

// Fetches as far as asked; false when the last fetch delivered nothing.
bool statement_pipeline::fetch_extent_of(const run_options& options, std::int64_t& rows) {
  const bool in_blocks = statement_->RowSetSize() > 1;
  const bool single = !in_blocks && options.extent != fetch_extent::first_block;
  const busy_section busy;
  do {
    std::int64_t got = 1;
    if (!(single ? statement_->Fetch() : statement_->ExtFetchNext(got))) return false;
    rows += got;
  } while (options.extent == fetch_extent::all_rows);
  return true;
}
