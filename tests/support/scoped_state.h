#pragma once

#include <string>
#include <utility>

#include "base/clock.h"
#include "base/code_page.h"
#include "base/conversions.h"

// Puts something into a process-wide place for a scope and the old content back afterwards.
template <typename T>
class scoped_replacement {
 public:
  scoped_replacement(T& place, T put) : place_(place), previous_(std::exchange(place, std::move(put))) {}
  ~scoped_replacement() { place_ = std::move(previous_); }
  scoped_replacement(const scoped_replacement&) = delete;
  scoped_replacement& operator=(const scoped_replacement&) = delete;

 private:
  T& place_;
  T previous_;
};

struct scoped_code_page : scoped_replacement<code_page> {
  explicit scoped_code_page(const std::string& name) : scoped_replacement(current_code_page(), code_page(name)) {}
};

struct scoped_locale_forms : scoped_replacement<locale_forms> {
  explicit scoped_locale_forms(locale_forms forms) : scoped_replacement(current_locale_forms(), std::move(forms)) {}
};

// A clock that stands still at 2001-05-17 13:45:30 (or another moment) until it is advanced.
class held_clock {
 public:
  explicit held_clock(date_time now = {37028, 49530}) : now_(now) {}
  void advance(double seconds) { seconds_ += seconds; }

 private:
  date_time now_;
  double seconds_ = 1000;
  scoped_replacement<clock_source> installed_{current_clock(), {[this] { return seconds_; }, [this] { return now_; }}};
};
