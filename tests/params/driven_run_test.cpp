// The driven query's engine: on the scripted driver, with every call failing in turn, and on real engines.
#include "params/driven_run.h"

#include <functional>

#include "params/prepared.h"
#include "support/fault_sweep.h"
#include "support/printing.h"
#include "support/ticking_clock.h"

namespace {

using scripted::cell;

class recorder final : public driven_host {
 public:
  void begin(std::int64_t) override { ++begun; }
  void show(const driven_counters& counters) override {
    shown.push_back(counters);
    if (while_shown) while_shown();
  }
  [[nodiscard]] bool stop_wanted() const override { return !shown.empty() && shown.back().written >= stop_at; }

  int begun = 0;
  std::vector<driven_counters> shown;
  std::int64_t stop_at = 1'000'000;
  std::function<void()> while_shown;
};

class driven : public prepared_test {
 protected:
  driven() : driven({"scripted", "SCRIPTED", "TESTER", "SECRET"}) {}
  explicit driven(const engine& which) : prepared_test(which) {
    EXPECT_TRUE(target->Make(con) && source->Make(con));
    driver.answer_to("write", {.parameters = {{SQL_INTEGER, 10}, {SQL_VARCHAR, 20}}});
  }
  // A source "read" of numbered rows.
  void answer_rows(SQLULEN count) {
    driver.answer_to(
        "read", {.columns = columns,
                 .generated = scripted::generated_rows{count, [](SQLULEN row, std::size_t column) {
                                                         return column == 0 ? cell(static_cast<std::int32_t>(row) + 1)
                                                                : row % 2 == 0 ? cell("text")
                                                                               : cell();
                                                       }}});
  }
  void answer_rows(std::vector<std::vector<cell>> rows) {
    driver.answer_to("read", {.columns = columns, .rows = std::move(rows)});
  }
  driven_result run(int rowset = 500, const driven_texts& of = {"write", "read"}) {
    return drive(target, source, of, rowset, host);
  }
  // Lets the target's executions fail from the input row on.
  void fail_rows(unsigned from, unsigned times, scripted::failure what = {SQL_ERROR, "23000", -803, "duplicate"}) {
    driver.fail("SQLExecute", from + 1, std::move(what), times);  // the source's own is the first
  }

  const std::vector<scripted::column> columns{{"I", SQL_INTEGER, 10}, {"T", SQL_VARCHAR, 200}};
  scripted::driver& driver = scripted::control();
  std::shared_ptr<odbcstmt> target = std::make_shared<odbcstmt>();
  std::shared_ptr<odbcstmt> source = std::make_shared<odbcstmt>();
  recorder host;
};

void expect_result(const driven_result& result, driven_outcome outcome, const driven_counters& counters) {
  EXPECT_EQ(result.outcome, outcome);
  EXPECT_EQ(result.counters.read, counters.read);
  EXPECT_EQ(result.counters.written, counters.written);
  EXPECT_EQ(result.counters.failed, counters.failed);
}

TEST_F(driven, binds_every_row_of_every_block) {
  const ticking_clock often(1);  // every reading is a new show
  answer_rows(1200);
  expect_result(run(), driven_outcome::done, {1200, 1200, 0});
  std::vector<std::int64_t> read;
  for (const driven_counters& each : host.shown) {
    if (read.empty() || read.back() != each.read) read.push_back(each.read);
  }
  EXPECT_EQ(read, (std::vector<std::int64_t>{500, 1000, 1200}));
  const auto second = driver.executions().at(2).rows.at(0);
  EXPECT_EQ(second[0].c_type, SQL_C_LONG);
  EXPECT_EQ(second[1].length_word, SQL_NULL_DATA);
  EXPECT_TRUE(ui.messages.empty());
  EXPECT_EQ(driven_summary(1200).substr(0, 22), "1200 rows updated!\rUse");

  const ticking_clock seldom(0.001);
  host.shown.clear();
  answer_rows(1200);
  expect_result(run(1), driven_outcome::done, {1200, 1200, 0});  // the block fetch needs two rows
  EXPECT_LT(host.shown.size(), 40U);
  answer_rows(0);
  expect_result(run(), driven_outcome::done, {});
}

TEST_F(driven, refuses_what_does_not_fit_before_anything_runs) {
  answer_rows(3);
  driver.answer_to("one", {.parameters = {{SQL_INTEGER, 10}}});
  driver.answer_to("none", {});
  driver.answer_to("odd", {.columns = {{"I", SQL_INTEGER, 10}, {"B", SQL_BINARY, 4}}, .rows = {{1, "x"}}});
  const std::string errd = "Error return 100 during call to SQLERROR.";
  const struct {
    driven_texts of;
    texts told;
  } cases[] = {{{"one", "read"}, {"Number of columns in source must match number of columns in target!"}},
               {{"none", "none"}, {"The source query must be a query that delivers rows!"}},
               {{"nowhere", "read"}, {"SQL error. Code = -104. State = 37000. Message = "}},
               {{"write", "nowhere"}, {"SQL error. Code = -104. State = 37000. Message = "}},
               {{"write", "odd"}, {errd, "Column 2 (\"B\") has the type Binary (code -2), which can not be fetched."}}};
  for (const auto& each : cases) {
    expect_result(run(500, each.of), driven_outcome::refused, {});
    texts told = ui.take_texts();
    ASSERT_EQ(told.size(), each.told.size());
    for (std::size_t i = 0; i < told.size(); ++i) EXPECT_EQ(told[i].substr(0, each.told[i].size()), each.told[i]);
  }
  EXPECT_TRUE(driver.executions().empty());
  EXPECT_EQ(host.begun, 0);
}

TEST_F(driven, tells_a_failing_row_and_goes_on) {
  answer_rows({{1, "a"}, {2, "b"}, {3, std::string(600, 'x')}, {4, cell()}});
  fail_rows(3, 1);
  expect_result(run(), driven_outcome::done, {4, 3, 1});
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0].text.substr(0, 60),
            "Error @ input row: 3 data =  data 1 = 3 data 2 = " + std::string(11, 'x'));
  EXPECT_LT(ui.messages[0].text.size(), 600U);
  EXPECT_EQ(ui.messages[0].details, "SQL error. Code = -803. State = 23000. Message = duplicate.");
  EXPECT_EQ(ui.messages[0].title, "");
  EXPECT_TRUE(ui.check_boxes.empty());
}

