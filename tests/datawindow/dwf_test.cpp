// What the user does in a data window: keys, menus, sorting, merging, copying, editing.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QLineEdit>

#include "datawindow/shown_result.h"

namespace {

std::string clipboard() { return plain(QGuiApplication::clipboard()->text()); }

scripted::answer words() {
  return {.columns = {{"N", SQL_INTEGER, 10}, {"WORD", SQL_VARCHAR, 20}},
          .rows = {{10, "b"}, {9, "a"}, {100, nullptr}, {9, "tab\there"}, {-1, "a"}}};
}

TEST(dwf_test, sorts_what_was_fetched_and_keeps_the_place) {
  shown_result shown(scripted_engine());
  shown.show(counted(60), 50);
  const std::size_t before = shown_result::fetches();
  shown.grid().set_current(3, 1);
  shown.choose("mnuSortDesc");
  EXPECT_EQ(shown.row(1), (texts{"50", "50", "row 50"}));
  EXPECT_EQ(shown.row(50), (texts{"1", "1", "row 1"}));
  EXPECT_EQ(shown.grid().row() * 10 + shown.grid().column(), 31);
  EXPECT_EQ(shown.grid().row_sel(), 3);
  shown.grid().set_current(3, 2);
  shown.choose("mnuSortAscending");
  EXPECT_EQ(shown.cell(2, 2), "row 10") << "text by text";
  EXPECT_EQ(shown_result::fetches(), before);
  shown.press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(shown.row(51), (texts{"51", "51", "row 51"})) << "later rows come unsorted below";
  shown.grid().set_current(0, 1);
  const texts first = shown.row(1);
  shown.choose("mnuSortDesc");
  EXPECT_EQ(shown.row(1), first) << "nothing with the header row current";
}

TEST(dwf_test, copies_the_selection_or_all) {
  shown_result shown(scripted_engine());
  shown.show(words(), 10);
  shown.grid().set_current(1, 2);
  shown.grid().select_to(3, 1);
  shown.choose("mnuClipCells");
  EXPECT_EQ(clipboard(), "10\tb\r9\ta\r100\t#NULL#");
  shown.choose("mnuClipCopy");
  EXPECT_EQ(clipboard(), "10\tb\r9\ta\r100\t#NULL#\r9\t\"tab\there\"\r-1\ta");
  EXPECT_EQ(shown.grid().row_sel() * 10 + shown.grid().column_sel(), 52) << "the selection stays";
  EXPECT_TRUE(shown.object()->MoreRows) << "copying fetches nothing";
  shown.show({.columns = {{"N", SQL_INTEGER, 10}}}, 10);
  shown.choose("mnuClipCopy");
  EXPECT_EQ(clipboard(), "");
}

TEST(dwf_test, aggregates_the_current_column) {
  shown_result shown(scripted_engine());
  shown.show(words(), 10);
  shown.grid().set_current(1, 2);
  shown.choose("mnuAggCol");
  EXPECT_TRUE(shown.grid().merges(2) && !shown.grid().merges(1));
}

TEST(dwf_test, enter_and_double_click_pick_a_row) {
  shown_result shown(scripted_engine());
  shown.show(words(), 10);
  texts picked;
  QObject::connect(shown.object().get(), &DataWindow::RowSelected, shown.form,
                   [&](int& row, int& col) { picked.push_back(std::to_string(row) + ',' + std::to_string(col)); });
  shown.grid().set_current(2, 2);
  shown.press(Qt::Key_Return);
  const QPoint at = shown.grid().cell_rect(3, 1).center();
  QTest::mouseClick(shown.grid().viewport(), Qt::LeftButton, {}, at);
  QTest::mouseDClick(shown.grid().viewport(), Qt::LeftButton, {}, at);
  EXPECT_EQ(picked, (texts{"2,2", "3,1"}));
}

TEST(dwf_test, the_right_button_offers_what_is_done_with_the_column_under_it) {
  shown_result shown(scripted_engine());
  shown.show(words(), 10);
  const QPoint at = shown.grid().cell_rect(2, 1).center();
  QTest::mouseClick(shown.grid().viewport(), Qt::RightButton, {}, at);
  QContextMenuEvent asked(QContextMenuEvent::Mouse, at, shown.grid().viewport()->mapToGlobal(at));
  QApplication::sendEvent(shown.grid().viewport(), &asked);
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(menu, nullptr);
  texts entries;
  for (const QAction* each : menu->actions()) entries.push_back(plain(each->text()));
  EXPECT_EQ(entries, (texts{"Aggregate Column", "Sort Ascending", "Sort &Descending"}));
  menu->actions().at(1)->trigger();
  menu->close();
  EXPECT_EQ(shown.cell(1, 1), "-1");
  EXPECT_EQ(shown.grid().row() * 10 + shown.grid().column(), 21);
}

TEST(dwf_test, insert_edits_a_cell_of_the_grid) {
  shown_result shown(scripted_engine());
  shown.show({.columns = {{"W", SQL_VARCHAR, 20}, {"V", SQL_VARCHAR, 20}},
              .rows = {{"one", "two"}, {std::string("a\0b", 3), "four"}}},
             10);
  ASSERT_TRUE(QTest::qWaitForWindowActive(shown.at.frame));
  auto* editor = shown.form->findChild<QLineEdit*>("Text1");
  ASSERT_NE(editor, nullptr);
  const auto edit = [&](int row, int column, const char* typed, Qt::Key key) {
    shown.grid().set_current(row, column);
    shown.press(Qt::Key_Insert);
    EXPECT_TRUE(editor->isVisible() && editor->hasFocus());
    EXPECT_EQ(editor->geometry(), shown.grid().cell_rect(row, column));
    EXPECT_EQ(plain(editor->text()), shown.cell(row, column));
    if (*typed != '\0') QTest::keyClicks(editor, typed);
    QTest::keyClick(editor, key);
    EXPECT_FALSE(editor->isVisible());
    EXPECT_TRUE(shown.grid().hasFocus());
    return shown.cell(row, column);
  };
  bool picked = false;
  QObject::connect(shown.object().get(), &DataWindow::RowSelected, shown.form, [&](int&, int&) { picked = true; });
  EXPECT_EQ(edit(1, 1, "new", Qt::Key_Return), "new");
  EXPECT_EQ(edit(1, 2, "new", Qt::Key_Escape), "two");
  edit(2, 1, "", Qt::Key_Enter);
  EXPECT_EQ(shown.grid().bytes(2, 1), std::string_view("a\0b", 3)) << "a text left as it was keeps its bytes";
  EXPECT_FALSE(picked) << "the editor's Enter is its own";
  shown.grid().set_current(1, 2);
  shown.press(Qt::Key_Insert);
  QTest::keyClicks(editor, "lost");
  QTest::mouseClick(shown.grid().viewport(), Qt::LeftButton, {}, shown.grid().cell_rect(2, 2).center());
  EXPECT_FALSE(editor->isVisible());
  EXPECT_EQ(shown.cell(1, 2) + shown.cell(2, 2), "twofour") << "an edit that was left goes into no cell";
}

TEST(dwf_test, dadd_widens_the_column_for_its_value) {
  shown_result shown(scripted_engine());
  shown.show(words(), 10);
  shown.grid().set_column_width(1, 300);
  shown.form->Dadd(2, 1, null_t{});
  EXPECT_EQ(shown.cell(2, 1), "#NULL#");
  const int wide = shown.grid().column_width(1);
  EXPECT_GT(wide, 300);
  shown.form->Dadd(1, 1, 12);
  EXPECT_EQ(shown.cell(1, 1), "12");
  shown.form->Dadd(1, 1, std::string(500, 'w'));
  EXPECT_EQ(shown.grid().column_width(1), wide) << "neither narrower nor beyond 3500 twips";
  EXPECT_EQ(shown.grid().row() * 10 + shown.grid().column(), 11);
}

}  // namespace
