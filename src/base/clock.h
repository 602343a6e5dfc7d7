#pragma once

#include <functional>

#include "base/date_time.h"

// Time comes from outside the logic, so that a test can hold it still.
struct clock_source {
  // Seconds with fractions from some fixed moment; never goes back. Only differences are meaningful.
  std::function<double()> seconds;
  // The local date and time of day.
  std::function<date_time()> now;
};

// The machine's own clocks.
clock_source machine_clock();

// The clock in force; starts as the machine's.
clock_source& current_clock();
