// A document's statements: typed, run, shown, and interrupted by whatever closes windows meanwhile.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include "datawindow/dwf.h"
#include "params/fbindparms.h"
#include "params/fshowparms.h"
#include "support/desktop.h"
#include "widgets/flexgrid.h"

using texts = std::vector<std::string>;

namespace {

scripted::answer numbers(SQLULEN count) {
  return {.columns = {{"N", SQL_INTEGER, 10}},
          .generated = scripted::generated_rows{
              count, [](SQLULEN row, std::size_t) { return scripted::cell(static_cast<std::int32_t>(row)); }}};
}

texts prepared() {
  texts all;
  for (const scripted::call& each : scripted::control().calls("SQLPrepare")) all.push_back(each.args.at(0));
  return all;
}

QMdiSubWindow* window_of(const form1* document) { return qobject_cast<QMdiSubWindow*>(document->parentWidget()); }

TEST(form1_run, what_is_typed_runs_with_its_shortcut_and_fills_the_panels) {
  desktop at(sqlite());
  form1* document = at.new_document();
  EXPECT_EQ(panels_of(document), "Status:|0.00000|0.00000|0.00000|0.00000|0|0.00000");
  ASSERT_TRUE(QTest::qWaitForWindowActive(at.frame));
  EXPECT_TRUE(text_of(document)->hasFocus()) << "a new document takes what is typed";
  QTest::keyClicks(text_of(document), "create table t (a integer); insert into t values (1),(2),(3); select * from t;");
  EXPECT_EQ(text_of(document)->bytes(),
            "create table t (a integer); insert into t values (1),(2),(3); select * from t;");

  const auto run_at = [&](std::size_t caret) {
    text_of(document)->set_caret(caret);
    QTest::keyClick(text_of(document), Qt::Key_Return, Qt::ControlModifier);
    return panels_of(document);
  };
  EXPECT_EQ(run_at(3), "Status...|t|t|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(run_at(30), "Status...|t|t|0.00000|t|3|0.00000");
  EXPECT_EQ(run_at(70), "Status...|t|t|t|t|3|0.00000");
  EXPECT_EQ(text_of(document)->lines(), 1) << "the shortcut types no line end";
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST(form1_run, a_new_documents_lines_end_with_cr_lf) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  QTest::keyClicks(text_of(document), "a");
  QTest::keyClick(text_of(document), Qt::Key_Return);
  QTest::keyClicks(text_of(document), "b");
  EXPECT_EQ(text_of(document)->bytes(), "a\r\nb");
}

TEST(form1_run, execute_all_highlights_and_runs_what_is_terminated) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  scripted::control().answer_to("select a", numbers(1));
  scripted::control().answer_to("\r\n select b", numbers(2));
  scripted::control().answer_to("select c", numbers(3));
  put_text(document, "select a;\r\n select b;;select c;select d");
  texts highlighted;
  std::vector<bool> enabled;
  QObject::connect(text_of(document), &QsciScintilla::selectionChanged, document, [&] {
    if (text_of(document)->hasSelectedText()) highlighted.push_back(plain(text_of(document)->selectedText()));
    enabled.push_back(action_of(document, "exe_all")->isEnabled() || action_of(document, "exe_current")->isEnabled());
  });
  std::vector<bool> running;
  QObject::connect(document, &form1::running_changed, document, [&](bool now) { running.push_back(now); });
  texts while_failing;
  at.ui.while_open = [&](const message&) {
    while_failing.push_back(action_of(document, "exe_all")->isEnabled() ? "enabled" : "disabled");
  };
  action_of(document, "exe_all")->trigger();
  EXPECT_EQ(prepared(), (texts{"select a", "\r\n select b", "", "select c"}));
  EXPECT_EQ(at.ui.messages.size(), 1U) << "the empty one fails, and the walk goes on";
  EXPECT_EQ(while_failing, texts{"disabled"});
  EXPECT_EQ(highlighted, (texts{"select a", "\r\n select b", "select c"}));
  EXPECT_FALSE(enabled.empty());
  for (const bool each : enabled) EXPECT_FALSE(each);
  EXPECT_EQ(running, (std::vector<bool>{true, false}));
  EXPECT_TRUE(action_of(document, "exe_all")->isEnabled());
  EXPECT_EQ(panels_of(document), "Status...|t|t|t|t|3|0.00000");
}

TEST(form1_run, messages_instead_of_a_run) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  put_text(document, "select 1 from t");
  action_of(document, "exe_all")->trigger();
  EXPECT_TRUE(at.ui.messages.empty());
  action_of(document, "exe_current")->trigger();
  ASSERT_EQ(at.ui.messages.size(), 1U);
  EXPECT_EQ(at.ui.messages[0].title, "User Error");
  EXPECT_EQ(at.ui.messages[0].icon, message_icon::question);
  EXPECT_EQ(at.ui.take_texts(), texts{"No statement! Ensure that you 1) have a statement, 2) the statement ends with a "
                                      "';', 3) the cursor is positioned "
                                      "between the beginning of the statement and the ';'"});
  EXPECT_EQ(panels_of(document), "Status:|0.00000|0.00000|0.00000|0.00000|0|0.00000");

