// The grid as its users fill, move, sort and copy it, in a window that is really laid out.
#include "widgets/flexgrid.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "widgets/twips.h"

namespace {

using texts = std::vector<std::string>;

// Row 0 the titles, column 0 the row numbers.
void fill(flexgrid& grid, const std::vector<texts>& rows) {
  grid.SetRows(0);
  grid.SetCols(static_cast<int>(rows.front().size()));
  for (const texts& row : rows) {
    grid.append_row();
    for (const std::string& text : row) grid.append_cell(text);
  }
  grid.SetFixedRows(1);
  grid.SetFixedCols(1);
}

void fill_numbers(flexgrid& grid, int rows) {
  const redraw_off still(grid);
  grid.SetCols(3);
  for (int i = grid.Rows(); i < rows; ++i) {
    grid.append_row();
    for (const std::string& text : {std::to_string(i), "text " + std::to_string(i), std::to_string(i % 7)})
      grid.append_cell(text);
  }
  grid.SetFixedRows(1);
  grid.SetFixedCols(1);
}

texts column_of(const flexgrid& grid, int column) {
  texts all;
  for (int row = 0; row < grid.Rows(); ++row) all.push_back(grid.text(row, column).toStdString());
  return all;
}

void select_column(flexgrid& grid, int column) {
  grid.set_current(1, column);
  grid.select_to(grid.Rows() - 1, column);
}

TEST(flexgrid_test, sorts_numbers_before_texts_and_keeps_equal_rows_in_order) {
  const struct {
    texts given;
    texts ascending;
    texts descending;
  } cases[] = {
      {{"10", "9", "-1", "1e3", " 2.5 "}, {"-1", " 2.5 ", "9", "10", "1e3"}, {"1e3", "10", "9", " 2.5 ", "-1"}},
      {{"b", "a", "", "B"}, {"", "B", "a", "b"}, {"b", "a", "B", ""}},
      {{"x", "10", "#NULL#", "9", "9.0"}, {"9", "9.0", "10", "#NULL#", "x"}, {"x", "#NULL#", "10", "9", "9.0"}},
      {{"-0", "0", "0.0", "-5", "-40"}, {"-40", "-5", "-0", "0", "0.0"}, {"-0", "0", "0.0", "-5", "-40"}},
      {{"123456789012345678", "1", ".5", "-", ".", "1.2.3"},
       {".5", "1", "123456789012345678", "-", ".", "1.2.3"},
       {"1.2.3", ".", "-", "123456789012345678", "1", ".5"}},
  };
  for (const auto& each : cases) {
    for (const bool ascending : {true, false}) {
      flexgrid grid;
      std::vector<texts> rows{{"", "KEY", "OTHER"}};
      for (std::size_t i = 0; i < each.given.size(); ++i)
        rows.push_back({std::to_string(i + 1), each.given[i], each.given[i] + "!"});
      fill(grid, rows);
      select_column(grid, 1);
      grid.sort(ascending ? sort_direction::ascending : sort_direction::descending);
      texts expected = ascending ? each.ascending : each.descending;
      expected.insert(expected.begin(), "KEY");
      EXPECT_EQ(column_of(grid, 1), expected);
      for (int row = 1; row < grid.Rows(); ++row) {
        const auto number = grid.text(row, 0).toUInt();
        EXPECT_EQ(grid.text(row, 1).toStdString(), each.given[number - 1]) << "whole rows move";
        EXPECT_EQ(grid.text(row, 2), grid.text(row, 1) + "!");
      }
    }
  }
}

TEST(flexgrid_test, sorts_the_selected_rows_by_the_selected_columns) {
  flexgrid grid;
  fill(grid, {{"", "A", "B"}, {"1", "2", "z"}, {"2", "1", "y"}, {"3", "2", "a"}, {"4", "1", "b"}, {"5", "0", "0"}});
  grid.set_current(4, 2);
  grid.select_to(1, 1);
  grid.sort(sort_direction::ascending);
  EXPECT_EQ(column_of(grid, 0), (texts{"", "4", "2", "3", "1", "5"}));
  // Rows that come afterwards, and changes, find their places in the new order.
  grid.AddItem("6\tlast");
  grid.AddItem("7\tfirst\tx\ttoo much", 1);
  grid.set_text(2, 1, QString("changed"));
  grid.RemoveItem(3);
  EXPECT_EQ(column_of(grid, 0), (texts{"", "7", "4", "3", "1", "5", "6"}));
  EXPECT_EQ(column_of(grid, 1), (texts{"A", "first", "changed", "2", "2", "0", "last"}));
  grid.SetCols(2);
  grid.SetRows(3);
  EXPECT_EQ(column_of(grid, 1), (texts{"A", "first", "changed"}));
  EXPECT_EQ(grid.text(1, 2), "");
}

TEST(flexgrid_test, keeps_every_byte_over_many_blocks_and_changes) {
  flexgrid grid;
  const redraw_off still(grid);
  grid.SetCols(2);
  const auto text_of = [](int row) {
    return std::string(static_cast<std::size_t>(row * 37 % 400), char('a' + row % 26));
  };
  for (int row = 0; row < 1500; ++row) {
    grid.append_row();
    grid.append_cell(text_of(row));
    grid.append_cell("x");
  }
  for (int round = 0; round < 30; ++round)
    for (int row = 0; row < 1500; row += 7) grid.set_text(row, 1, std::string_view(text_of(row + round)));
  for (int row = 0; row < 1500; ++row) {
    ASSERT_EQ(grid.bytes(row, 0), text_of(row)) << row;
    ASSERT_EQ(grid.bytes(row, 1), row % 7 == 0 ? text_of(row + 29) : "x") << row;
  }
  const std::string wide(70'000, 'w');
  grid.set_text(3, 0, std::string_view(wide));
  EXPECT_EQ(grid.bytes(3, 0), wide);
  EXPECT_EQ(grid.bytes(4, 0), text_of(4));
}

TEST(flexgrid_test, shows_what_is_no_text_with_a_mark_and_copies_cells_apart) {
  flexgrid grid;
  fill(grid, {{"", "A", "B"},
              {"1", std::string("a\0b", 3), "\xFF"},
              {"2", "tab\there", "line\r\n\"end\""},
              {"3", "\"q\"", ""}});
  EXPECT_EQ(grid.text(1, 1), QString("a\uFFFDb"));
  EXPECT_EQ(grid.text(1, 2), QString("\uFFFD"));
  EXPECT_EQ(grid.bytes(1, 1).size(), 3U);
  grid.set_current(1, 1);
  grid.select_to(3, 2);
  EXPECT_EQ(grid.clip(), QString("a\uFFFDb\t\uFFFD\r\"tab\there\"\t\"line\r\n\"\"end\"\"\"\r\"q\"\t"));
  EXPECT_EQ(grid.row_sel(), 3);
  EXPECT_EQ(grid.column_sel(), 2);
  QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), grid.clip());
}

