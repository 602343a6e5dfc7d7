#pragma once

#include <gtest/gtest.h>

#include "odbc/odbcd.h"
#include "params/parameter_values.h"
#include "scripted_driver.h"
#include "support/engines.h"
#include "support/odbc_sandbox.h"
#include "support/recording_user_interface.h"
#include "support/scoped_state.h"

using texts = std::vector<std::string>;

inline std::vector<scripted::parameter> integers(int count) {
  return std::vector<scripted::parameter>(static_cast<std::size_t>(count), {SQL_INTEGER, 10});
}

// A connection to an engine, for statements with markers; the day is 2001-05-17.
class prepared_test : public testing::Test {
 public:
  ~prepared_test() override {
    EXPECT_TRUE(con.Free() || con.Disconnect());
    EXPECT_TRUE(ODBCD::odbc_free_env());
  }

 protected:
  prepared_test() : prepared_test({"scripted", "SCRIPTED", "TESTER", "SECRET"}) {}
  explicit prepared_test(const engine& which) {
    scripted::control().reset();
    EXPECT_TRUE(ODBCD::odbc_alloc_env());
    connect_to(con, which);
  }
  // A new statement on the scripted driver whose text has these markers.
  std::shared_ptr<odbcstmt> prepared(std::vector<scripted::parameter> markers, bool is_call = false,
                                     std::map<SQLUSMALLINT, scripted::cell> outputs = {}) {
    scripted::control().answer_to("scripted", {.parameters = std::move(markers), .outputs = std::move(outputs)});
    return prepared_text("scripted", is_call);
  }
  std::shared_ptr<odbcstmt> prepared_text(const std::string& text, bool is_call) {
    auto statement = std::make_shared<odbcstmt>();
    EXPECT_TRUE(statement->Make(con));
    EXPECT_TRUE(is_call ? statement->ProcPrep(text) : statement->Prep(text)) << diagnostic_text(statement->ErrData());
    return statement;
  }

  recording_user_interface ui;
  held_clock clock;
  odbccon con;
};