  put_text(document, std::string("select \0 1;", 11));
  action_of(document, "exe_current")->trigger();
  EXPECT_NE(at.ui.take_texts().back().find("holds a zero byte"), std::string::npos);
}

// The open window of a class, driven once a run waits for it.
template <typename window>
window* open_window() {
  for (QWidget* each : QApplication::topLevelWidgets()) {
    if (auto* found = qobject_cast<window*>(each); found != nullptr && found->isVisible()) return found;
  }
  return nullptr;
}

TEST(form1_run, a_call_asks_for_its_parameters_and_shows_what_they_became) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  scripted::control().answer_to(
      "call p(?,?)", {.parameters = {{SQL_INTEGER, 10}, {SQL_VARCHAR, 9}}, .outputs = {{1, 42}}, .row_count = 0});
  put_text(document, "call p(?,?);");
  QTimer::singleShot(0, document, [&] {
    auto* dialog = open_window<fBindParms>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(panels_of(document), "Waiting for Parameters....|t|0.00000|0.00000|0.00000|0|0.00000");
    dialog->findChild<QLineEdit*>("BindData_0")->setText("41");
    dialog->findChild<QLineEdit*>("BindData_1")->setText(" #null# ");
    dialog->findChild<QPushButton*>("Command1")->click();
  });
  action_of(document, "exe_current")->trigger();
  EXPECT_EQ(panels_of(document), "Status...|t|t|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(scripted::control().executions().at(0).rows.at(0).at(1).length_word, SQL_NULL_DATA);
  auto* returned = open_window<fShowParms>();
  ASSERT_NE(returned, nullptr);
  EXPECT_EQ(returned->findChild<QLineEdit*>("BindData_0")->text(), "42");
  window_of(document)->close();
  settle();
  EXPECT_EQ(open_window<fShowParms>(), returned) << "it stays until the user closes it";
  returned->close();
  settle();
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST(form1_run, parameters_that_are_given_up_or_of_no_known_type_end_the_run) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  scripted::answer asking = numbers(1);
  asking.parameters = {{SQL_INTEGER, 10}};
  scripted::control().answer_to("select ?", asking);
  asking.parameters = {{SQL_LONGVARCHAR, 10}};
  scripted::control().answer_to("select long ?", asking);
  put_text(document, "select ?;");
  QTimer::singleShot(0, document, [&] { open_window<fBindParms>()->findChild<QPushButton*>("Command2")->click(); });
  action_of(document, "exe_current")->trigger();
  EXPECT_EQ(panels_of(document), "Status...|t|0.00000|0.00000|0.00000|0|0.00000");
  EXPECT_TRUE(action_of(document, "exe_current")->isEnabled());
  put_text(document, "select long ?;");
  action_of(document, "exe_current")->trigger();
  EXPECT_EQ(at.ui.take_texts(), texts{"Unhandeled Type Encountered!"});
  EXPECT_EQ(panels_of(document), "Status...|t|0.00000|0.00000|0.00000|0|0.00000");
  EXPECT_EQ(scripted::control().count("SQLExecute"), 0U);
}

