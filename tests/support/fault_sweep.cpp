#include "support/fault_sweep.h"

#include <gtest/gtest.h>

#include <algorithm>

scripted::failure swept_failure() { return {SQL_ERROR, "HY999", -4711, "the call that was to fail"}; }

unsigned fault_sweep(const swept_operation& swept) {
  constexpr unsigned most_calls = 500;
  scripted::driver& driver = scripted::control();
  for (unsigned nth = 1; nth <= most_calls; ++nth) {
    swept.setup();
    driver.clear_log();
    driver.fail_nth_call(nth, swept_failure());
    const bool answered = swept.operation();
    const bool struck = driver.faults_fired() > 0;
    const auto log = driver.log();
    driver.clear_faults();
    if (!struck) {
      EXPECT_TRUE(answered) << "no call failed";
      return nth - 1;
    }
    const auto failing =
        std::find_if(log.begin(), log.end(), [](const scripted::call& each) { return each.rc == SQL_ERROR; });
    if (failing == log.end()) {
      ADD_FAILURE() << "the failing call is not in the log";
      return nth;
    }
    SCOPED_TRACE(testing::Message() << "call " << nth << " failed: " << failing->function << ' '
                                    << testing::PrintToString(failing->args));
    swept.check(*failing, answered);
  }
  ADD_FAILURE() << "still a fault after " << most_calls << " runs";
  return most_calls;
}
