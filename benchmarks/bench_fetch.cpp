// A million rows of six columns through the statement object, beside a bare loop over the same ODBC calls with the same
// buffers.
#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "benchmarks/measure.h"
#include "benchmarks/scratch_database.h"
#include "odbc/odbccon.h"
#include "odbc/odbcstmt.h"

namespace {

constexpr int rows_in_table = 1'000'000;
constexpr int rowset = 500;
constexpr int rounds = 7;
constexpr int isql_rounds = 5;
constexpr int column_count = 6;
constexpr const char* query = "select ID, NAME, AMOUNT, RATIO, CHANGED, REMARK from MILLION";

void make_table(odbccon& connection) {
  odbcstmt statement;
  statement.Make(connection);
  const bool made =
      statement.CEX(
          "create table MILLION (ID integer, NAME varchar(20), AMOUNT decimal(11,2), RATIO double, CHANGED timestamp, "
          "REMARK varchar(60))") &&
      statement.CEX_RCC(fmt::format(
          "insert into MILLION with recursive N(I) as (select 1 union all select I + 1 from N where I < {}) "
          "select I, 'Name ' || I, I / 100.0, I * 0.37, datetime(978307200 + I * 61, 'unixepoch'), 'Remark number ' || "
          "I || ' of a million' from N",
          rows_in_table)) != -1;
  if (!made) give_up("The table can not be made: " + statement.ErrData().text);
}

// The bare loop's own buffers: the layout that the statement object uses, written by hand.
struct bare_buffers {
  std::vector<unsigned char> data;
  std::vector<SQLLEN> lengths;
  std::array<SQLUSMALLINT, rowset> status{};
};

// The rows; `fetch_seconds`, where wanted, receives the time from the first fetch on.
std::int64_t bare_fetch(SQLHDBC connection, double* fetch_seconds = nullptr) {
  SQLHSTMT statement = nullptr;
  SQLAllocStmt(connection, &statement);
  SQLSetStmtOption(statement, SQL_ROWSET_SIZE, rowset);
  if (!SQL_SUCCEEDED(SQLPrepare(statement, reinterpret_cast<SQLCHAR*>(const_cast<char*>(query)), SQL_NTS)))
    give_up("bare prepare");
  SQLSMALLINT count = 0;
  SQLNumResultCols(statement, &count);
  bare_buffers buffers;
  const std::size_t bytes_per_char = current_code_page().max_bytes_per_char();
  const std::array<std::size_t, column_count> widths{4, 20 * bytes_per_char + 1, 8, 8, 16, 60 * bytes_per_char + 1};
  constexpr std::array<SQLSMALLINT, column_count> ctypes{SQL_C_LONG,   SQL_C_CHAR,      SQL_C_DOUBLE,
                                                         SQL_C_DOUBLE, SQL_C_TIMESTAMP, SQL_C_CHAR};
  std::size_t total = 0;
  for (const std::size_t width : widths) total += width * rowset;
  buffers.data.assign(total, 0);
  buffers.lengths.assign(column_count * rowset, 0);
  std::size_t offset = 0;
  for (std::size_t i = 0; i < column_count; ++i) {
    SQLCHAR name[513];
    SQLSMALLINT length = 0, type = 0, scale = 0, nullable = 0;
    SQLULEN precision = 0;
    SQLDescribeCol(statement, static_cast<SQLUSMALLINT>(i + 1), name, 512, &length, &type, &precision, &scale,
                   &nullable);
    SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 1), ctypes[i], &buffers.data[offset],
               static_cast<SQLLEN>(widths[i]), &buffers.lengths[i * rowset]);
    offset += widths[i] * rowset;
  }
  if (!SQL_SUCCEEDED(SQLExecute(statement))) give_up("bare execute");
  std::int64_t rows = 0;
  SQLULEN got = 0;
  const double seconds = seconds_of([&] {
    while (SQL_SUCCEEDED(SQLExtendedFetch(statement, SQL_FETCH_NEXT, 1, &got, buffers.status.data())))
      rows += static_cast<std::int64_t>(got);
  });
  if (fetch_seconds != nullptr) *fetch_seconds = seconds;
  SQLFreeStmt(statement, SQL_DROP);
  return rows;
}

// Fetches through the statement object, reading every cell as well when asked. The sum keeps the reads from being left
// out.
std::int64_t object_fetch(odbccon& connection, bool read_cells, std::size_t& sum) {
  odbcstmt statement;
  if (!statement.Make(connection) || !statement.Prep(query, rowset) || !statement.Execute())
    give_up(statement.ErrData().text);
  std::int64_t rows = 0;
  std::int64_t got = 0;
  while (statement.ExtFetchNext(got)) {
    rows += got;
    if (!read_cells) continue;
    for (std::int64_t row = 0; row < got; ++row) {
      for (int column = 1; column <= column_count; ++column)
        sum += static_cast<std::size_t>(statement.Getc(column, row).type());
    }
  }
  return rows;
}

