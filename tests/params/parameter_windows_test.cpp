// What the two windows show, and how the lines page.
#include "params/windows.h"

namespace {

class parameter_windows : public prepared_test {
 protected:
  fBindParms& open(std::shared_ptr<odbcstmt> statement) {
    dialog = std::make_unique<fBindParms>(nullptr);
    dialog->Stmt = std::move(statement);
    EXPECT_TRUE(dialog->ParmsSetup());
    dialog->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    return *dialog;
  }
  // Which line has the focus, and from which parameter on they are shown: "6@1".
  static std::string where(const QWidget* form) {
    for (int k = 0; k < parameter_lines::line_count; ++k) {
      if (value_of_line(form, k)->hasFocus())
        return std::to_string(k) + '@' + box_of(form, "Parm", 0)->text().toStdString();
    }
    return QApplication::focusWidget() == nullptr ? "none" : QApplication::focusWidget()->objectName().toStdString();
  }
  static texts tab(QWidget* form, Qt::Key key, int times) {
    texts all;
    for (int i = 0; i < times; ++i) {
      QTest::keyClick(QApplication::focusWidget(), key);
      all.push_back(where(form));
    }
    return all;
  }

  std::unique_ptr<fBindParms> dialog;
};

TEST_F(parameter_windows, show_as_many_lines_as_parameters_up_to_seven) {
  const struct {
    int parameters;
    int lines;
    bool scroll_bar;
    int maximum;
  } cases[] = {{1, 1, false, 0}, {6, 6, false, 0}, {7, 7, true, 0}, {9, 7, true, 2}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.parameters);
    const fBindParms& form = open(prepared(integers(each.parameters)));
    EXPECT_EQ(form.windowTitle().toStdString(),
              "Statement Requires " + std::to_string(each.parameters) + " bind parameters");
    EXPECT_EQ(scroll_bar_of(&form)->isVisible(), each.scroll_bar);
    EXPECT_EQ(scroll_bar_of(&form)->maximum(), each.maximum);
    for (int k = 0; k < parameter_lines::line_count; ++k) {
      for (const char* column : {"Parm", "DataType", "Nullable", "Length", "pScale", "BindData"}) {
        EXPECT_EQ(box_of(&form, column, k)->isVisible(), k < each.lines) << column << k;
        EXPECT_EQ(box_of(&form, column, k)->isReadOnly(), std::string(column) != "BindData");
      }
    }
  }
}

TEST_F(parameter_windows, typed_values_stay_with_their_parameter) {
  fBindParms& form = open(prepared(integers(9)));
  const auto shown = [&] {
    texts all;
    for (int k = 0; k < parameter_lines::line_count; ++k) all.push_back(value_of_line(&form, k)->text().toStdString());
    return all;
  };
  EXPECT_EQ(where(&form), "0@1");
  QTest::keyClicks(QApplication::focusWidget(), "11");
  EXPECT_EQ(shown().front(), "11") << "the default is selected, so that typing replaces it";
  scroll_bar_of(&form)->setValue(2);
  EXPECT_EQ(shown(), (texts{"0", "0", "0", "0", "0", "0", "0"}));
  value_of_line(&form, 6)->setText("99");
  scroll_bar_of(&form)->setValue(0);
  EXPECT_EQ(shown(), (texts{"11", "0", "0", "0", "0", "0", "0"}));
  press(&form, "Command1");
  EXPECT_TRUE(form.BindOK);
  ASSERT_TRUE(form.Stmt->Execute());
  const auto sent = scripted::control().executions().back().rows.at(0);
  EXPECT_EQ(sent.at(0).bytes[0], 11);
  EXPECT_EQ(sent.at(8).bytes[0], 99);
}

TEST_F(parameter_windows, tab_pages_by_one_past_either_end) {
  fBindParms& form = open(prepared(integers(9)));
  EXPECT_EQ(tab(&form, Qt::Key_Tab, 8), (texts{"1@1", "2@1", "3@1", "4@1", "5@1", "6@1", "6@2", "6@3"}));
  EXPECT_EQ(value_of_line(&form, 6)->selectedText(), "0");
  EXPECT_EQ(tab(&form, Qt::Key_Tab, 3), (texts{"Command1", "Command2", "0@3"}));
  EXPECT_EQ(tab(&form, Qt::Key_Backtab, 4), (texts{"0@2", "0@1", "Command2", "Command1"}));
  EXPECT_EQ(tab(&form, Qt::Key_Backtab, 1), texts{"6@1"});
  // A click elsewhere is no paging.
  QTest::mouseClick(value_of_line(&form, 0), Qt::LeftButton);
  EXPECT_EQ(where(&form), "0@1");

  const fBindParms& without_more = open(prepared(integers(7)));
  EXPECT_EQ(tab(dialog.get(), Qt::Key_Tab, 7).back(), "Command1");
  EXPECT_EQ(scroll_bar_of(&without_more)->value(), 0);
}