TEST(form1_run, statements_are_checked_without_running) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  scripted::control().answer_to("select a", numbers(1));
  scripted::control().answer_to("select c", numbers(1));
  put_text(document, "select a;selec b;select c;selec d");
  action_of(document, "check_all_stmt_syntax")->trigger();
  EXPECT_EQ(prepared(), (texts{"select a", "selec b", "select c"}));
  EXPECT_EQ(at.ui.take_texts().size(), 1U) << "one message, for the one that is wrong";
  EXPECT_EQ(text_of(document)->caret(), 1U);
  EXPECT_FALSE(text_of(document)->hasSelectedText());
  EXPECT_EQ(panels_of(document), "Status:|0.00000|0.00000|0.00000|0.00000|0|0.00000");

  text_of(document)->set_caret(12);
  action_of(document, "check_cur_stmt_syntax")->trigger();
  EXPECT_EQ(prepared().back(), "selec b");
  EXPECT_EQ(at.ui.take_texts().size(), 1U);
  EXPECT_EQ(scripted::control().count("SQLExecute"), 0U);

  put_text(document, "select a");
  for (const char* command : {"check_cur_stmt_syntax", "mnu_speed_test"}) action_of(document, command)->trigger();
  EXPECT_EQ(at.ui.messages.at(0).title + at.ui.messages.at(1).title, "User Error!User Error!");
  EXPECT_EQ(at.ui.take_texts(),
            (texts{"No statement!  Ensure that 1) You have a ';' after each statement. 2) your cursor is positioned "
                   "before the ending ';' of the statement you wish to execute.",
                   "No statement! Ensure that 1) Each statement ends with a ';'. 2) The cursor is within a statement, "
                   "(before the ';')."}));
}

TEST(form1_run, a_speed_test_shows_its_figures) {
  desktop at(sqlite());
  form1* document = at.new_document();
  session::speed_test_rows = 2000;
  put_text(
      document,
      "\r\n select * from (with recursive r(n) as (select 1 union all select n + 1 from r where n < 5000) select n "
      "from r);");
  action_of(document, "mnu_speed_test")->trigger();
  EXPECT_EQ(panels_of(document), "StatuMyCursor...|t|t|t|t|2000|0.00000");
  EXPECT_TRUE(action_of(document, "mnu_speed_test")->isEnabled());
  put_text(document, "select 1 where 1 = 0;");
  action_of(document, "mnu_speed_test")->trigger();
  EXPECT_EQ(at.ui.take_texts(), texts{"No Rows!"});
}

TEST(form1_run, settings_are_read_at_every_run) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  scripted::control().answer_to("select n from t", numbers(1200));
  put_text(document, "select n from t;");
  action_of(document, "exe_current")->trigger();
  EXPECT_EQ(panels_of(document), "Status...|t|t|t|t|500|0.00000");
  session::ext_fetch_rows = 7;
  action_of(document, "exe_current")->trigger();
  EXPECT_EQ(panels_of(document), "Status...|t|t|t|t|7|0.00000");
  session::ext_fetch = false;
  session::speed_test_rows = 99;
  action_of(document, "exe_current")->trigger();
  EXPECT_EQ(panels_of(document), "Fetching 99 target rows|t|t|0.00000|0.00000|0|0.00000");
}

