#pragma once

#include <fmt/format.h>

#include "base/conversions.h"
#include "odbc/odbc_fixture.h"
#include "support/engines.h"

// A test that runs on each real database, with a connection and a statement on it.
class engines : public odbc_test, public testing::WithParamInterface<engine> {
 protected:
  void SetUp() override {
    odbc_test::SetUp();
    connect_to(con, GetParam());
    ASSERT_TRUE(HasFatalFailure() || stmt.Make(con));
  }
  void TearDown() override {
    EXPECT_TRUE(con.Free() || con.Disconnect()) << diagnostic_text(con.ErrData());
    odbc_test::TearDown();
  }

  testing::AssertionResult runs(odbcstmt& on, const std::string& text) {
    if (on.CEX(text)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << text.substr(0, 80) << ": " << diagnostic_text(on.ErrData());
  }
  testing::AssertionResult runs(const std::string& text) { return runs(stmt, text); }
  // The one value that a query gives, as text.
  std::string one(odbcstmt& on, const std::string& text) {
    return runs(on, text) && on.Fetch() ? to_text(on.Getc(1)) : "(none)";
  }
  testing::AssertionResult makes_numbers(int count) {
    if (auto made = runs("create temporary table numbers(i integer)"); !made) return made;
    return runs(
        fmt::format("insert into numbers with recursive n(i) as (select 1 union all select i + 1 from n where i < {}) "
                    "select i from n",
                    count));
  }
  // Rows as they come: the typed cells, a decimal as a number whatever the engine describes it as.
  std::vector<value> row_cells(std::int64_t row) {
    std::vector<value> cells;
    for (int column = 1; column <= stmt.NCols(); ++column) {
      const value found = stmt.Getc(column, row);
      cells.push_back(column == 6 && !found.is_null() ? to_double(found) : found);
    }
    return cells;
  }

  odbccon con;
  odbcstmt stmt;
};
