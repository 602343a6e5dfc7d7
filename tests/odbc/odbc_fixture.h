#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/matrix.h"
#include "odbc/odbccon.h"
#include "odbc/odbcd.h"
#include "odbc/odbcstmt.h"
#include "scripted_driver.h"
#include "support/printing.h"
#include "support/recording_user_interface.h"

using texts = std::vector<std::string>;

// Did an operation answer false and leave the fault's number in its object?
template <typename Object>
testing::AssertionResult failed_with(bool answered, const Object& object, odbc_fault fault) {
  if (answered) return testing::AssertionFailure() << "it succeeded";
  if (object.last_error() == error_number(fault)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "its number is " << object.last_error() - object_error_base << ", Result "
                                     << object.Result();
}

// An allocated environment and a user interface that records.
class odbc_test : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(ODBCD::odbc_alloc_env()); }
  void TearDown() override {
    EXPECT_TRUE(ODBCD::odbc_free_env());
    EXPECT_TRUE(ODBCD::open_connections().empty());
    EXPECT_EQ(busy().busy_depth, 0);
  }

  recording_user_interface ui;
};

// A connection to the scripted driver with one statement, and an empty call log. Nothing may be left open in the
// driver.
class scripted_test : public odbc_test {
 protected:
  void SetUp() override {
    driver.reset();
    odbc_test::SetUp();
    ASSERT_TRUE(con.Connect("SCRIPTED", "ME", "SECRET")) << diagnostic_text(con.connect_failure());
    ASSERT_TRUE(stmt.Make(con));
    driver.clear_log();
  }
  void TearDown() override {
    driver.clear_faults();
    EXPECT_TRUE(con.Free() || con.Disconnect());
    odbc_test::TearDown();
    EXPECT_EQ(driver.open_statements(), 0U);
    EXPECT_EQ(driver.open_connections(), lost_connections());
    EXPECT_EQ(driver.open_environments(), lost_environments());
  }

  // What the driver manager itself gave up after the driver had failed to free it; no test gets it back.
  static std::size_t& lost_connections() {
    static std::size_t count = 0;
    return count;
  }
  static std::size_t& lost_environments() {
    static std::size_t count = 0;
    return count;
  }

  // A query of these columns and rows under a text of its own.
  void answer(const std::string& text, std::vector<scripted::column> columns,
              std::vector<std::vector<scripted::cell>> rows = {}) {
    driver.answer_to(text, {.columns = std::move(columns), .rows = std::move(rows)});
  }
  // A statement without a result but with markers.
  void answer_markers(const std::string& text, std::vector<scripted::parameter> markers,
                      std::map<SQLUSMALLINT, scripted::cell> outputs = {}) {
    driver.answer_to(text, {.parameters = std::move(markers), .outputs = std::move(outputs)});
  }
  // The logged calls as "SQLFreeStmt 0", arguments joined by blanks; those whose function is in `only`, or all.
  [[nodiscard]] texts logged(const texts& only = {}) const {
    texts lines;
    for (const scripted::call& each : driver.log()) {
      if (!only.empty() && std::find(only.begin(), only.end(), each.function) == only.end()) continue;
      lines.push_back(each.function);
      for (const std::string& argument : each.args) lines.back() += ' ' + argument;
    }
    return lines;
  }

  scripted::driver& driver = scripted::control();
  odbccon con;
  odbcstmt stmt;
};

// An integer column of this name.
inline scripted::column integer(std::string name) { return {std::move(name), SQL_INTEGER, 10}; }