TEST(form1_run, rows_go_to_a_window_of_their_own_where_the_document_wants_them) {
  desktop at(sqlite());
  form1* document = at.new_document();
  form1* other = at.new_document();
  action_of(document, "data_window")->trigger();
  EXPECT_FALSE(action_of(other, "data_window")->isChecked());
  const std::string query =
      "with recursive r(n) as (select 1 union all select n + 1 from r where n < 1200) select n from r;";
  const auto windows = [&] { return at.frame->findChildren<dwf*>(); };
  put_text(other, query);
  action_of(other, "exe_current")->trigger();
  EXPECT_TRUE(windows().isEmpty());
  put_text(document, query + "select 1 where 1 = 0;");
  action_of(document, "exe_all")->trigger();
  EXPECT_EQ(panels_of(document), "Status...|t|t|t|0.00000|0|t");
  ASSERT_EQ(windows().size(), 2);
  EXPECT_EQ(windows()[0]->grid().Rows(), 501);
  EXPECT_EQ(windows()[1]->grid().Rows(), 1) << "an empty result shows its header";

  put_text(document, query);
  action_of(document, "exe_current")->trigger();
  ASSERT_EQ(windows().size(), 3);
  dwf* shown = windows()[2];
  window_of(document)->close();
  settle();
  QTest::keyClick(&shown->grid(), Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(shown->grid().Rows(), 501) << "what is shown outlives the document, and no more is fetched";
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST(form1_run, commit_and_rollback_are_the_users) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  const std::size_t before = scripted::control().transactions().size();
  action_of(document, "m_commit")->trigger();
  action_of(document, "m_Rollback")->trigger();
  auto ended = scripted::control().transactions();
  ended.erase(ended.begin(), ended.begin() + static_cast<std::ptrdiff_t>(before));
  EXPECT_EQ(ended, (texts{"commit", "rollback"}));
}

TEST(form1_run, documents_have_statements_of_their_own) {
  desktop at(scripted_engine());
  form1* first = at.new_document();
  form1* second = at.new_document();
  EXPECT_NE(first->statement()->Handle(), second->statement()->Handle());
  EXPECT_EQ(scripted::control().open_statements(), 3U);
  put_text(first, "unsaved");
  window_of(first)->close();
  settle();
  EXPECT_EQ(scripted::control().open_statements(), 2U);
  EXPECT_EQ(at.documents(), QList<form1*>{second});
  EXPECT_EQ(at.ui.take_texts(), texts{}) << "unsaved text is discarded without a question";
  action_of(second, "exit")->trigger();
  settle();
  EXPECT_TRUE(at.documents().isEmpty());
  EXPECT_EQ(scripted::control().open_statements(), 1U);
}

// What closes windows in the middle of a run; deleted at once, as under a message box, or only afterwards.
struct interruption {
  const char* name;
  std::function<void(desktop&, form1*)> close;
  bool deleted_at_once;
};
void close_document(desktop&, form1* document) { window_of(document)->close(); }
void close_frame(desktop& at, form1*) { at.frame->close(); }
void PrintTo(const interruption& shown, std::ostream* out) { *out << shown.name; }

class interrupted_run : public testing::TestWithParam<interruption> {
 protected:
  void SetUp() override { put_text(document, "select a;select b;select c;"); }
  void interrupt() {
    GetParam().close(at, document);
    interrupted = true;
    if (GetParam().deleted_at_once) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  void expect_gone(const texts& ran) {
    settle();
    EXPECT_EQ(prepared(), ran);
    EXPECT_TRUE(watched.isNull());
    EXPECT_EQ(busy().busy_depth, 0);
    EXPECT_EQ(scripted::control().open_statements(), at.frame.isNull() ? 0U : 1U);
  }

  desktop at{scripted_engine()};
  form1* document = at.new_document();
  QPointer<form1> watched = document;
  bool interrupted = false;
};

TEST_P(interrupted_run, ends_after_the_box_of_a_failed_statement) {
  at.ui.while_open = [&](const message&) {
    if (!interrupted) interrupt();
  };
  action_of(document, "exe_current")->trigger();
  expect_gone({"select a"});
}

TEST_P(interrupted_run, of_all_statements_ends_after_a_box) {
  scripted::control().answer_to("select a", numbers(1));
  at.ui.while_open = [&](const message&) {
    if (!interrupted) interrupt();
  };
  action_of(document, "exe_all")->trigger();
  expect_gone({"select a", "select b"});
}

TEST_P(interrupted_run, of_all_statements_ends_between_two) {
  scripted::control().default_answer(numbers(1));
  scripted::answer second = numbers(1);
  // The queued event arrives where events are processed: before the third statement.
  second.generated->cell_at = [&](SQLULEN, std::size_t) {
    QTimer::singleShot(0, [&] { interrupt(); });
    return scripted::cell(1);
  };
  scripted::control().answer_to("select b", second);
  action_of(document, "exe_all")->trigger();
  expect_gone({"select a", "select b"});
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST_P(interrupted_run, ends_while_parameters_are_entered) {
  scripted::answer asking = numbers(1);
  asking.parameters = {{SQL_INTEGER, 10}};
  scripted::control().answer_to("select a", asking);
  QTimer::singleShot(0, [&] {
    ASSERT_NE(open_window<fBindParms>(), nullptr);
    interrupt();
  });
  // Under a box the deletion comes at once; here it comes with the event loop that waits.
  action_of(document, "exe_current")->trigger();
  expect_gone({"select a"});
  EXPECT_EQ(open_window<fBindParms>(), nullptr);
  EXPECT_EQ(scripted::control().count("SQLExecute"), 0U);
}

INSTANTIATE_TEST_SUITE_P(closing, interrupted_run,
                         testing::Values(interruption{"document", close_document, true},
                                         interruption{"document_later", close_document, false},
                                         interruption{"frame", close_frame, true},
                                         interruption{"frame_later", close_frame, false}),
                         [](const auto& each) { return each.param.name; });

TEST(form1_run, a_text_that_shrinks_between_statements_ends_the_walk) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  scripted::answer first = numbers(1);
  first.generated->cell_at = [&](SQLULEN, std::size_t) {
    put_text(document, "x");
    return scripted::cell(1);
  };
  scripted::control().answer_to("select a", first);
  put_text(document, "select a;select b;select c;");
  action_of(document, "exe_all")->trigger();
  EXPECT_EQ(prepared(), texts{"select a"});
  EXPECT_TRUE(action_of(document, "exe_all")->isEnabled());
}

}  // namespace
