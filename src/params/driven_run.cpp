#include "params/driven_run.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/clock.h"
#include "base/text.h"
#include "base/user_interface.h"
#include "odbc/failure_text.h"

namespace {

constexpr double seconds_between_shows = 0.1;
constexpr std::size_t shown_characters = 500;  // of a value, in the message of its row
constexpr const char* silence = "&Do not show again for this run";

void tell(const std::string& text, const std::string& title) {
  show_message({text, title, message_icon::question, message_buttons::ok, {}});
}

// The driver's message, and the layer's own finding where the driver has none.
void tell_failure(odbcstmt& statement) {
  const std::string own = layer_failure_text(statement);
  statement.Errd();
  if (!own.empty()) tell(own, "Program Error");
}

std::string shortened(const std::string& text) {
  const std::string_view kept = first_characters(text, shown_characters);
  return kept.size() == text.size() ? text : std::string(kept) + "...";
}

// One run over a prepared and executed source.
class driven_loop {
 public:
  // It holds the statements: whoever gave them may be gone before the run is.
  driven_loop(std::shared_ptr<odbcstmt> target, std::shared_ptr<odbcstmt> source, driven_host& host)
      : held_target_(std::move(target)), held_source_(std::move(source)), target_(*held_target_),
        source_(*held_source_), host_(host), values_(static_cast<std::size_t>(source_.NCols())),
        target_generation_(target_.generation()), source_generation_(source_.generation()) {}

  driven_result run() {
    host_.begin(std::max<std::int64_t>(source_.RowCount(), 0));
    const driven_outcome outcome = blocks();
    host_.show(counters_);
    return {outcome, counters_};
  }

 private:
  // Nothing below a window's events may be trusted to be as it was.
  [[nodiscard]] bool alive() const {
    return target_.generation() == target_generation_ && source_.generation() == source_generation_;
  }

  driven_outcome blocks() {
    while (true) {
      if (!alive()) return driven_outcome::broken;
      if (host_.stop_wanted()) return driven_outcome::stopped;
      std::int64_t rows = 0;
      if (!source_.ExtFetchNext(rows)) {
        if (source_.Result() == SQL_NO_DATA_FOUND) return driven_outcome::done;
        tell_failure(source_);
        return driven_outcome::broken;
      }
      const std::int64_t before = counters_.read;
      counters_.read += rows;
      show_now_and_then();
      for (std::int64_t row = 0; row < rows; ++row) {
        if (!alive()) return driven_outcome::broken;
        if (host_.stop_wanted()) return driven_outcome::stopped;
        if (!do_row(row, before + row + 1)) return driven_outcome::broken;
        show_now_and_then();
      }
    }
  }

  // False when the connection is gone.
  bool do_row(std::int64_t row, std::int64_t input_row) {
    for (std::size_t i = 0; i < values_.size(); ++i) values_[i] = source_.Getc(static_cast<int>(i) + 1, row);
    if (source_.RowStatus(row) == SQL_ROW_ERROR) {
      tell_row(input_row, "The source row could not be read.");
      return true;
    }
    if (const int cut = cut_column(row); cut > 0) {
      tell_row(input_row, fmt::format("Column {} holds a longer text than the driver described ({} characters); it "
                                      "would be written cut.",
                                      cut, source_.ColPrecision(cut)));
      return true;
    }
    if (target_.BindV(values_) && target_.Execute()) {
      ++counters_.written;
      return true;
    }
    std::string why = layer_failure_text(target_);
    bool lost = false;
    if (target_.last_error() == error_number(odbc_fault::value_type)) {
      why = "A column holds a value that can not be bound, such as a date that is none.";
    } else if (why.empty()) {
      const diagnostic_record record = target_.ErrData();
      why = diagnostic_text(record);
      lost = record.state.starts_with("08");
    }
    tell_row(input_row, why);
    if (lost) tell(fmt::format("The connection was lost. The run ends at input row {}.", input_row), "Program Error");
    return !lost;
  }

  // The first column whose text is not whole in the row; 0 when all are.
  [[nodiscard]] int cut_column(std::int64_t row) const {
    for (int column = 1; column <= source_.NCols(); ++column) {
      if (source_.Cut(column, row)) return column;
    }
    return 0;
  }

  void tell_row(std::int64_t input_row, const std::string& why) {
    ++counters_.failed;
    if (silenced_) return;
    std::string data;
    for (std::size_t i = 0; i < values_.size(); ++i)
      data += fmt::format(" data {} = {}", i + 1, shortened(to_text(values_[i])));
    const message shown{fmt::format("Error @ input row: {} data = {}", input_row, data),
                        {},
                        message_icon::none,
                        message_buttons::ok,
                        why};
    if (counters_.failed == 1) {
      show_message(shown);
    } else {
      silenced_ = show_message_with_check(shown, silence);
    }
  }

  void show_now_and_then() {
    const double now = current_clock().seconds();
    if (shown_at_ && now - *shown_at_ < seconds_between_shows) return;
    host_.show(counters_);
    shown_at_ = current_clock().seconds();
  }

  std::shared_ptr<odbcstmt> held_target_;
  std::shared_ptr<odbcstmt> held_source_;
  odbcstmt& target_;
  odbcstmt& source_;
  driven_host& host_;
  std::vector<value> values_;
  std::uint64_t target_generation_;
  std::uint64_t source_generation_;
  driven_counters counters_;
  std::optional<double> shown_at_;
  bool silenced_ = false;
};

bool prepared(odbcstmt& statement, const std::string& text, int rowset) {
  if (statement.Prep(text, rowset)) return true;
  tell_failure(statement);
  return false;
}

}  // namespace

driven_result drive(std::shared_ptr<odbcstmt> target, std::shared_ptr<odbcstmt> source, const driven_texts& texts,
                    int rowset, driven_host& host) {
  const busy_section busy;
  if (!prepared(*target, texts.target, 1) || !prepared(*source, texts.source, std::max(rowset, 2))) return {};
  if (source->NCols() != target->Nparms()) {
    tell("Number of columns in source must match number of columns in target!", "Error");
    return {};
  }
  if (source->NCols() == 0) {
    tell("The source query must be a query that delivers rows!", "Error");
    return {};
  }
  if (!source->Execute()) {
    tell_failure(*source);
    return {};
  }
  return driven_loop(std::move(target), std::move(source), host).run();
}

std::string driven_summary(std::int64_t written) {
  return fmt::format(
      "{} rows updated!\rUse the editor window to browse the results of the updates.  If they are OK, use the "
      "Environment Window -> Commit to commit transactions. Otherwise, use Environment->Rollback to undo changes.",
      written);
}
