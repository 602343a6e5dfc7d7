#include "shell/insert_test.h"

#include <array>

#include "base/clock.h"
#include "base/number_format.h"
#include "base/user_interface.h"
#include "odbc/odbcstmt.h"

void run_insert_test(odbccon& connection) {
  odbcstmt statement;
  statement.Make(connection);
  statement.Prep("insert into news.testtrg1 (a,b,c) values (?,?,?)");
  statement.Errd();
  const clock_source& clock = current_clock();
  const double start = clock.seconds();
  for (std::int32_t i = 1; i <= 100; ++i) {
    statement.BindA({1, {i, "TST", date_time{clock.now().days, 0}}});
    if (!statement.Execute()) statement.Errd();
  }
  connection.Commit();
  show_message({number_text(101.0 / (clock.seconds() - start)) + " ", {}, message_icon::none, message_buttons::ok, {}});
}
