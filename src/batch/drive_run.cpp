#include "batch/drive_run.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <ostream>

#include "batch/batch_login.h"
#include "batch/batch_run.h"
#include "params/driven_run.h"
#include "shell/session.h"

namespace {

class console_watcher final : public driven_host {
 public:
  explicit console_watcher(std::ostream* live) : live_(live) {}
  ~console_watcher() override {
    if (shown_) *live_ << std::endl;
  }
  console_watcher(const console_watcher&) = delete;
  console_watcher& operator=(const console_watcher&) = delete;
  void begin(std::int64_t) override {}
  void show(const driven_counters& counters) override {
    if (live_ == nullptr) return;
    *live_ << fmt::format("\rRead: {}  Written: {}  Errors: {}", counters.read, counters.written, counters.failed)
           << std::flush;
    shown_ = true;
  }
  [[nodiscard]] bool stop_wanted() const override { return false; }

 private:
  std::ostream* live_;
  bool shown_ = false;
};

const char* outcome_word(driven_outcome outcome) {
  return outcome == driven_outcome::done ? "ok" : outcome == driven_outcome::stopped ? "cancelled" : "error";
}

std::string drive_json(const driven_result& result) {
  return nlohmann::ordered_json{{"read", result.counters.read},
                                {"written", result.counters.written},
                                {"errors", result.counters.failed},
                                {"outcome", outcome_word(result.outcome)}}
      .dump();
}

std::string drive_table(const driven_result& result) {
  constexpr const char* line = "{:>10}  {:>10}  {:>10}  {}";
  return fmt::format(fmt::runtime(line), "read", "written", "errors", "outcome") + '\n' +
         fmt::format(fmt::runtime(line), result.counters.read, result.counters.written, result.counters.failed,
                     outcome_word(result.outcome));
}

}  // namespace

int run_drive(const batch_options& options, const std::string& password, std::ostream& out, std::ostream& remarks,
              std::ostream* live) {
  const batch_login login(options, password);
  if (!login.ok()) return batch_usage_or_login;
  const auto target = std::make_shared<odbcstmt>();
  const auto source = std::make_shared<odbcstmt>();
  if (!target->Make(session::g_con) || !source->Make(session::g_con)) {
    session::g_con.Errd();
    return batch_statement_failed;
  }
  driven_result result;
  {
    console_watcher host(live);
    result = drive(target, source, {options.drive_target, options.drive_source}, options.rowset, host);
  }
  out << (options.json ? drive_json(result) : drive_table(result)) << std::endl;
  if (result.counters.written > 0 && !options.autocommit)
    remarks << "sorvane-batch: autocommit is off: the rows written are rolled back now\n";
  return result.outcome == driven_outcome::done && result.counters.failed == 0 ? batch_all_ran : batch_statement_failed;
}
