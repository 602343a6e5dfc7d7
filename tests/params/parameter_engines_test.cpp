// Typed markers and calls on a real engine. Everything happens in one transaction that is rolled back.
#include "params/prepared.h"
#include "support/printing.h"

namespace {

class parameter_postgres : public prepared_test {
 protected:
  parameter_postgres() : prepared_test(postgres()) { EXPECT_TRUE(con.SetACOff()); }
  void run(const std::string& text) {
    odbcstmt statement;
    ASSERT_TRUE(statement.Make(con) && statement.CEX(text)) << diagnostic_text(statement.ErrData());
  }
  // Types the texts into the statement's markers and executes it.
  void execute(odbcstmt& statement, const texts& typed, bool is_call) {
    auto rows = parameter_rows(statement, {37028, 0});
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->size(), typed.size());
    for (std::size_t i = 0; i < typed.size(); ++i) (*rows)[i].text = typed[i];
    const checked_values checked = values_of(*rows);
    ASSERT_TRUE(checked.ok()) << checked.message;
    ASSERT_TRUE(bind_values(statement, checked.values, is_call));
    ASSERT_TRUE(statement.Execute()) << diagnostic_text(statement.ErrData());
  }
};

TEST_F(parameter_postgres, typed_markers_take_every_handled_type) {
  run("create table typed (c char(3), n numeric(9,2), i integer, s smallint, r real, d double precision, da date, "
      "ti time, ts timestamp, v varchar(20))");
  const auto insert = prepared_text("insert into typed values (?,?,?,?,?,?,?,?,?,?)", false);
  execute(*insert,
          {" b ", "12.25", "12.6", "-7", "1.5", "0.25", "2001-03-04 18:00", "13:45", "5/17/2001 1:45 pm", " x "},
          false);
  execute(*insert, texts(10, "#null#"), false);
  odbcstmt read;
  ASSERT_TRUE(read.Make(con) &&
              read.CEX("select concat_ws('|', '<' || c, n, i, s, r, d, da, ti, ts, v || '.') from typed"));
  ASSERT_TRUE(read.Fetch());
  EXPECT_EQ(read.Getc(1), value("< b|12.25|13|-7|1.5|0.25|2001-03-05|13:45:00|2001-05-17 13:45:00|x."));
  ASSERT_TRUE(read.Fetch());
  EXPECT_EQ(to_text(read.Getc(1)), "");
}

TEST_F(parameter_postgres, a_calls_values_come_back_changed) {
  run("create procedure bump(inout n integer, inout d double precision, inout day date, inout gone integer) language "
      "plpgsql as $$ begin n := n + 1; d := d * 2; day := day + 1; gone := null; end $$");
  const auto call = prepared_text("call bump(?,?,?,?)", true);
  execute(*call, {"41", "0.25", "05/17/2001", "7"}, true);
  texts returned;
  const auto rows = returned_parameter_rows(*call);
  ASSERT_TRUE(rows);
  for (const parameter_row& row : *rows) returned.push_back(row.text);
  EXPECT_EQ(returned, (texts{"42", "0.5", "2001-05-18", ""}));
}

}  // namespace