TEST_F(parameter_windows, a_refused_value_is_told_shown_and_nothing_is_bound) {
  fBindParms& form = open(prepared(integers(9)));
  scroll_bar_of(&form)->setValue(2);
  value_of_line(&form, 6)->setText("nine");
  scroll_bar_of(&form)->setValue(0);
  scripted::control().clear_log();
  QTest::keyClick(value_of_line(&form, 0), Qt::Key_Return);
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0].title, "User Error");
  EXPECT_EQ(ui.messages[0].icon, message_icon::question);
  EXPECT_EQ(ui.take_texts(), texts{"Bind data # 9 is not numeric!"});
  EXPECT_FALSE(form.Done);
  EXPECT_TRUE(form.isVisible());
  EXPECT_EQ(where(&form), "6@3");
  EXPECT_EQ(value_of_line(&form, 6)->text(), "nine");
  EXPECT_EQ(scripted::control().count("SQLBindParameter"), 0U);

  value_of_line(&form, 6)->setText("9");
  scripted::control().fail("SQLBindParameter", 3, {.message = "refused"});
  press(&form, "Command1");
  EXPECT_EQ(ui.take_texts().size(), 1U);
  EXPECT_FALSE(form.Done) << "what the driver refuses leaves the dialog open";
  press(&form, "Command1");
  EXPECT_TRUE(form.Done && form.BindOK);
}

TEST_F(parameter_windows, a_long_value_is_bound_whole) {
  fBindParms& form = open(prepared({{SQL_VARCHAR, 100'000}}));
  value_of_line(&form, 0)->setText(QString(50'000, 'x'));
  press(&form, "Command1");
  ASSERT_TRUE(form.Stmt->Execute());
  EXPECT_EQ(scripted::control().executions().back().rows.at(0).at(0).bytes.size(), 50'000U);
}

TEST_F(parameter_windows, an_unhandled_type_fills_no_line) {
  fBindParms form(nullptr);
  form.Stmt = prepared({{SQL_INTEGER, 10}, {SQL_LONGVARCHAR, 10}});
  EXPECT_FALSE(form.ParmsSetup());
  EXPECT_EQ(ui.messages.at(0).title, "User Error");
  EXPECT_EQ(ui.take_texts(), texts{"Unhandeled Type Encountered!"});
  EXPECT_EQ(box_of(&form, "Parm", 0)->text(), "");
}

TEST_F(parameter_windows, the_view_shows_what_came_back_and_lives_on_its_own) {
  auto parent = std::make_unique<QWidget>();
  parent->show();
  std::map<SQLUSMALLINT, scripted::cell> outputs{{1, 101}, {2, nullptr}, {10, 110}};
  auto statement = prepared(integers(10), true, outputs);
  ASSERT_TRUE(statement->Execute());
  show_returned_parameters(parent.get(), statement);
  QPointer<fShowParms> view = open_form<fShowParms>();
  ASSERT_FALSE(view.isNull());
  EXPECT_EQ(view->windowTitle(), "Parameters Returned by Call Statement, if any");
  EXPECT_EQ(view->findChild<QLabel*>("Label6")->text(), "Parameter Data");
  ASSERT_TRUE(QTest::qWaitForWindowActive(view));
  EXPECT_EQ(scroll_bar_of(view)->maximum(), 3);
  EXPECT_EQ(value_of_line(view, 1)->text(), "") << "Null";
  QTest::keyClicks(value_of_line(view, 0), "5");
  EXPECT_EQ(value_of_line(view, 0)->text(), "101") << "nothing is changed here";
  EXPECT_NE(value_of_line(view, 0)->palette().color(QPalette::Base), view->palette().color(QPalette::Base));
  statement->Kill();
  statement.reset();
  EXPECT_EQ(tab(view, Qt::Key_Tab, 10).back(), "Command1");
  EXPECT_EQ(value_of_line(view, 6)->text(), "110");
  QTest::keyClick(view, Qt::Key_Escape);
  settle();
  EXPECT_TRUE(view.isNull());

  show_returned_parameters(parent.get(), prepared(integers(1), true));
  view = open_form<fShowParms>();
  press(view, "Command1");
  settle();
  EXPECT_TRUE(view.isNull());
}

}  // namespace
