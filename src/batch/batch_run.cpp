#include "batch/batch_run.h"

#include <fmt/format.h>

#include <ostream>

#include "base/files.h"
#include "base/number_format.h"
#include "batch/batch_catalog.h"
#include "batch/batch_login.h"
#include "batch/console_interface.h"
#include "batch/json_value.h"
#include "editor/document_text.h"
#include "editor/statement_text.h"
#include "shell/session.h"

namespace {

bool is_blank(std::string_view text) { return trima(text).empty(); }

// The script as UTF-8; nothing, with a remark, when it cannot be read.
std::optional<std::string> script_text(const batch_options& options, std::ostream& remarks) {
  if (options.statements) return options.statements;
  const file_content content = read_whole_file(options.file);
  if (!content.ok()) {
    remarks << fmt::format("sorvane-batch: {} can not be read: {}\n", options.file, content.error);
    return std::nullopt;
  }
  const document_text document = document_from_file(content.bytes);
  return document_to_utf8(document.bytes, document.encoding);
}

struct batch_tally {
  bool failed = false;
  bool uncommitted = false;
  std::size_t unused_parameters = 0;
};

run_result do_statement(batch_mode mode, statement_pipeline& pipeline, std::string_view text,
                        const run_options& options) {
  switch (mode) {
    case batch_mode::check:
      return pipeline.prep_stmt(text);
    case batch_mode::speed_test:
      // As the statement under a caret: its leading blanks do not count.
      return pipeline.speed_stmt(trima(text), options);
    case batch_mode::execute:
    case batch_mode::drive:
    case batch_mode::catalog:
      break;
  }
  return pipeline.run_stmt(text, options);
}

batch_tally run_statements(const std::string& script, const std::vector<statement_span>& spans,
                           const batch_options& options, std::ostream& out) {
  batch_tally tally;
  console_host host(options.parameters);
  const auto statement = std::make_shared<odbcstmt>();
  if (!statement->Make(session::g_con)) {
    session::g_con.Errd();
    tally.failed = true;
    return tally;
  }
  statement_pipeline pipeline(statement, host, host);
  const run_options run{.ext_fetch = session::ext_fetch,
                        .ext_fetch_rows = session::ext_fetch_rows,
                        .speed_test_rows = options.speed_test_rows,
                        .extent = options.all_rows ? fetch_extent::all_rows : fetch_extent::first_block_or_row};
  int number = 0;
  for (const statement_span& span : spans) {
    const std::string text = script.substr(span.start, span.length);
    const run_result result = do_statement(options.mode, pipeline, text, run);
    ++number;
    out << (options.json ? json_line(number, text, result, host.take_returned()) : plain_line(number, result))
        << std::endl;
    tally.failed |= result.outcome != run_outcome::ok;
    tally.uncommitted |= options.mode == batch_mode::execute && !options.autocommit &&
                         result.kind != statement_class::query && result.outcome == run_outcome::ok;
  }
  tally.unused_parameters = host.unused();
  return tally;
}

}  // namespace

std::string json_line(int number, const std::string& text, const run_result& result,
                      const std::optional<std::vector<value>>& returned) {
  nlohmann::ordered_json object{
      {"number", number},
      {"class", class_name(result.kind)},
      {"text", text},
      {"prepare_s", result.prepare_s},
      {"execute_s", result.execute_s},
      {"fetch_s", result.fetch_s},
      {"rows", result.rows},
      {"rows_per_s", result.rows_per_s},
      {"outcome", outcome_name(result.outcome)},
  };
  if (returned) {
    auto& values = object["values"] = nlohmann::ordered_json::array();
    for (const value& each : *returned) values.push_back(json_of(each));
  }
  if (result.diagnostic) {
    object["diagnostic"] = {{"native", result.diagnostic->native},
                            {"state", result.diagnostic->state},
                            {"message", result.diagnostic->text}};
  }
  return json_text(object);
}

std::string plain_header() {
  return fmt::format("{:>4}  {:<5}  {:>10}  {:>10}  {:>10}  {:>10}  {:>14}  {}", "#", "class", "prepare s", "execute s",
                     "fetch s", "rows", "rows/s", "outcome");
}

std::string plain_line(int number, const run_result& result) {
  constexpr std::string_view seconds = "##0.000000";
  return fmt::format("{:>4}  {:<5}  {:>10}  {:>10}  {:>10}  {:>10}  {:>14}  {}", number, class_name(result.kind),
                     format_number(result.prepare_s, seconds), format_number(result.execute_s, seconds),
                     format_number(result.fetch_s, seconds), result.rows,
                     format_number(result.rows_per_s, "##,##0.000"), outcome_name(result.outcome));
}

int run_batch(const batch_options& options, const std::string& password, std::ostream& out, std::ostream& remarks) {
  if (options.mode == batch_mode::catalog) {
    const batch_login login(options, password);
    return login.ok() ? print_catalog(session::g_con, options, out, remarks) : batch_usage_or_login;
  }
  const auto script = script_text(options, remarks);
  if (!script) return batch_usage_or_login;
  const std::vector<statement_span> spans = statement_spans(*script);
  const std::size_t end = spans.empty() ? 0 : spans.back().start + spans.back().length + 1;
  if (spans.empty() && !is_blank(*script)) {
    remarks << "sorvane-batch: no statement: a statement ends with ';'\n";
    return batch_usage_or_login;
  }
  const batch_login login(options, password);
  if (!login.ok()) return batch_usage_or_login;
  if (!options.json) out << plain_header() << std::endl;
  const batch_tally tally = run_statements(*script, spans, options, out);
  if (!is_blank(std::string_view(*script).substr(end))) {
    remarks << "sorvane-batch: the text after the last ';' was not executed\n";
  }
  if (tally.unused_parameters > 0) {
    remarks << fmt::format("sorvane-batch: {} of the values given with --param {} not used\n", tally.unused_parameters,
                           tally.unused_parameters == 1 ? "was" : "were");
  }
  if (tally.uncommitted) {
    remarks << "sorvane-batch: autocommit is off: changes that no COMMIT ended are rolled back now\n";
  }
  return tally.failed ? batch_statement_failed : batch_all_ran;
}
