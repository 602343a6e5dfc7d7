// Results in data windows: what the grid gets, block after block, and when fetching ends.
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QWheelEvent>

#include "datawindow/shown_result.h"

namespace {

class data_windows : public testing::TestWithParam<engine> {};

TEST_P(data_windows, show_a_real_result_block_by_block) {
  shown_result shown(GetParam());
  ASSERT_EQ(shown.show("with recursive n(i) as (select 1 union all select i + 1 from n where i < 1200) select i as ID, "
                       "cast('Grüße ' || i as varchar(30)) as WORD, case when i % 2 = 0 then null else i * 0.5 end as "
                       "HALF from n order by i",
                       300),
            300);
  flexgrid& grid = shown.grid();
  EXPECT_EQ(grid.Rows(), 301);
  EXPECT_EQ(plain(QString::fromStdString(shown.cell(0, 1)).toUpper()), "ID");
  EXPECT_EQ(shown.row(1), (texts{"1", "1", "Grüße 1", "0.5"}));
  EXPECT_EQ(shown.row(300), (texts{"300", "300", "Grüße 300", "#NULL#"}));
  EXPECT_EQ(grid.row() * 10 + grid.column(), 11);
  for (const int rows : {601, 901, 1201, 1201, 1201}) {
    shown.press(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(grid.Rows(), rows);
    EXPECT_EQ(shown.object()->RowsFetched, rows - 1);
  }
  EXPECT_FALSE(shown.object()->MoreRows);
  EXPECT_EQ(shown.row(501), (texts{"501", "501", "Grüße 501", "250.5"}));
  EXPECT_EQ(shown.cell(1200, 0), "1200");
  EXPECT_EQ(shown.cell(1200, 2), "Grüße 1200");
  EXPECT_EQ(shown.at.ui.take_texts(), texts{}) << "the plain end of data is told nobody";
}

INSTANTIATE_TEST_SUITE_P(engines, data_windows, testing::Values(sqlite(), postgres()),
                         [](const auto& each) { return each.param.name; });

TEST(datawindow_test, columns_are_as_wide_as_their_types_ask) {
  const struct {
    scripted::column column;
    int twips;
  } cases[] = {{{"C", SQL_CHAR, 10}, 1500},    {{"C", SQL_VARCHAR, 40}, 6000},
               {{"C", SQL_VARCHAR, 41}, 6000}, {{"C", SQL_LONGVARCHAR, 32000}, 6000},
               {{"C", SQL_VARCHAR, 0}, 0},     {{"C", SQL_TIMESTAMP, 26}, 2100},
               {{"C", SQL_DATE, 10}, 1650},    {{"C", SQL_DECIMAL, 9, 2}, 1250},
               {{"C", SQL_INTEGER, 10}, 1250}, {{"C", SQL_TIME, 8}, 1250}};
  shown_result shown(scripted_engine());
  scripted::answer all;
  for (const auto& each : cases) all.columns.push_back(each.column);
  shown.show(all, 10);
  for (int i = 0; i < static_cast<int>(std::size(cases)); ++i) {
    EXPECT_EQ(shown.grid().column_width(i + 1), cases[i].twips) << i;
  }
  EXPECT_EQ(shown.grid().column_width(0), flexgrid::default_column_width);
  EXPECT_EQ(shown.grid().Rows(), 1) << "no row: the titles stay a normal row";
  EXPECT_EQ(shown.grid().FixedRows(), 0);
  EXPECT_TRUE(shown.object()->MoreRows);
  shown.press(Qt::Key_Down);
  EXPECT_FALSE(shown.object()->MoreRows);
  EXPECT_EQ(shown.at.ui.take_texts(), texts{});
  EXPECT_EQ(plain(shown.form->windowTitle()), "Data Window");
}

// Every way of reaching the last row of the first block fetches the second one and no more, and the user stays where
// they went.
TEST(datawindow_test, the_end_is_reached_in_many_ways) {
  using step = std::function<void(shown_result&)>;
  const auto bar = [](shown_result& shown) { return shown.grid().verticalScrollBar(); };
  const struct {
    const char* name;
    step reach;
    int row_afterwards;
  } cases[] = {
      {"Ctrl+End", [](auto& shown) { shown.press(Qt::Key_End, Qt::ControlModifier); }, 50},
      {"End twice", [](auto& shown) { shown.press(Qt::Key_End), shown.press(Qt::Key_End); }, 50},
      {"Page Down",
       [](auto& shown) {
         for (int i = 0; i < 60 && shown.grid().row() < 50; ++i) shown.press(Qt::Key_PageDown);
       },
       50},
      {"the scroll bar", [&](auto& shown) { bar(shown)->setValue(bar(shown)->maximum()); }, 1},
      {"the scroll bar, dragged",
       [&](auto& shown) {
         bar(shown)->setSliderDown(true);
         bar(shown)->setValue(bar(shown)->maximum());
         EXPECT_EQ(shown.grid().Rows(), 51) << "the range stays under the pointer";
         bar(shown)->setSliderDown(false);
       },
       1},
      {"the wheel",
       [&](auto& shown) {
         for (int i = 0; i < 60 && shown.grid().Rows() == 51; ++i) {
           QWheelEvent down(QPointF(9, 9), shown.grid().viewport()->mapToGlobal(QPointF(9, 9)), {}, {0, -120},
                            Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
           QApplication::sendEvent(shown.grid().viewport(), &down);
         }
       },
       1},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    shown_result shown(scripted_engine());
    shown.show(counted(175), 50);
    const std::size_t before = shown_result::fetches();
    each.reach(shown);
    settle();
    EXPECT_EQ(shown_result::fetches(), before + 1);
    EXPECT_EQ(shown.grid().Rows(), 101);
    EXPECT_EQ(shown.grid().row(), each.row_afterwards);
    EXPECT_FALSE(shown.object()->IgnoreRowColChange);
    EXPECT_EQ(shown.cell(100, 2), "row 100");
  }
}

TEST(datawindow_test, holding_end_fetches_all_and_nothing_beyond) {
  shown_result shown(scripted_engine());
  shown.show(counted(60'000), 1000);
  for (int i = 0; i < 80; ++i) QTest::keyClick(&shown.grid(), Qt::Key_End);
  EXPECT_EQ(shown.grid().Rows(), 60'001);
  EXPECT_EQ(shown.grid().row(), 60'000);
  EXPECT_EQ(shown.row(60'000), (texts{"60000", "60000", "row 60000"}));
  EXPECT_EQ(shown_result::fetches(), 61U) << "the end of data is asked for once";
}

TEST(datawindow_test, an_error_is_told_once_and_keeps_what_was_fetched) {
  shown_result shown(scripted_engine());
  scripted::answer failing = counted(100);
  failing.fetch_failures = {{20, {SQL_ERROR, "40003", -952, "interrupted"}}};
  shown.show(failing, 10);
  std::size_t open = 0;
  // The message waits until the grid is done with the key: closing the window under it harms nobody.
  shown.at.ui.while_open = [&](const message&) {
    ++open;
    shown.form->parentWidget()->close();
    settle();
  };
  shown.press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(shown.grid().Rows(), 21);
  const std::shared_ptr<DataWindow> kept = shown.object();
  QTest::keyClick(&shown.grid(), Qt::Key_End, Qt::ControlModifier);
  EXPECT_FALSE(kept->MoreRows);
  EXPECT_EQ(shown.grid().Rows(), 21);
  EXPECT_EQ(open, 0U);
  settle();
  EXPECT_EQ(open, 1U);
  EXPECT_EQ(shown.at.ui.take_texts(), texts{"SQL error. Code = -952. State = 40003. Message = interrupted."});
  EXPECT_TRUE(shown.form.isNull());
  kept->MoreRows = true;
  kept->FetchMore();  // an object without a window
  kept->SetHeaders();
  kept->FetchFirst(3);
}

TEST(datawindow_test, another_result_under_the_window_is_never_shown_in_it) {
  const struct {
    const char* name;
    std::function<void(odbcstmt&)> what;
    const char* caption;
  } cases[] = {
      {"prepared anew", [](odbcstmt& on) { EXPECT_TRUE(on.Prep("q", 10) && on.Execute()); },
       "Data Window (the statement was prepared anew; no more rows)"},
      {"its preparation failed", [](odbcstmt& on) { EXPECT_FALSE(on.Prep("unknown", 10)); },
       "Data Window (the statement was prepared anew; no more rows)"},
      {"killed", [](odbcstmt& on) { EXPECT_TRUE(on.Kill()); }, "Data Window (the statement was closed; no more rows)"},
  };
  for (const auto& each : cases) {
    for (const bool by_focus : {false, true}) {
      SCOPED_TRACE(each.name);
      shown_result shown(scripted_engine());
      shown.show(counted(100), 10);
      each.what(*shown.statement);
      const std::size_t before = shown_result::fetches();
      if (by_focus) {
        QFocusEvent gained(QEvent::FocusIn);
        QApplication::sendEvent(&shown.grid(), &gained);
      } else {
        shown.press(Qt::Key_End, Qt::ControlModifier);
      }
      EXPECT_EQ(shown_result::fetches(), before);
      EXPECT_FALSE(shown.object()->MoreRows);
      EXPECT_EQ(shown.grid().Rows(), 11);
      EXPECT_EQ(plain(shown.form->windowTitle()), each.caption);
      EXPECT_EQ(shown.at.ui.take_texts(), texts{});
    }
  }
}

TEST(datawindow_test, without_blocks_the_window_holds_the_first_row) {
  shown_result shown(scripted_engine());
  shown.show(counted(10), 1);
  EXPECT_EQ(shown.grid().Rows(), 2);
  shown.press(Qt::Key_Down);
  EXPECT_EQ(shown.grid().Rows(), 2);
  EXPECT_FALSE(shown.object()->MoreRows);
  EXPECT_EQ(shown.at.ui.take_texts(), texts{});
}

TEST(datawindow_test, odd_shapes_are_shown_as_they_are) {
  shown_result shown(scripted_engine());
  scripted::answer wide;
  for (int i = 0; i < 1600; ++i) wide.columns.push_back({"C" + std::to_string(i), SQL_CHAR, 5});
  wide.rows = {std::vector<scripted::cell>(1600, "x"), std::vector<scripted::cell>(1600, nullptr)};
  shown.show(wide, 5);
  EXPECT_EQ(shown.grid().Cols(), 1601);
  EXPECT_EQ(shown.cell(2, 1600), "#NULL#");
  shown.form->grab();
  shown.show({.row_count = 3}, 5);  // no columns at all
  shown.press(Qt::Key_End, Qt::ControlModifier);
  shown.choose("mnuSortAscending");
  shown.choose("mnuAggCol");
  shown.choose("mnuClipCopy");
  shown.form->grab();
  EXPECT_EQ(shown.grid().Rows(), 1);
}

TEST(datawindow_test, window_and_object_live_as_long_as_the_window) {
  shown_result shown(scripted_engine());
  shown.show(counted(3), 2);
  EXPECT_FALSE(shown.window.expired());
  EXPECT_EQ(shown.statement.use_count(), 2);
  EXPECT_EQ(shown.at.menus(), "&Copy Mouse &Windows");
  shown.form->parentWidget()->close();
  settle();
  EXPECT_TRUE(shown.window.expired());
  EXPECT_EQ(shown.statement.use_count(), 1);
}

}  // namespace
