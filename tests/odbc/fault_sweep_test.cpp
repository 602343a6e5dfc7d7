// Every operation with each of its calls failing in turn: the documented number, nothing left open, and the next use
// works.
#include <map>

#include "odbc/odbc_fixture.h"
#include "support/fault_sweep.h"

namespace {

// Function, or function and which of its calls -> the number that its failure leaves. What is not named does no harm.
using fault_map = std::map<std::string, odbc_fault>;

const fault_map preparing{
    {"SQLCancel", odbc_fault::cancel},
    {"SQLFreeStmt 3", odbc_fault::close_cursor},  // the cancel unbinds, resets the parameters and closes;
    {"SQLFreeStmt 4", odbc_fault::cancel},        // the preparation unbinds once more
    {"SQLSetStmtOption", odbc_fault::statement_option},
    {"SQLPrepare", odbc_fault::prepare},
    {"SQLNumResultCols", odbc_fault::count_columns},
    {"SQLNumParams", odbc_fault::count_parameters},
    {"SQLDescribeCol", odbc_fault::describe_column},
    {"SQLBindCol", odbc_fault::bind_column},
    {"SQLDescribeParam", odbc_fault::describe_parameter},
    {"SQLBindParameter", odbc_fault::bind_procedure_parameter}};

class faults : public scripted_test {
 protected:
  void SetUp() override {
    scripted_test::SetUp();
    const std::vector<scripted::column> columns{integer("I"), {"C", SQL_CHAR, 10}, {"L", SQL_LONGVARCHAR, 32700}};
    const std::vector<scripted::parameter> markers{{SQL_INTEGER, 10}, {SQL_VARCHAR, 10}};
    driver.answer_to(
        "q", {.columns = columns, .rows = {{1, "a", "x"}, {2, "b", "y"}, {3, "c", "z"}}, .parameters = markers});
    answer("rows", {integer("I")}, {{1}, {2}, {3}});
  }

  // The statement's sweep: setup leaves it ready, the operation leaves the number that the map names, and then works.
  unsigned sweep(const std::function<bool()>& setup, const std::function<bool()>& operation, const fault_map& numbers) {
    return fault_sweep({.setup = [&] { ASSERT_TRUE(setup()) << diagnostic_text(stmt.ErrData()); },
                        .operation = operation,
                        .check =
                            [&](const scripted::call& struck, bool answered) {
                              const auto number = number_of(struck, numbers);
                              if (!number) {
                                EXPECT_TRUE(answered);
                              } else {
                                EXPECT_TRUE(failed_with(answered, stmt, *number));
                                EXPECT_EQ(stmt.Result(), SQL_ERROR);
                                EXPECT_EQ(stmt.ErrData().native, -4711);
                              }
                              EXPECT_FALSE(stmt.Free());
                              EXPECT_EQ(busy().busy_depth, 0);
                              EXPECT_EQ(driver.open_statements(), 1U);
                              EXPECT_TRUE(setup() && operation()) << "afterwards: " << diagnostic_text(stmt.ErrData());
                            }});
  }

  [[nodiscard]] std::optional<odbc_fault> number_of(const scripted::call& struck, const fault_map& numbers) const {
    int which = 1;
    for (const scripted::call& each : driver.calls(struck.function)) {
      if (each.rc == SQL_ERROR) break;
      ++which;
    }
    for (const std::string& key : {struck.function + ' ' + std::to_string(which), struck.function}) {
      if (const auto found = numbers.find(key); found != numbers.end()) return found->second;
    }
    return std::nullopt;
  }

