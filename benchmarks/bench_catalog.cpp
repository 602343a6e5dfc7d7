// Catalog queries beside a bare loop over the same ODBC calls, on the scripted driver; and the box that shows the
// names.
#include <fmt/format.h>

#include <QApplication>
#include <QCompleter>
#include <QLineEdit>
#include <array>
#include <cstdlib>

#include "base/matrix.h"
#include "benchmarks/measure.h"
#include "benchmarks/scratch_database.h"
#include "odbc/catalog_tables.h"
#include "odbc/odbcstmt.h"
#include "scripted_driver.h"
#include "widgets/name_box.h"

namespace {

constexpr int table_count = 50'000;
constexpr int column_count = 1'600;
constexpr int rounds = 9;

scripted::answer answer_of(const catalog_operation& operation, SQLULEN rows,
                           std::function<scripted::cell(SQLULEN, std::size_t)> cell_at) {
  scripted::answer made;
  for (const catalog_column& each : operation.columns) {
    const bool text = each.cell.ctype == SQL_C_CHAR;
    made.columns.push_back(
        {std::string(each.name), static_cast<SQLSMALLINT>(text ? SQL_VARCHAR : SQL_INTEGER), SQLULEN{128}});
  }
  made.generated = scripted::generated_rows{rows, std::move(cell_at)};
  return made;
}

SQLCHAR* argument(const char* text) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text)); }

// The same calls with the same buffers, written by hand; the cells are left where they are.
std::size_t bare_loop(SQLHDBC connection, const catalog_operation& operation) {
  SQLHSTMT statement = nullptr;
  SQLAllocStmt(connection, &statement);
  const bool tables = &operation == &catalog_operations::tables;
  const SQLRETURN opened =
      tables ? SQLTables(statement, argument(""), 0, argument("LIB"), 3, argument("%"), 1, nullptr, 0)
             : SQLColumns(statement, argument(""), 0, argument("LIB"), 3, argument("T"), 1, nullptr, 0);
  if (!SQL_SUCCEEDED(opened)) give_up("bare catalog call");
  std::vector<unsigned char> row(operation.columns.size() * 600);
  std::array<SQLLEN, 13> lengths{};
  std::size_t offset = 0;
  for (std::size_t i = 0; i < operation.columns.size(); ++i) {
    const catalog_cell& cell = operation.columns[i].cell;
    SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 1), cell.ctype, &row[offset],
               static_cast<SQLLEN>(width_in_bytes(cell)), &lengths.at(i));
    offset += width_in_bytes(cell);
  }
  std::size_t rows = 0;
  while (SQL_SUCCEEDED(SQLFetch(statement))) ++rows;
  SQLFreeStmt(statement, SQL_DROP);
  return rows;
}

std::size_t rows_of(const value& result) {
  if (!result.is(value::kind::table)) give_up("The catalog query failed: " + to_text(result));
  return result.table().second_count();
}

void expect_rows(std::size_t rows, int wanted) {
  scripted::control().clear_log();
  if (rows != static_cast<std::size_t>(wanted)) give_up(fmt::format("{} rows instead of {}", rows, wanted));
}

// The rivals take turns, so many times in a sample that it takes long enough to be measured. A query ends when its
// result is there; taking the result down, and the driver's log, is not timed.
void compare(const std::string& what, const std::function<std::size_t()>& bare, const std::function<value()>& query,
             int rows) {
  const int runs = table_count / rows;
  std::vector<double> ratios;
  std::vector<double> times;
  for (int round = 0; round <= rounds; ++round) {
    double bare_seconds = 0;
    double query_seconds = 0;
    for (int run = 0; run < runs; ++run) {
      std::size_t found = 0;
      bare_seconds += seconds_of([&] { found = bare(); });
      expect_rows(found, rows);
      value result;
      query_seconds += seconds_of([&] { result = query(); });
      expect_rows(rows_of(result), rows);
    }
    if (round == 0) continue;
    ratios.push_back(bare_seconds / query_seconds);
    times.push_back(query_seconds / runs);
  }
  print_row(what + ": rows/s over the bare loop's",
            fmt::format("{:.3f} ({:.1f} ms)", median(ratios), median(times) * 1e3), ">= 0.9");
}

void measure_box(const matrix& tables) {
  constexpr int table_name = 3;
  name_box box;
  box.resize(300, box.sizeHint().height());
  box.show();
  QApplication::processEvents();
  const auto filling = median_seconds({[&] {
                                        QStringList names;
                                        for (std::size_t row = 0; row < tables.second_count(); ++row)
                                          names += QString::fromStdString(to_text(tables(table_name, row)));
                                        box.set_names(names);
                                        QApplication::processEvents();
                                      }},
                                      rounds);
  print_row("the box filled with these names and shown", fmt::format("{:.1f} ms", filling[0] * 1e3), "< 100 ms");
  int typed = 10;  // another one each time: an answer that is known costs nothing
  const auto typing = median_seconds({[&] {
                                       box.lineEdit()->clear();
                                       box.completer()->setCompletionPrefix(QString::number(typed++));
                                       box.completer()->complete();
                                       QApplication::processEvents();
                                     }},
                                     rounds);
  print_row("the names that contain what is typed, offered", fmt::format("{:.1f} ms", typing[0] * 1e3), "< 100 ms");
  const auto opening = median_seconds({[&] {
                                        box.showPopup();
                                        QApplication::processEvents();
                                        box.hidePopup();
                                      }},
                                      rounds);
  print_row("its list opened", fmt::format("{:.1f} ms", opening[0] * 1e3), "< 100 ms");
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const scratch_database database(SCRIPTED_DRIVER_PATH);
  odbccon connection;
  if (!ODBCD::odbc_alloc_env() || !connection.Connect(scratch_database::scripted_source, "", "")) give_up("connect");
  void* environment = nullptr;
  void* bare = bare_connect(environment, scratch_database::scripted_source);
  scripted::control().catalog_answer(
      "SQLTables", answer_of(catalog_operations::tables, table_count, [](SQLULEN row, std::size_t column) {
        const std::array<scripted::cell, 5> cells{nullptr, "LIB", fmt::format("CUST{:06}", row), "TABLE",
                                                  "A remark on the table"};
        return cells.at(column);
      }));
  scripted::control().catalog_answer(
      "SQLColumns", answer_of(catalog_operations::columns, column_count, [](SQLULEN row, std::size_t column) {
        const std::array<scripted::cell, 12> cells{
            nullptr, "LIB", "T", fmt::format("COLUMN_{:04}", row), 4, "INTEGER", 10, 4, 0, 10, 1, "A remark"};
        return cells.at(column);
      }));

  odbcstmt statement;
  if (!statement.Make(connection)) give_up("no statement");
  print_table_head();
  compare(
      fmt::format("TableList of {} tables", table_count), [&] { return bare_loop(bare, catalog_operations::tables); },
      [&] { return statement.TableList("", "LIB", "%"); }, table_count);
  compare(
      fmt::format("ColumnList of {} columns", column_count),
      [&] { return bare_loop(bare, catalog_operations::columns); },
      [&] { return statement.ColumnList("", "LIB", "T"); }, column_count);
  measure_box(statement.TableList("", "LIB", "%").table());
  return 0;
}
