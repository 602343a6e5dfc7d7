#include "base/clock.h"

#include <chrono>
#include <ctime>

namespace {

date_time local_now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const auto date = make_date(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  const auto time = make_time(local.tm_hour, local.tm_min, local.tm_sec);
  return date && time ? *date + *time : date_time{};
}

double steady_seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace

clock_source machine_clock() { return {steady_seconds, local_now}; }

clock_source& current_clock() {
  static clock_source current = machine_clock();
  return current;
}