  bool fresh() { return stmt.Make(con); }
  bool prepared(const char* text, int rowset = 1) { return fresh() && stmt.Prep(text, rowset); }
  bool executed(const char* text, int rowset = 1) { return prepared(text, rowset) && stmt.Execute(); }
};

TEST_F(faults, prep) {
  // A rowset that is lowered takes the whole road twice.
  EXPECT_EQ(sweep([&] { return fresh(); }, [&] { return stmt.Prep("q", 500); }, preparing), 24U);
  EXPECT_GT(sweep([&] { return executed("rows", 3); }, [&] { return stmt.Prep("q"); }, preparing), 14U);
}

TEST_F(faults, proc_prep) {
  answer_markers("call", {{SQL_INTEGER, 10}, {SQL_VARCHAR, 10}});
  EXPECT_EQ(sweep([&] { return fresh(); }, [&] { return stmt.ProcPrep("q", 500); }, preparing), 26U);
}

TEST_F(faults, describing_a_procedures_result) {
  driver.answer_to("call", {.columns = {integer("I"), integer("J")}, .rows = {{1, 2}}, .columns_after_execute = true});
  const fault_map numbers{{"SQLNumResultCols", odbc_fault::count_columns},
                          {"SQLFreeStmt", odbc_fault::bind_column},
                          {"SQLDescribeCol", odbc_fault::describe_column},
                          {"SQLBindCol", odbc_fault::bind_column}};
  EXPECT_EQ(sweep([&] { return fresh() && stmt.ProcPrep("call") && stmt.Execute(); }, [&] { return stmt.ProcSRS(); },
                  numbers),
            6U);
}

// The driver manager may ask for one of the two where the other is called.
const fault_map fetching{{"SQLFetch", odbc_fault::fetch}, {"SQLExtendedFetch", odbc_fault::fetch}};

TEST_F(faults, execute) {
  fault_map numbers = fetching;
  numbers.insert({"SQLExecute", odbc_fault::execute});
  EXPECT_EQ(sweep([&] { return prepared("rows"); }, [&] { return stmt.Execute() && stmt.Fetch(); }, numbers), 3U);
  // A cursor that would not close shows when the execution meets it.
  ASSERT_TRUE(executed("rows"));
  driver.fail("SQLFreeStmt", 1, swept_failure());
  EXPECT_TRUE(failed_with(stmt.Execute(), stmt, odbc_fault::execute));
  EXPECT_TRUE(stmt.Execute());
}

TEST_F(faults, fetch) {
  EXPECT_EQ(sweep([&] { return executed("rows"); }, [&] { return stmt.Fetch() && stmt.Fetch(); }, fetching), 2U);
  std::int64_t rows = 0;
  const auto blocks = [&] { return stmt.ExtFetchNext(rows) && stmt.ExtFetchNext(rows); };
  EXPECT_EQ(fault_sweep({
                .setup = [&] { ASSERT_TRUE(executed("rows", 2)); },
                .operation = blocks,
                .check =
                    [&](const scripted::call&, bool answered) {
                      EXPECT_FALSE(answered);
                      EXPECT_EQ(rows, 0);
                      EXPECT_EQ(stmt.Result(), SQL_ERROR);
                      EXPECT_EQ(stmt.ErrData().native, -4711);
                      EXPECT_TRUE(executed("rows", 2) && blocks());
                    },
            }),
            2U);
}

TEST_F(faults, bind_v) {
  answer_markers("two", {{SQL_INTEGER, 10}, {SQL_VARCHAR, 10}});
  const std::vector<value> values{5, "a"};
  EXPECT_EQ(sweep([&] { return prepared("two"); }, [&] { return stmt.BindV(values) && stmt.Execute(); },
                  {{"SQLBindParameter", odbc_fault::bind_parameter}, {"SQLExecute", odbc_fault::execute}}),
            5U);
}

TEST_F(faults, make_and_one_go) {
  driver.answer_to("delete", {.row_count = 3});
  driver.fail("SQLAllocStmt", 1, swept_failure());
  EXPECT_TRUE(failed_with(stmt.Make(con), stmt, odbc_fault::allocate_statement));
  EXPECT_TRUE(stmt.Free());
  EXPECT_EQ(con.ErrData().native, -4711);
  fault_map numbers = preparing;
  numbers.insert({{"SQLExecute", odbc_fault::execute}});
  EXPECT_GT(sweep([&] { return fresh(); }, [&] { return stmt.CEX("delete"); }, numbers), 3U);
}

TEST_F(faults, connect) {
  // Loading the driver's environment and connection handles belongs to it.
  ASSERT_TRUE(con.Disconnect());
  const auto connect = [&] { return con.Connect("SCRIPTED", "ME", "SECRET"); };
  EXPECT_GE(fault_sweep({
                .setup = [&] { ASSERT_TRUE(con.Free() || con.Disconnect()); },
                .operation = connect,
                .check =
                    [&](const scripted::call&, bool answered) {
                      EXPECT_TRUE(failed_with(answered, con, odbc_fault::connect));
                      EXPECT_TRUE(con.Free());
                      EXPECT_EQ(con.connected_dsn(), "");
                      EXPECT_TRUE(ODBCD::open_connections().empty());
                      EXPECT_EQ(driver.open_connections(), 0U);
                      EXPECT_TRUE(connect() && stmt.Make(con));
                    },
            }),
            3U);
}

TEST_F(faults, disconnect) {
  const auto connected = [&] { return !con.Free() || con.Connect("SCRIPTED", "ME", "SECRET"); };
  EXPECT_GE(fault_sweep({
                .setup = [&] { ASSERT_TRUE(connected() && executed("rows", 2)); },
                .operation = [&] { return con.Disconnect(); },
                .check =
                    [&](const scripted::call& struck, bool answered) {
                      // The driver manager frees the driver's own handles, and does not tell when that fails.
                      if (struck.function == "SQLFreeConnect") ++lost_connections();
                      if (struck.function == "SQLFreeConnect" || struck.function == "SQLFreeEnv") ++lost_environments();
                      if (struck.function == "SQLDisconnect") {
                        EXPECT_TRUE(failed_with(answered, con, odbc_fault::disconnect));
                        EXPECT_EQ(ODBCD::open_connections().size(), 1U);
                        EXPECT_TRUE(con.Disconnect());
                      } else {
                        EXPECT_TRUE(answered);
                      }
                      EXPECT_TRUE(con.Free() && stmt.Free());
                      EXPECT_TRUE(ODBCD::open_connections().empty());
                      EXPECT_EQ(driver.open_statements(), 0U);
                      EXPECT_TRUE(connected() && executed("rows", 2));
                    },
            }),
            4U);
}

}  // namespace