void expect_all(std::int64_t rows) {
  if (rows != rows_in_table) give_up(fmt::format("{} rows instead of {}", rows, rows_in_table));
}

// Peak resident memory, in KiB, of a process that connects and does the work.
long peak_memory(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) give_up("The memory measurement failed.");
  return usage.ru_maxrss;
}

void object_process() {
  odbccon connection;
  std::size_t sum = 0;
  if (!ODBCD::odbc_alloc_env() || !connection.Connect(scratch_database::data_source, "", "")) give_up("connect");
  expect_all(object_fetch(connection, false, sum));
}

void bare_process() {
  void* environment = nullptr;
  void* connection = bare_connect(environment);
  expect_all(bare_fetch(connection));
}

// Rows per second of the console program's speed test, as it reports them itself.
double speed_test_rate() {
  const std::string command = fmt::format("SORVANE_PWD= '{}' --dsn {} --speed-test --target {} --json -e '{};'",
                                          SORVANE_BATCH, scratch_database::data_source, rows_in_table, query);
  FILE* program = popen(command.c_str(), "r");
  if (program == nullptr) give_up("The console program does not start.");
  std::string line(4096, '\0');
  line.resize(std::fread(line.data(), 1, line.size(), program));
  if (pclose(program) != 0) give_up("The speed test failed.");
  const auto figures = nlohmann::json::parse(line);
  expect_all(figures.at("rows").get<std::int64_t>());
  return figures.at("rows_per_s").get<double>();
}

void measure_speed_test(void* connection) {
  std::vector<double> ratios;
  for (int round = 0; round < rounds; ++round) {
    double seconds = 0;
    expect_all(bare_fetch(connection, &seconds));
    ratios.push_back(speed_test_rate() / (rows_in_table / seconds));
  }
  print_row("sorvane-batch --speed-test over those rows: its rows/s over the fetch phase of the bare loop",
            fmt::format("{:.3f}", median(ratios)), ">= 0.97");
}

// The interactive program of the driver manager prints all the rows into nothing; it gives them one by one, as texts.
void measure_isql() {
  if (std::system("command -v isql > /dev/null") != 0) return;
  const std::string isql = fmt::format("echo '{}' | isql {} -b -d, > /dev/null", query, scratch_database::data_source);
  const std::string batch = fmt::format("SORVANE_PWD= '{}' --dsn {} --all-rows -e '{};' > /dev/null", SORVANE_BATCH,
                                        scratch_database::data_source, query);
  const auto run = [](const std::string& command) {
    if (std::system(command.c_str()) != 0) give_up("A program failed: " + command);
  };
  const auto seconds = median_seconds({[&] { run(isql); }, [&] { run(batch); }}, isql_rounds);
  print_row("sorvane-batch --all-rows, process and all, over isql -b printing the same rows",
            fmt::format("{:.1f} times as fast ({:.2f} s)", seconds[0] / seconds[1], seconds[1]), "");
}

void measure_memory() {
  std::vector<double> differences;
  for (int round = 0; round < 5; ++round) {
    differences.push_back(static_cast<double>(peak_memory(object_process) - peak_memory(bare_process)) / 1024.0);
  }
  print_row("peak memory of that fetch, beyond the bare loop's", fmt::format("{:.1f} MB", median(differences)),
            "<= 4 MB");
}

}  // namespace

int main() {
  const scratch_database database;
  if (peak_memory([] {
        odbccon connection;
        if (!ODBCD::odbc_alloc_env() || !connection.Connect(scratch_database::data_source, "", "")) give_up("connect");
        make_table(connection);
      }) == 0) {
    give_up("The table can not be made.");
  }
  print_table_head();
  measure_memory();

  odbccon connection;
  if (!ODBCD::odbc_alloc_env() || !connection.Connect(scratch_database::data_source, "", "")) give_up("connect");
  void* environment = nullptr;
  void* bare = bare_connect(environment);
  std::size_t sum = 0;
  const auto seconds =
      median_seconds({[&] { expect_all(bare_fetch(bare)); }, [&] { expect_all(object_fetch(connection, false, sum)); },
                      [&] { expect_all(object_fetch(connection, true, sum)); }},
                     rounds);
  const auto rate = [&](std::size_t which) { return rows_in_table / seconds[which] / 1e6; };
  print_row("bare loop, 1,000,000 rows x 6 columns of SQLite, rowset 500",
            fmt::format("{:.2f} million rows/s", rate(0)), "");
  print_row("Prep + Execute + ExtFetchNext: rows/s over the bare loop's",
            fmt::format("{:.3f} ({:.2f} million rows/s)", rate(1) / rate(0), rate(1)), ">= 0.97");
  print_row("the same, every cell read through Getc",
            fmt::format("{:.3f} ({:.2f} million rows/s)", rate(2) / rate(0), rate(2)), ">= 0.75");
  measure_speed_test(bare);
  measure_isql();
  return sum == 0 ? 1 : 0;
}