TEST_F(driven, failing_rows_can_be_silenced_and_are_counted_all_the_same) {
  answer_rows(100);
  fail_rows(1, 100);
  ui.ticks = {false, true};
  expect_result(run(), driven_outcome::done, {100, 0, 100});
  EXPECT_EQ(ui.messages.size(), 3U);
  EXPECT_EQ(ui.check_boxes, texts(2, "&Do not show again for this run"));
}

TEST_F(driven, rows_that_can_not_be_read_or_bound_are_told_and_not_executed) {
  driver.answer_to("dates",
                   {.columns = {{"D", SQL_DATE, 10}},
                    .rows = {{DATE_STRUCT{2001, 5, 17}}, {DATE_STRUCT{2001, 2, 30}}, {DATE_STRUCT{2001, 5, 18}}},
                    .fetch_failures = {{2, {SQL_SUCCESS_WITH_INFO, "01S01", 0, "error in row"}}}});
  driver.answer_to("one", {.parameters = {{SQL_DATE, 10}}});
  expect_result(run(500, {"one", "dates"}), driven_outcome::done, {3, 1, 2});
  ASSERT_EQ(ui.messages.size(), 2U);
  EXPECT_EQ(ui.messages[0].details, "A column holds a value that can not be bound, such as a date that is none.");
  EXPECT_EQ(ui.messages[1].details, "The source row could not be read.");
}

TEST_F(driven, ends_early_and_says_so) {
  answer_rows(1000);
  fail_rows(400, scripted::always, {SQL_ERROR, "08S01", 0, "gone"});
  expect_result(run(), driven_outcome::broken, {500, 399, 1});
  EXPECT_EQ(ui.take_texts().back(), "The connection was lost. The run ends at input row 400.");
  driver.clear_faults();

  driver.fail("SQLExtendedFetch", 2, {SQL_ERROR, "S1000", -7, "disk"});
  expect_result(run(), driven_outcome::broken, {500, 500, 0});
  EXPECT_EQ(ui.take_texts(), texts{"SQL error. Code = -7. State = S1000. Message = disk."});
  driver.clear_faults();

  const ticking_clock often(1);
  host.stop_at = 7;
  host.shown.clear();
  expect_result(run(), driven_outcome::stopped, {500, 7, 0});
  host.stop_at = 1'000'000;
  // The statements freed while the host shows the counters, and while a row's message is open.
  for (const bool in_message : {false, true}) {
    EXPECT_TRUE(target->Make(con) && source->Make(con));
    host = {};
    const auto free_both = [&] {
      if (in_message || host.shown.size() == 5) target->Kill(), source->Kill();
    };
    if (in_message) {
      fail_rows(3, 1);
      ui.while_open = [&](const message&) { free_both(); };
    } else {
      host.while_shown = free_both;
    }
    expect_result(run(), driven_outcome::broken, {500, in_message ? 2 : 4, in_message ? 1 : 0});
    EXPECT_EQ(driver.open_statements(), 0U);
  }
}

