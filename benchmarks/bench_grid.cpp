// A result of 500,000 rows in a data window: the copy of each block beside its fetch and beside Qt's item model, and
// then the grid's memory, repaints and sort.
#include <fmt/format.h>
#include <malloc.h>

#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScrollBar>
#include <QStandardItemModel>
#include <algorithm>
#include <cstdlib>

#include "base/conversions.h"
#include "benchmarks/measure.h"
#include "benchmarks/scratch_database.h"
#include "datawindow/datawindow.h"
#include "datawindow/dwf.h"
#include "shell/settings.h"
#include "widgets/flexgrid.h"

namespace {

constexpr int rows_in_table = 500'000;
constexpr int rowset = 500;
constexpr int blocks_compared = 200;
constexpr int column_count = 6;
constexpr int shuffled_column = 4;
constexpr int repaints = 101;
constexpr int sorts = 7;
constexpr const char* query = "select ID, NAME, AMOUNT, RATIO, CHANGED, REMARK from WIDE";

class bare_frame final : public mdi_host {
 public:
  bare_frame() {
    area_.resize(1280, 900);
    area_.show();
  }
  QMdiSubWindow* show_child(QWidget* window) override {
    QMdiSubWindow* child = area_.addSubWindow(window);
    child->showMaximized();
    return child;
  }
  void fill_window_list(QMenu&) override {}
  void show_help() override {}
  void show_about() override {}
  void show_options() override {}
  void show_job_settings() override {}
  void show_note(const QString&) override {}
  void add_recent_file(const QString&) override {}
  settings_store& store() override { return store_; }
  std::shared_ptr<recovery_folder> recovery() override { return nullptr; }
  QString insert_into_document(const QString&) override { return {}; }

