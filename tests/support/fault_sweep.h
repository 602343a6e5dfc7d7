#pragma once

#include <functional>

#include "scripted_driver.h"

// An operation run again and again on the scripted driver, each time with another of its calls failing.
struct swept_operation {
  std::function<void()> setup;      // before each run, with no fault waiting
  std::function<bool()> operation;  // the first, the second, ... call that reaches the driver fails
  // After each run that met its fault: the call that failed, and what the operation answered. No fault is waiting any
  // more.
  std::function<void(const scripted::call& struck, bool answered)> check;
};

// Goes on until a run meets no fault; that run's answer must be true. Gives the number of calls that were made to fail.
unsigned fault_sweep(const swept_operation& swept);

// The failure that strikes in a sweep.
scripted::failure swept_failure();
