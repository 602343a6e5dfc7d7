// The two measuring commands of the pipeline: syntax check and speed test.
#include <fmt/format.h>

#include "base/clock.h"
#include "base/number_format.h"
#include "base/text.h"
#include "base/user_interface.h"
#include "editor/panel_formats.h"
#include "editor/statement_pipeline.h"

namespace {

constexpr std::string_view only_this_word = "SELECT";
// How often the row counter is shown where rows come one by one.
constexpr std::int64_t rows_between_refreshes = 100;

double now() { return current_clock().seconds(); }

}  // namespace

run_result statement_pipeline::prep_stmt(std::string_view text) {
  run_result result;
  result.kind = classify(text);
  if (detached()) return result;
  const double start = now();
  const bool ok = statement_->Prep(text);
  result.prepare_s = now() - start;
  result.outcome = run_outcome::ok;
  if (!ok) fail(result);
  // The message may have been up while the document went; its statement is freed then, and Cancel does nothing.
  statement_->Cancel();
  return result;
}

run_result statement_pipeline::speed_stmt(std::string_view text, const run_options& options) {
  run_result result;
  result.kind = classify(text);
  if (detached()) return result;
  set(panel::phase, "Preparing");
  refresh();
  if (!begins_with(text, only_this_word)) {
    show_user_error("You can only Speed Test SELECT statements!");
    result.outcome = run_outcome::error;
    return result;
  }
  const double start = now();
  const bool prepared = options.ext_fetch ? statement_->Prep(text, options.ext_fetch_rows) : statement_->Prep(text);
  if (!show_prepared(prepared, now() - start, result)) return result;
  const double prepared_at = now();
  const bool executed = statement_->Execute();
  if (!show_executed(executed, now() - prepared_at, options, result)) return result;
  if (!speed_fetch(options, result)) {
    std::string details = result.diagnostic ? diagnostic_text(*result.diagnostic) : "";
    show_message({"No Rows!", {}, message_icon::none, message_buttons::ok, std::move(details)});
    return result;
  }
  set(panel::fetch, format_number(result.fetch_s, seconds_pattern));
  set(panel::phase, "StatuMyCursor...");
  refresh();
  if (result.rows > 0 && result.fetch_s > 0) {
    result.rows_per_s = static_cast<double>(result.rows) / result.fetch_s;
    set(panel::rows_per_second, format_number(result.rows_per_s, rate_pattern));
  }
  refresh();
  return result;
}

// Fetches up to the target; false when there was no row at all.
bool statement_pipeline::speed_fetch(const run_options& options, run_result& result) {
  const busy_section busy;
  const bool in_blocks = options.ext_fetch && statement_->RowSetSize() > 1;
  const double start = now();
  bool ok = true;
  while (ok && result.rows < options.speed_test_rows) {
    ok = fetch_some(in_blocks, result.rows);
    if (result.rows == 0 && !ok) break;
    if (in_blocks || (ok && result.rows % rows_between_refreshes == 0)) {
      set(panel::rows, fmt::to_string(result.rows));
      refresh();
    }
  }
  result.fetch_s = now() - start;
  if (!ok) note_fetch_failure(result);
  return result.rows > 0 || ok;
}