TEST_F(driven, every_call_may_fail) {
  answer_rows(3);
  const auto all = [&] {
    const driven_result result = run(2);
    return result.outcome == driven_outcome::done && result.counters == driven_counters{3, 3, 0};
  };
  EXPECT_GT(fault_sweep({.setup =
                             [&] {
                               ASSERT_TRUE(target->Make(con) && source->Make(con));
                               ui.take_texts();
                             },
                         .operation = all,
                         .check =
                             [&](const scripted::call& struck, bool answered) {
                               const bool harmless =
                                   struck.function == "SQLRowCount" || struck.function == "SQLFreeStmt";
                               EXPECT_TRUE(answered || !ui.messages.empty());
                               EXPECT_TRUE(!answered || harmless);
                               EXPECT_EQ(busy().busy_depth, 0);
                               EXPECT_TRUE(target->Make(con) && source->Make(con) && all());
                             }}),
            30U);
}

class driven_engines : public driven, public testing::WithParamInterface<engine> {
 protected:
  driven_engines() : driven(GetParam()) {
    EXPECT_TRUE(con.SetACOff());
    EXPECT_TRUE(ask("create temporary table kept(i integer primary key, t text)") == "");
  }
  std::string ask(const std::string& text) {
    odbcstmt statement;
    EXPECT_TRUE(statement.Make(con) && statement.CEX(text)) << diagnostic_text(statement.ErrData());
    return statement.NCols() > 0 && statement.Fetch() ? to_text(statement.Getc(1)) : "";
  }
  static std::string numbers(int count, const std::string& columns) {
    return "with recursive n(i) as (select 1 union all select i + 1 from n where i < " + std::to_string(count) +
           ") select " + columns + " from n";
  }
};
class driven_postgres : public driven_engines {};

TEST_P(driven_engines, copy_rows_with_long_texts_and_nulls_past_bad_ones) {
  // Long texts make the block smaller than asked; row 30 comes twice.
  const std::string cells = "case when i = 31 then 30 else i end, case when i = 5 then null when i = 6 then '" +
                            std::string(5000, 'x') + "' else cast(i as varchar(10)) end";
  expect_result(run(500, {"insert into kept values(?,?)", numbers(1000, cells)}), driven_outcome::done, {1000, 998, 2});
  ASSERT_EQ(ui.messages.size(), 2U);
  EXPECT_EQ(ui.messages[0].details,
            "Column 2 holds a longer text than the driver described (255 characters); it would be written cut.");
  EXPECT_EQ(ui.messages[1].text, "Error @ input row: 31 data =  data 1 = 30 data 2 = 31");
  EXPECT_EQ(ask("select count(*) from kept where cast(i as varchar(10)) = t"), "997");
  EXPECT_EQ(ask("select count(*) from kept where t is null"), "1");
  // A column of long texts takes it.
  ask("insert into kept values(6, '" + std::string(5000, 'x') + "')");
  expect_result(run(500, {"insert into kept values(?,?)", "select i + 2000, t from kept where i = 6"}),
                driven_outcome::done, {1, 1, 0});
  EXPECT_EQ(ask("select length(t) from kept where i = 2006"), "5000");
}

TEST_P(driven_postgres, a_server_that_goes_half_way_ends_the_run) {
  odbccon other;
  odbcstmt there;
  connect_to(other, GetParam());
  ASSERT_TRUE(there.Make(other));
  const std::string backend = ask("select pg_backend_pid()");
  const ticking_clock often(1);
  host.while_shown = [&] {
    if (host.shown.back().written == 20) {
      EXPECT_TRUE(there.CEX("select cast(pg_terminate_backend(" + backend + ", 5000) as integer)"));
    }
  };
  expect_result(run(500, {"insert into kept(i) values(?)", numbers(100, "i")}), driven_outcome::broken,
                {100, 20, 2});  // the driver says so at the second row only
  EXPECT_EQ(ui.take_texts().back(), "The connection was lost. The run ends at input row 22.");
  EXPECT_TRUE(other.Disconnect());
}

const auto no_suffix = [](const auto&) { return std::string("engine"); };
INSTANTIATE_TEST_SUITE_P(sqlite, driven_engines, testing::Values(sqlite()), no_suffix);
INSTANTIATE_TEST_SUITE_P(postgres, driven_engines, testing::Values(postgres()), no_suffix);
INSTANTIATE_TEST_SUITE_P(postgres, driven_postgres, testing::Values(postgres()), no_suffix);

}  // namespace
