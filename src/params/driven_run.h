#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "odbc/odbcstmt.h"

// Source rows read, target executions that succeeded, and input rows whose execution did not.
struct driven_counters {
  std::int64_t read = 0;
  std::int64_t written = 0;
  std::int64_t failed = 0;
  friend bool operator==(const driven_counters&, const driven_counters&) = default;
};

// Who watches a driven run. Anything may happen in `begin` and `show`, the statements freed included.
class driven_host {
 public:
  virtual ~driven_host() = default;
  // Both statements are prepared and the source is executed; it delivers `expected` rows, 0 when the driver does not
  // say.
  virtual void begin(std::int64_t expected) = 0;
  // At most ten times a second, and at the end.
  virtual void show(const driven_counters& counters) = 0;
  // Asked before every row; true ends the run there.
  [[nodiscard]] virtual bool stop_wanted() const = 0;
};

enum class driven_outcome {
  refused,  // nothing was executed but, at most, the source
  done,     // the source has no more rows
  stopped,  // the host wanted it
  broken    // the source, the connection or the statements were lost half way
};

struct driven_result {
  driven_outcome outcome = driven_outcome::refused;
  driven_counters counters;
};

struct driven_texts {
  std::string target;
  std::string source;
};

// Executes the target statement once for every row of the source, the row's columns bound to the target's markers in
// order, typed as they come; nothing is committed. The source is prepared for blocks of `rowset` rows (at least 2).
// What fails is told by message boxes: from the second failing row on, they can be silenced for the rest of the run.
// When the connection is lost the run ends with the row that met it.
driven_result drive(std::shared_ptr<odbcstmt> target, std::shared_ptr<odbcstmt> source, const driven_texts& texts,
                    int rowset, driven_host& host);

// What is told at the end of a run that is done.
std::string driven_summary(std::int64_t written);
