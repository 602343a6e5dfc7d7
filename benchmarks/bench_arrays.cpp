// Rows written in blocks through parameter arrays, one by one, and driven by a query, each beside a bare loop over the
// same ODBC calls; on SQLite and, where a server is given, on PostgreSQL.
#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "base/user_interface.h"
#include "benchmarks/measure.h"
#include "benchmarks/scratch_database.h"
#include "odbc/odbccon.h"
#include "odbc/odbcstmt.h"
#include "params/driven_run.h"

namespace {

constexpr int rows_in_load = 100'000;
constexpr int rows_one_by_one = 10'000;
constexpr int block = 500;
constexpr int rounds = 5;
constexpr int isql_rounds = 5;
constexpr int column_count = 5;
constexpr const char* insert = "insert into LOADED values(?,?,?,?,?)";
constexpr const char* query = "select ID, NAME, AMOUNT, RATIO, CHANGED from SOURCE";

void must(SQLRETURN rc, const char* what) {
  if (!SQL_SUCCEEDED(rc)) give_up(what);
}

// The rows, as a program has them.
struct native_row {
  int id;
  std::string name;
  double amount;
  double ratio;
  date_fields changed;
};
std::vector<native_row> native_rows;
std::vector<std::array<value, column_count>> value_rows;

void make_rows() {
  for (int i = 0; i < rows_in_load; ++i) {
    const date_time moment{37000 + i % 5000, i % 86'400};
    native_rows.push_back({i, fmt::format("Name {}", i), i / 100.0, i * 0.37, fields_of(moment)});
    value_rows.push_back({i, fmt::format("Name {}", i), i / 100.0, i * 0.37, moment});
  }
}

// A connection, and how its driver describes the five markers: as what they are, or each as a text.
struct bench_engine {
  std::string name;
  odbccon con;
  bool typed_markers = false;

  void run(const std::string& text) {
    odbcstmt statement;
    if (!statement.Make(con) || !statement.CEX(text)) give_up(text + ": " + statement.ErrData().text);
  }
  void make_table(const std::string& table) {
    run("drop table if exists " + table);
    run("create table " + table +
        "(ID integer, NAME varchar(20), AMOUNT decimal(11,2), RATIO double precision, CHANGED timestamp)");
  }
  void make_tables() {
    make_table("LOADED");
    make_table("SOURCE");
    odbcstmt statement;
    statement.Make(con);
    if (!statement.Prep(insert)) give_up(statement.ErrData().text);
    typed_markers = statement.Pkind(1) == parameter_kind::integer;
    con.SetACOff();
  }
  // A new one: what deleted rows leave behind would slow the next round.
  void empty_table() {
    make_table("LOADED");
    con.Commit();
  }
};

struct bare_statement {
  explicit bare_statement(bench_engine& on, const char* text) {
    must(SQLAllocStmt(on.con.Handle(), &handle), "bare statement");
    must(SQLPrepare(handle, reinterpret_cast<SQLCHAR*>(const_cast<char*>(text)), SQL_NTS), "bare prepare");
  }
  ~bare_statement() { SQLFreeStmt(handle, SQL_DROP); }
  bare_statement(const bare_statement&) = delete;
  bare_statement& operator=(const bare_statement&) = delete;
  SQLHSTMT handle = nullptr;
};

// The bare loops' cells: the C types that the statement object uses, in cells as narrow as the data allow.
struct bare_cells {
  static constexpr std::size_t text_width = 32;
  bare_cells(bench_engine& on, SQLHSTMT statement) : typed(on.typed_markers) {
    for (int i = 0; i < column_count; ++i) {
      const auto at = static_cast<std::size_t>(i);
      SQLSMALLINT type = 0, scale = 0, nullable = 0;
      SQLULEN precision = 0;
      must(SQLDescribeParam(statement, static_cast<SQLUSMALLINT>(i + 1), &type, &precision, &scale, &nullable),
           "bare describe");
      const SQLSMALLINT ctype = !typed ? SQLSMALLINT{SQL_C_CHAR} : ctypes[at];
      widths[at] = ctype == SQL_C_LONG ? 4 : ctype == SQL_C_DOUBLE ? 8 : text_width;
      data[at].assign(widths[at] * block, 0);
      lengths[at].assign(block, 0);
      must(SQLBindParameter(statement, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT_OUTPUT, ctype, type, precision,
                            scale, data[at].data(), static_cast<SQLLEN>(widths[at]), lengths[at].data()),
           "bare bind");
    }
  }
  void put(std::size_t row, const native_row& from) {
    if (typed) {
      std::memcpy(&data[0][row * 4], &from.id, 4);
      std::memcpy(&data[2][row * 8], &from.amount, 8);
      std::memcpy(&data[3][row * 8], &from.ratio, 8);
      lengths[0][row] = 4;
      lengths[2][row] = lengths[3][row] = 8;
    } else {
      print(0, row, "%d", from.id);
      print(2, row, "%.15g", from.amount);
      print(3, row, "%.15g", from.ratio);
    }
    std::memcpy(&data[1][row * text_width], from.name.c_str(), from.name.size() + 1);
    lengths[1][row] = static_cast<SQLLEN>(from.name.size());
    const date_fields& at = from.changed;
    print(4, row, typed ? "%04d-%02d-%02d %02d:%02d:%02d.000000" : "%04d-%02d-%02d %02d:%02d:%02d", at.year, at.month,
          at.day, at.hour, at.minute, at.second);
  }
  template <typename... Parts>
  void print(std::size_t column, std::size_t row, const char* form, Parts... parts) {
    lengths[column][row] =
        std::snprintf(reinterpret_cast<char*>(&data[column][row * text_width]), text_width, form, parts...);
  }

  static constexpr std::array<SQLSMALLINT, column_count> ctypes{SQL_C_LONG, SQL_C_CHAR, SQL_C_DOUBLE, SQL_C_DOUBLE,
                                                                SQL_C_CHAR};
  bool typed;
  std::array<std::size_t, column_count> widths{};
  std::array<std::vector<unsigned char>, column_count> data;
  std::array<std::vector<SQLLEN>, column_count> lengths;
};

void bare_load(bench_engine& on, std::size_t rows, std::size_t rows_per_block) {
  const bare_statement statement(on, insert);
  bare_cells cells(on, statement.handle);
  SQLULEN row = 0;
  for (std::size_t first = 0; first < rows; first += rows_per_block) {
    for (std::size_t i = 0; i < rows_per_block; ++i) cells.put(i, native_rows[first + i]);
    must(SQLParamOptions(statement.handle, rows_per_block, &row), "bare options");
    SQLFreeStmt(statement.handle, SQL_CLOSE);
    must(SQLExecute(statement.handle), "bare execute");
  }
  on.con.Commit();
}

void object_load(bench_engine& on) {
  odbcstmt statement;
  if (!statement.Make(on.con) || !statement.MrPrep(insert, block)) give_up(statement.ErrData().text);
  for (std::size_t first = 0; first < value_rows.size(); first += block) {
    for (int row = 0; row < block; ++row) {
      const auto& values = value_rows[first + static_cast<std::size_t>(row)];
      for (int marker = 1; marker <= column_count; ++marker) {
        if (!statement.MrBindParm(values[static_cast<std::size_t>(marker - 1)], marker, row)) give_up("a cell");
      }
    }
    if (!statement.MrExecute(block)) give_up(statement.ErrData().text);
  }
  on.con.Commit();
}

void object_one_by_one(bench_engine& on) {
  odbcstmt statement;
  if (!statement.Make(on.con) || !statement.Prep(insert)) give_up(statement.ErrData().text);
  for (std::size_t row = 0; row < rows_one_by_one; ++row) {
    if (!statement.BindV(value_rows[row]) || !statement.Execute()) give_up(statement.ErrData().text);
  }
  on.con.Commit();
}

// The driven query's calls, cells bound straight from the fetched block to the markers.
void bare_drive(bench_engine& on) {
  const bare_statement source(on, query);
  const bare_statement target(on, insert);
  must(SQLSetStmtOption(source.handle, SQL_ROWSET_SIZE, block), "bare rowset");
  std::array<SQLSMALLINT, column_count> types{}, scales{};
  std::array<SQLULEN, column_count> precisions{};
  std::array<std::vector<unsigned char>, column_count> data;
  std::array<std::vector<SQLLEN>, column_count> lengths;
  constexpr std::array<SQLSMALLINT, column_count> ctypes{SQL_C_LONG, SQL_C_CHAR, SQL_C_DOUBLE, SQL_C_DOUBLE,
                                                         SQL_C_TIMESTAMP};
  constexpr std::array<std::size_t, column_count> widths{4, 81, 8, 8, 16};
  std::array<SQLUSMALLINT, block> status{};
  for (std::size_t i = 0; i < column_count; ++i) {
    const auto number = static_cast<SQLUSMALLINT>(i + 1);
    SQLSMALLINT nullable = 0;
    must(SQLDescribeParam(target.handle, number, &types[i], &precisions[i], &scales[i], &nullable), "bare describe");
    data[i].assign(widths[i] * block, 0);
    lengths[i].assign(block, 0);
    must(
        SQLBindCol(source.handle, number, ctypes[i], data[i].data(), static_cast<SQLLEN>(widths[i]), lengths[i].data()),
        "bare column");
  }
  must(SQLExecute(source.handle), "bare query");
  SQLULEN rows = 0;
  while (SQL_SUCCEEDED(SQLExtendedFetch(source.handle, SQL_FETCH_NEXT, 1, &rows, status.data()))) {
    for (SQLULEN row = 0; row < rows; ++row) {
      SQLFreeStmt(target.handle, SQL_RESET_PARAMS);
      for (std::size_t i = 0; i < column_count; ++i) {
        must(SQLBindParameter(target.handle, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT_OUTPUT, ctypes[i],
                              types[i], precisions[i], scales[i], &data[i][row * widths[i]],
                              static_cast<SQLLEN>(widths[i]), &lengths[i][row]),
             "bare bind");
      }
      SQLFreeStmt(target.handle, SQL_CLOSE);
      must(SQLExecute(target.handle), "bare execute");
    }
  }
  on.con.Commit();
}

class unwatched final : public driven_host {
 public:
  void begin(std::int64_t) override {}
  void show(const driven_counters&) override {}
  [[nodiscard]] bool stop_wanted() const override { return false; }
};

void object_drive(bench_engine& on) {
  const auto target = std::make_shared<odbcstmt>();
  const auto source = std::make_shared<odbcstmt>();
  unwatched host;
  target->Make(on.con);
  source->Make(on.con);
  const driven_result result = drive(target, source, {insert, query}, block, host);
  if (result.counters.written != rows_one_by_one) give_up("the driven query wrote too little");
  on.con.Commit();
}

// A script of single inserts in one transaction; the password comes along where there is one.
std::string isql_command(const scratch_database& database, bool postgres) {
  const std::string script = database.folder() + "/inserts.sql";
  std::ofstream lines(script);
  lines << "begin\n";
  for (int i = 0; i < rows_one_by_one; ++i) {
    const native_row& row = native_rows[static_cast<std::size_t>(i)];
    lines << fmt::format("insert into LOADED values({},'{}',{},{},'{:04}-{:02}-{:02} {:02}:{:02}:{:02}')\n", row.id,
                         row.name, row.amount, row.ratio, row.changed.year, row.changed.month, row.changed.day,
                         row.changed.hour, row.changed.minute, row.changed.second);
  }
  lines << "commit\n";
  return postgres ? fmt::format("isql {} {} {} -b < {} > /dev/null", scratch_database::postgres_source,
                                scratch_database::postgres_user, scratch_database::postgres_password, script)
                  : fmt::format("isql {} -b < {} > /dev/null", scratch_database::data_source, script);
}

void measure(bench_engine& on, const std::string& isql) {
  const auto empty = [&] { on.empty_table(); };
  const auto load = median_seconds({[&] { bare_load(on, rows_in_load, block); }, [&] { object_load(on); },
                                    [&] { object_one_by_one(on); }, [&] { bare_load(on, rows_one_by_one, 1); }},
                                   rounds, empty);
  const double bare = rows_in_load / load[0];
  const double ours = rows_in_load / load[1];
  const double singly = rows_one_by_one / load[2];
  const std::string what = on.name + ": ";
  print_row(what + "bare array loop, 100,000 rows x 5 columns in blocks of 500", fmt::format("{:.0f} rows/s", bare),
            "");
  print_row(what + "MrBindParm + MrExecute: rows/s over the bare loop's",
            fmt::format("{:.3f} ({:.0f} rows/s)", ours / bare, ours), ">= 0.9");
  print_row(what + "the same over BindV + Execute row by row",
            fmt::format("{:.2f} ({:.0f} rows/s singly)", ours / singly, singly),
            ">= 5 where the driver sends arrays in blocks");
  print_row(what + "the bare array loop over a bare loop row by row, which is what the driver makes of arrays",
            fmt::format("{:.2f}", bare * load[3] / rows_one_by_one), "");

  on.run(fmt::format("insert into SOURCE select * from LOADED where ID < {}", rows_one_by_one));
  on.con.Commit();
  const auto drive = median_seconds({[&] { bare_drive(on); }, [&] { object_drive(on); }}, rounds, empty);
  print_row(what + "driven query, 10,000 rows: rows/s over a bare loop of the same calls",
            fmt::format("{:.3f} ({:.0f} rows/s)", drive[0] / drive[1], rows_one_by_one / drive[1]), ">= 0.9");

  if (std::system("command -v isql > /dev/null") != 0) return;
  const auto scripted = median_seconds({[&] {
                                         if (std::system(isql.c_str()) != 0) give_up("isql failed");
                                       }},
                                       isql_rounds, empty);
  print_row(what + "MrBindParm + MrExecute: rows/s over isql -b with a script of inserts",
            fmt::format("{:.1f} ({:.0f} rows/s)", ours * scripted[0] / rows_one_by_one, rows_one_by_one / scripted[0]),
            "");
}

}  // namespace

int main() {
  const scratch_database database;
  make_rows();
  if (!ODBCD::odbc_alloc_env()) give_up("environment");
  print_table_head();
  {
    bench_engine sqlite{"SQLite", {}};
    if (!sqlite.con.Connect(scratch_database::data_source, "", "")) give_up("connect");
    sqlite.make_tables();
    measure(sqlite, isql_command(database, false));
  }
  if (!database.has_postgres()) return 0;
  bench_engine postgres{"PostgreSQL", {}};
  if (!postgres.con.Connect(scratch_database::postgres_source, scratch_database::postgres_user,
                            scratch_database::postgres_password)) {
    give_up(postgres.con.connect_failure().text);
  }
  postgres.make_tables();
  measure(postgres, isql_command(database, true));
}