TEST(flexgrid_test, fixed_cells_stay_and_the_last_row_is_never_fixed) {
  flexgrid grid;
  grid.resize(400, 300);
  grid.SetRows(1);
  grid.SetCols(3);
  grid.SetFixedRows(1);
  EXPECT_EQ(grid.FixedRows(), 0);
  EXPECT_FALSE(grid.horizontalHeader()->isVisibleTo(&grid));
  grid.set_text(0, 1, QString("TITLE"));
  fill_numbers(grid, 500'000);
  grid.show();
  EXPECT_EQ(grid.FixedRows(), 1);
  EXPECT_TRUE(grid.horizontalHeader()->isVisible());
  grid.set_current(499'999, 2);
  EXPECT_GT(grid.verticalScrollBar()->value(), 499'000);
  EXPECT_TRUE(grid.viewport()->rect().contains(grid.cell_rect(499'999, 2)));
  EXPECT_EQ(grid.model()->headerData(0, Qt::Horizontal).toString(), "TITLE");
  EXPECT_EQ(grid.model()->headerData(499'998, Qt::Vertical).toString().trimmed(), "499999");
  EXPECT_GE(grid.verticalHeader()->width(), grid.fontMetrics().horizontalAdvance("499999"));
  grid.SetRows(2);
  EXPECT_EQ(grid.row(), 1) << "a current cell that is gone moves to the nearest";
  grid.SetRows(0);
  grid.set_current(5, 5);
  grid.select_to(7, 7);
  grid.sort(sort_direction::ascending);
  EXPECT_EQ(grid.clip(), "");
}

TEST(flexgrid_test, widths_are_twips_whoever_changes_them) {
  flexgrid grid;
  grid.set_column_width(2, 3375);
  grid.set_column_width(1, 0);
  fill_numbers(grid, 3);
  const QHeaderView& header = *grid.horizontalHeader();
  EXPECT_EQ(header.sectionSize(0), 0);
  EXPECT_EQ(header.sectionSize(1), twips_to_pixels(3375, grid));
  EXPECT_EQ(grid.column_width(2), 3375);
  EXPECT_EQ(grid.column_width(0), flexgrid::default_column_width);
  grid.horizontalHeader()->resizeSection(0, 96);
  EXPECT_EQ(grid.column_width(1), 96 * 1440 / grid.logicalDpiX());
  grid.SetCols(1700);
  EXPECT_EQ(header.sectionSize(1), twips_to_pixels(3375, grid)) << "after a change of shape";
  EXPECT_EQ(grid.cell_rect(1, 2).width(), twips_to_pixels(3375, grid));
}

TEST(flexgrid_test, tells_moves_of_the_current_cell_and_the_end_of_scrolling) {
  flexgrid grid;
  grid.resize(400, 300);
  fill_numbers(grid, 100);
  grid.show();
  grid.set_current(1, 1);
  QSignalSpy moves(&grid, &flexgrid::row_col_changed);
  QSignalSpy ends(&grid, &flexgrid::reached_bottom);
  QTest::keyClick(&grid, Qt::Key_Down);
  EXPECT_EQ(moves.size(), 1);
  grid.set_current(2, 1);
  EXPECT_EQ(moves.size(), 1) << "no move";
  QTest::keyClick(&grid, Qt::Key_End);
  EXPECT_EQ(std::make_pair(grid.row(), grid.column()), std::make_pair(2, 2));
  EXPECT_EQ(ends.size(), 0);
  QTest::keyClick(&grid, Qt::Key_End);
  EXPECT_EQ(grid.row(), 99) << "a second End goes to the last row";
  EXPECT_EQ(ends.size(), 1);
  QScrollBar& bar = *grid.verticalScrollBar();
  bar.setValue(0);
  bar.setSliderDown(true);
  bar.setValue(bar.maximum());
  EXPECT_EQ(ends.size(), 1) << "while it is dragged";
  bar.setSliderDown(false);
  EXPECT_EQ(ends.size(), 2);
  const int top = bar.value();
  fill_numbers(grid, 200);
  QApplication::processEvents();
  EXPECT_EQ(bar.value(), top) << "rows at the end do not move what is in view";
  EXPECT_GT(bar.maximum(), top);
  EXPECT_EQ(grid.row(), 99);
}

// The number of rows, from row 1 on, in which the painted cell holds ink between its left and right lines.
int rows_with_ink(flexgrid& grid, int column, int rows) {
  const QImage image = grid.viewport()->grab().toImage();
  int count = 0;
  for (int row = 1; row <= rows; ++row) {
    const QRect cell = grid.cell_rect(row, column).adjusted(2, 3, -3, -3);
    const QColor paper = image.pixelColor(cell.topRight());
    bool ink = false;
    for (int y = cell.top(); y <= cell.bottom() && !ink; ++y)
      for (int x = cell.left(); x <= cell.right() && !ink; ++x) ink = image.pixelColor(x, y) != paper;
    count += ink ? 1 : 0;
  }
  return count;
}

TEST(flexgrid_test, merged_cells_show_their_text_once_also_after_scrolling) {
  flexgrid grid;
  grid.resize(500, 300);
  std::vector<texts> rows{{"", "A", "B"}};
  for (int i = 1; i <= 60; ++i) rows.push_back({std::to_string(i), i <= 40 ? "same" : "other", "same"});
  fill(grid, rows);
  grid.show();
  EXPECT_EQ(rows_with_ink(grid, 2, 5), 5);
  grid.set_current(50, 1);
  grid.verticalScrollBar()->setValue(0);
  grid.set_free_merging(true);
  grid.set_merge_column(1, true);
  EXPECT_TRUE(grid.merges(1) && !grid.merges(2));
  EXPECT_EQ(rows_with_ink(grid, 1, 5), 1);
  EXPECT_EQ(rows_with_ink(grid, 2, 5), 5) << "not in a column without the flag";
  grid.verticalScrollBar()->setValue(36);
  EXPECT_EQ(grid.rowAt(0), 36);
  int inked = 0;
  const QImage image = grid.viewport()->grab().toImage();
  for (int row = 37; row <= 42; ++row) {
    const QRect cell = grid.cell_rect(row, 1).adjusted(2, 3, -3, -3);
    bool ink = false;
    for (int x = cell.left(); x <= cell.right(); ++x)
      ink = ink || image.pixelColor(x, cell.center().y()) != image.pixelColor(cell.topRight());
    inked += ink ? 1 : 0;
  }
  EXPECT_EQ(inked, 2) << "the first row in view, and the row where the text changes";
}

}  // namespace