 private:
  settings::no_store store_;
  QMdiArea area_;
};

// RATIO comes in no order.
void make_table(odbccon& connection) {
  odbcstmt statement;
  statement.Make(connection);
  const bool made =
      statement.CEX(
          "create table WIDE (ID integer, NAME varchar(20), AMOUNT decimal(11,2), RATIO double, CHANGED timestamp, "
          "REMARK varchar(60))") &&
      statement.CEX_RCC(
          fmt::format("insert into WIDE with recursive N(I) as (select 1 union all select I + 1 from N where I < {}) "
                      "select I, 'Name ' || I, I / 100.0, abs(random() % 1000000) * 0.37, datetime(978307200 + I * 61, "
                      "'unixepoch'), "
                      "'Remark number ' || I || ' of a million' from N",
                      rows_in_table)) != -1;
  if (!made) give_up("The table can not be made: " + statement.ErrData().text);
}

std::size_t heap_bytes() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void append_to_items(QStandardItemModel& model, const odbcstmt& statement, std::int64_t rows) {
  for (std::int64_t row = 0; row < rows; ++row) {
    QList<QStandardItem*> items;
    for (int column = 1; column <= column_count; ++column) {
      const value cell = statement.Getc(column, row);
      items.append(new QStandardItem(cell.is_null() ? "#NULL#" : QString::fromStdString(to_text(cell))));
    }
    model.appendRow(items);
  }
}

// The window fetches and copies every block; another statement fetches the same block alone, which is taken off, and
// for the first blocks copies it into Qt's model.
void measure_copies(odbcstmt& statement, DataWindow& window) {
  std::vector<double> fetches;
  std::vector<double> copies;
  std::vector<double> items;
  QStandardItemModel model;
  for (;;) {
    std::int64_t rows = 0;
    bool ok = false;
    const double fetch = seconds_of([&] { ok = statement.ExtFetchNext(rows); });
    const double both = seconds_of([&] { window.FetchMore(); });
    if (!ok) break;
    QApplication::processEvents();
    if (fetches.size() == blocks_compared) continue;
    fetches.push_back(fetch);
    copies.push_back(both - fetch);
    items.push_back(seconds_of([&] { append_to_items(model, statement, rows); }));
  }
  const flexgrid& grid = window.form()->grid();
  if (grid.Rows() != rows_in_table + 1) give_up(fmt::format("{} rows instead of {}", grid.Rows(), rows_in_table + 1));
  const double copied = median(copies);
  print_row(fmt::format("a block of {} x {} into the grid, over the block's fetch from SQLite (median of {})", rowset,
                        column_count, blocks_compared),
            fmt::format("{:.2f} ({:.3f} ms)", copied / median(fetches), copied * 1e3), "<= 1");
  print_row("the same into a QStandardItemModel, over the grid", fmt::format("{:.1f}", median(items) / copied),
            ">= 10");
}

// Another grid with the same cells.
void copy_cells(const flexgrid& from, int rows, flexgrid& to) {
  const redraw_off still(to);
  to.SetCols(from.Cols());
  for (int row = 0; row < rows; ++row) {
    to.append_row();
    for (int column = 0; column < from.Cols(); ++column) to.append_cell(from.bytes(row, column));
  }
  for (int column = 0; column < from.Cols(); ++column) to.set_column_width(column, from.column_width(column));
  to.SetFixedRows(1);
  to.SetFixedCols(1);
}

// Row numbers count as what is beside the texts.
void measure_memory(const flexgrid& grid) {
  std::size_t text_bytes = 0;
  for (int row = 1; row < grid.Rows(); ++row) {
    for (int column = 1; column <= column_count; ++column) text_bytes += grid.bytes(row, column).size();
  }
  const std::size_t before = heap_bytes();
  const auto copy = std::make_unique<flexgrid>();
  copy_cells(grid, grid.Rows(), *copy);
  copy->set_current(1, shuffled_column);
  copy->select_to(copy->Rows() - 1, shuffled_column);
  copy->sort(sort_direction::ascending);
  const std::size_t grid_bytes = heap_bytes() - before;
  const double beside = static_cast<double>(grid_bytes) - static_cast<double>(text_bytes);
  print_row(fmt::format("bytes a cell beside its text, {} x {}, sorted", rows_in_table, column_count),
            fmt::format("{:.1f}", beside / (1.0 * rows_in_table * column_count)), "<= 12");
}

// Jumps all over the rows, each painted at once.
double repaint_seconds(flexgrid& grid) {
  std::vector<double> samples;
  QScrollBar* bar = grid.verticalScrollBar();
  for (int i = 0; i < repaints; ++i) {
    const int target = static_cast<int>(std::int64_t{i} * 7919 % (bar->maximum() - 1));
    samples.push_back(seconds_of([&] {
      bar->setValue(target);
      grid.viewport()->repaint();
    }));
  }
  return median(samples);
}

void measure_repaints(flexgrid& grid) {
  flexgrid small;
  small.resize(grid.size());
  copy_cells(grid, 500, small);
  small.show();
  QApplication::processEvents();
  const double few = repaint_seconds(small);
  const double many = repaint_seconds(grid);
  print_row(fmt::format("a jump and its repaint, {} x {} pixels, {} rows", grid.width(), grid.height(), rows_in_table),
            fmt::format("{:.2f} ms", many * 1e3), "< 10 ms");
  print_row("the same over that of 500 rows", fmt::format("{:.2f}", many / few), "");
}

struct key {
  double number;
  std::uint32_t row;
};

void measure_sort(flexgrid& grid) {
  std::vector<key> keys;
  std::vector<double> grid_seconds;
  std::vector<double> bare_seconds;
  const auto sort_by = [&](int column) {
    grid.set_current(1, column);
    grid.select_to(grid.Rows() - 1, column);
    grid.sort(sort_direction::ascending);
  };
  for (int round = 0; round <= sorts; ++round) {
    sort_by(1);
    keys.clear();
    for (int row = 1; row < grid.Rows(); ++row) {
      keys.push_back({parse_number(grid.bytes(row, shuffled_column)).value(), static_cast<std::uint32_t>(row)});
    }
    const double bare = seconds_of([&] {
      std::stable_sort(keys.begin(), keys.end(), [](const key& a, const key& b) { return a.number < b.number; });
    });
    const double sorted = seconds_of([&] { sort_by(shuffled_column); });
    if (parse_number(grid.bytes(rows_in_table, shuffled_column)) != keys.back().number) give_up("sorted wrongly");
    if (round == 0) continue;
    grid_seconds.push_back(sorted);
    bare_seconds.push_back(bare);
  }
  print_row(
      fmt::format("{} rows sorted by a column of numbers, over std::stable_sort of the parsed keys", rows_in_table),
      fmt::format("{:.2f} ({:.0f} ms)", median(grid_seconds) / median(bare_seconds), median(grid_seconds) * 1e3),
      "< 1.5");
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const scratch_database database;
  odbccon connection;
  if (!ODBCD::odbc_alloc_env() || !connection.Connect(scratch_database::data_source, "", "")) give_up("connect");
  make_table(connection);
  print_table_head();

  const auto statement = std::make_shared<odbcstmt>();
  odbcstmt alone;
  for (odbcstmt* each : {statement.get(), &alone}) {
    if (!each->Make(connection) || !each->Prep(query, rowset) || !each->Execute()) give_up(each->ErrData().text);
  }
  bare_frame frame;
  const std::shared_ptr<DataWindow> window = DataWindow::open(frame);
  window->SetStatement(query, statement);
  window->SetHeaders();
  measure_copies(alone, *window);
  measure_memory(window->form()->grid());
  measure_repaints(window->form()->grid());
  measure_sort(window->form()->grid());
  return 0;
}
