// The driven query's window, on the scripted driver: what it shows, and whatever closes it in mid-run.
#include "params/drivenquery.h"

#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTimer>

#include "params/windows.h"
#include "support/session_scope.h"
#include "support/ticking_clock.h"

namespace {

class driven_query : public testing::Test {
 public:
  ~driven_query() override {
    delete frame;
    settle();
    EXPECT_EQ(busy().busy_depth, 0);
  }

 protected:
  driven_query() {
    scripted::driver& driver = scripted::control();
    driver.answer_to("write", {.parameters = {{SQL_INTEGER, 10}}});
    driver.answer_to("read", {.columns = {{"I", SQL_INTEGER, 10}},
                              .generated = scripted::generated_rows{
                                  50, [](SQLULEN row, std::size_t) { return static_cast<std::int32_t>(row) + 1; }}});
    frame->show();
    open();
  }
  void open() {
    if (document.isNull()) document = new QWidget(frame);
    show_driven_query(document);
    form = open_form<DrivenQuery>();
    ASSERT_FALSE(form.isNull());
    form->findChild<QPlainTextEdit*>("Text1")->setPlainText("write");
    form->findChild<QPlainTextEdit*>("Text2")->setPlainText("read");
  }
  std::string label(const char* name) const { return form->findChild<QLabel*>(name)->text().toStdString(); }
  std::string counters() const { return label("Label5") + " " + label("Label6") + " " + label("errors"); }
  QPushButton* button(const char* name) const { return form->findChild<QPushButton*>(name); }
  // Presses "Execute!", and runs the action at the run's first events.
  void execute(const std::function<void()>& meanwhile) {
    QTimer::singleShot(0, [meanwhile] { meanwhile(); });
    press(form, "Command1");
  }

  const session_scope session_{scripted_engine()};
  recording_user_interface ui;
  const ticking_clock often{1};
  QPointer<QMainWindow> frame = new QMainWindow;
  QPointer<QWidget> document;
  QPointer<DrivenQuery> form;
};

TEST_F(driven_query, runs_once_shows_its_counters_and_goes) {
  EXPECT_TRUE(form->isModal());
  EXPECT_EQ(form->windowTitle().toStdString(), "Driven Query!");
  EXPECT_FALSE(button("stop")->isVisible());
  std::string seen;
  execute([&] {
    EXPECT_TRUE(form->running() && button("stop")->isVisible() && !button("Command1")->isEnabled());
    EXPECT_TRUE(form->findChild<QProgressBar*>("progress")->isVisible());
    QMetaObject::invokeMethod(button("Command1"), "clicked");  // as if it came again
    seen = counters();
  });
  EXPECT_EQ(seen.substr(0, 3), "50 ");
  EXPECT_EQ(scripted::control().executions().size(), 51U);
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0].title, "Program Message");
  EXPECT_EQ(ui.messages[0].icon, message_icon::question);
  EXPECT_EQ(ui.messages[0].text, driven_summary(50));
  EXPECT_EQ(ui.messages[0].details, "");
  settle();
  EXPECT_TRUE(form.isNull());
  EXPECT_EQ(scripted::control().open_statements(), 1U);  // the session's own
}

TEST_F(driven_query, stops_after_the_current_row_and_can_run_again) {
  scripted::control().fail("SQLExecute", 3, {SQL_ERROR, "23000", 1, "no"});
  execute([&] { press(form, "stop"); });
  ASSERT_FALSE(form.isNull());
  EXPECT_EQ(label("state"), "Stopped after the current row. Nothing was rolled back.");
  EXPECT_LT(scripted::control().executions().size(), 40U);
  EXPECT_TRUE(button("Command1")->isEnabled() && !button("stop")->isVisible());
  scripted::control().clear_faults();
  form->findChild<QPlainTextEdit*>("Text2")->setPlainText("nowhere");
  press(form, "Command1");
  EXPECT_EQ(counters(), "0 0 0");
  EXPECT_NE(ui.take_texts().back().find("State = 37000"), std::string::npos);
  form->findChild<QPlainTextEdit*>("Text2")->setPlainText("read");
  press(form, "Command1");
  EXPECT_EQ(ui.take_texts(), std::vector<std::string>{driven_summary(50)});
}

TEST_F(driven_query, whatever_closes_it_in_mid_run_ends_the_run) {
  const struct {
    const char* name;
    std::function<void()> close;
  } cases[] = {{"cancel", [&] { press(form, "Command2"); }},
               {"close box", [&] { form->close(); }},
               {"escape", [&] { QTest::keyClick(form, Qt::Key_Escape); }},
               {"deleted", [&] { delete form; }},
               {"document",
                [&] {
                  delete document;
                  press(form, "Command2");
                }},
               {"connection", [&] { session::g_con.Disconnect(); }},
               {"frame", [&] { delete frame; }}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    const std::size_t before = scripted::control().executions().size();
    for (const bool in_message : {false, true}) {
      if (form.isNull()) open();
      if (in_message) {
        scripted::control().fail("SQLExecute", 3, {SQL_ERROR, "23000", 1, "no"});
        bool closed = false;
        ui.while_open = [&](const message&) {
          if (!std::exchange(closed, true)) each.close();
        };
        press(form, "Command1");
      } else {
        execute(each.close);
      }
      settle();
      scripted::control().clear_faults();
      ui.while_open = {};
      if (frame.isNull() || session::g_con.Free()) break;
    }
    EXPECT_LT(scripted::control().executions().size() - before, 60U);
    for (const std::string& text : ui.take_texts()) EXPECT_EQ(text.find("rows updated!"), std::string::npos);
    if (session::g_con.Free()) {
      EXPECT_EQ(label("state"), "The run ended early, after an error.");
      press(form, "Command2");
      settle();
      settings::no_store store;
      EXPECT_TRUE(log_in({"SCRIPTED", "TESTER", "SECRET"}, store));
    }
    EXPECT_TRUE(form.isNull());
  }
}

TEST_F(driven_query, is_open_once) {
  show_driven_query(document);
  EXPECT_EQ(open_form<DrivenQuery>(), form);
  EXPECT_EQ(frame->findChildren<DrivenQuery*>().size(), 1);
  form->close();
  settle();
  session::g_con.Disconnect();
  show_driven_query(document);
  EXPECT_EQ(open_form<DrivenQuery>(), nullptr);
  EXPECT_EQ(ui.messages.size(), 1U);
}

}  // namespace
