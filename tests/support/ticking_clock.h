#pragma once

#include "support/scoped_state.h"

// A clock that goes on by the same step at every reading of its seconds; 2001-05-17 13:45:30 all the time.
class ticking_clock {
 public:
  explicit ticking_clock(double step) : step_(step) {}
  void set_step(double step) { step_ = step; }

 private:
  double step_;
  double seconds_ = 4096;
  scoped_replacement<clock_source> installed_{current_clock(),
                                              {[this] { return seconds_ += step_; },
                                               [] {
                                                 return date_time{37028, 49530};
                                               }}};
};
