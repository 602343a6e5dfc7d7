#include "shell/mainmdi.h"

#include <gtest/gtest.h>

#include <QTextBrowser>

#include "shell/about.h"
#include "support/desktop.h"
#include "support/temporary_folder.h"

using texts = std::vector<std::string>;

namespace {

constexpr const char* frame_menus = "&File &Environment &Windows &Help";
constexpr const char* document_menus = "&File &Edit &Tools &Statement En&vironment &Windows &Help";

// The entries of a menu that fills itself when it opens.
texts filled(QMenu* menu) {
  emit menu->aboutToShow();
  texts entries;
  for (const QAction* each : menu->actions()) {
    entries.push_back(std::string(each->isChecked() ? "*" : "") + plain(each->text()) +
                      (each->isEnabled() ? "" : " (off)"));
  }
  return entries;
}

TEST(mainmdi_test, an_active_document_brings_its_own_menus) {
  desktop at(scripted_engine());
  EXPECT_EQ(plain(at.frame->windowTitle()), "Sorvane, Velmora Inc.");
  EXPECT_EQ(at.menus(), frame_menus);
  form1* first = at.new_document();
  EXPECT_EQ(at.menus(), document_menus);
  form1* second = at.new_document();
  EXPECT_EQ(at.frame->menuBar()->actions(), second->menu_bar_actions());
  at.frame->findChild<QMdiArea*>("mdiArea")->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(first->parentWidget()));
  EXPECT_EQ(at.frame->menuBar()->actions(), first->menu_bar_actions());
  action_of(first, "exit")->trigger();
  settle();
  EXPECT_EQ(at.frame->menuBar()->actions(), second->menu_bar_actions());
  action_of(second, "exit")->trigger();
  settle();
  EXPECT_EQ(at.menus(), frame_menus);
  for (const QAction* menu : at.frame->menuBar()->actions()) EXPECT_TRUE(menu->isVisible());
}

TEST(mainmdi_test, the_test_entry_is_hidden) {
  desktop at(scripted_engine());
  EXPECT_FALSE(action_of(at.frame, "mnuTest")->isVisible());
}

TEST(mainmdi_test, captions_say_where_a_document_came_from) {
  const temporary_folder folder;
  const std::string path = folder.with("a & b.sql", "select 1;");
  desktop at(scripted_engine(), "\"" + path + "\"");
  ASSERT_EQ(at.documents().size(), 1);
  action_of(at.frame, "mnuMdiNew")->trigger();
  action_of(at.frame, "mnuMdiOpen")->trigger();  // cancelled: the document stays
  at.dialogs.next = path;
  action_of(at.frame, "mnuMdiOpen")->trigger();
  texts captions;
  for (const form1* each : at.documents()) captions.push_back(plain(each->windowTitle() + "|" + each->file_name()));
  EXPECT_EQ(captions, (texts{"Mirelta Editor: " + path + "|" + path, "Mirelta Editor: UnNamed|", "Untitled|",
                             "Mirelta Editor: " + path + "|" + path}));
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST(mainmdi_test, the_window_list_shows_and_activates_documents) {
  const temporary_folder folder;
  desktop at(scripted_engine());
  EXPECT_EQ(filled(at.frame->findChild<QMenu*>("mnuWindows")), texts{"(no document is open) (off)"});
  form1* first = at.new_document();
  form1* second = open_document(*at.frame, QString::fromStdString(folder.with("a & b.sql", "")));
  ASSERT_NE(second, nullptr);
  auto* list = second->findChild<QMenu*>("mnuWindowList");
  EXPECT_EQ(filled(list), (texts{"&1 Mirelta Editor: UnNamed", "*&2 Mirelta Editor: " + folder.file("a && b.sql")}));
  list->actions().at(0)->trigger();
  EXPECT_EQ(filled(list), (texts{"*&1 Mirelta Editor: UnNamed", "&2 Mirelta Editor: " + folder.file("a && b.sql")}));
  EXPECT_EQ(at.frame->menuBar()->actions(), first->menu_bar_actions());
}

TEST(mainmdi_test, a_document_that_cannot_be_read_is_not_opened) {
  desktop at(scripted_engine());
  EXPECT_EQ(open_document(*at.frame, "/nowhere/at all.sql"), nullptr);
  EXPECT_EQ(at.ui.messages.at(0).details, "No such file or directory");
  EXPECT_EQ(at.ui.take_texts(), texts{"Bad File Name!\rI can not open this document: /nowhere/at all.sql"});
  EXPECT_TRUE(at.documents().isEmpty());
  EXPECT_EQ(scripted::control().open_statements(), 1U);
}

TEST(mainmdi_test, the_hidden_test_runs) {
  desktop at(scripted_engine());
  scripted::control().answer_to("insert into news.testtrg1 (a,b,c) values (?,?,?)",
                                {.parameters = {{SQL_INTEGER, 10}, {SQL_CHAR, 10}, {SQL_DATE, 10}}, .row_count = 1});
  action_of(at.frame, "mnuTest")->trigger();
  EXPECT_EQ(scripted::control().executions().size(), 100U);
  EXPECT_EQ(at.ui.messages.size(), 2U);
}

TEST(mainmdi_test, unloading_with_open_documents_gives_everything_back) {
  desktop at(scripted_engine());
  at.new_document();
  form1* running = at.new_document();
  scripted::control().answer_to("select 1", {.columns = {{"N", SQL_INTEGER, 10}}, .rows = {{1}, {2}}});
  put_text(running, "select 1;");
  action_of(running, "exe_current")->trigger();
  action_of(at.frame, "mnuMdiExit")->trigger();
  EXPECT_EQ(session_scope::open_driver_handles(), 0U);
  EXPECT_EQ(ODBCD::henv, nullptr);
  EXPECT_EQ(scripted::control().transactions().back(), "rollback");
  settle();
  EXPECT_TRUE(at.frame.isNull());
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST(mainmdi_test, a_disconnect_that_fails_is_told) {
  desktop at(scripted_engine());
  at.new_document();
  scripted::control().fail("SQLDisconnect", 1, {SQL_ERROR, "S1000", -30, "will not go"});
  at.frame->close();
  ASSERT_EQ(at.ui.messages.size(), 1U);
  EXPECT_NE(at.ui.messages[0].text.find("will not go"), std::string::npos) << at.ui.messages[0].text;
  EXPECT_EQ(ODBCD::henv, nullptr) << "the second attempt went through";
}

TEST(mainmdi_test, about_names_program_driver_manager_driver_and_database) {
  {
    desktop at(scripted_engine());
    const std::string about = plain(about_text(session::g_con));
    EXPECT_EQ(about.rfind("Sorvane 0.", 0), 0U) << about;
    EXPECT_NE(about.find("ODBC driver: libsorvane_scripted_driver.so, version 01.00.0000"), std::string::npos) << about;
    EXPECT_NE(about.find("Database: Scripted, version 01.00.0000"), std::string::npos) << about;
    EXPECT_EQ(about.find("ODBC driver manager: not known"), std::string::npos) << about;
  }
  EXPECT_NE(plain(about_text(session::g_con)).find("ODBC driver: not known"), std::string::npos);
}

TEST(mainmdi_test, help_opens_beside_the_work) {
  desktop at(scripted_engine());
  action_of(at.frame, "mnuHelpContents")->trigger();
  const auto viewers = at.frame->findChildren<QTextBrowser*>();
  ASSERT_EQ(viewers.size(), 1);
  EXPECT_TRUE(viewers[0]->isVisible());
  EXPECT_FALSE(viewers[0]->isModal());
}

TEST(mainmdi_test, the_status_bar_holds_messages_date_and_time_at_any_width) {
  desktop at(scripted_engine());
  const auto* bar = at.frame->findChild<status_panels*>("MDIsb");
  EXPECT_EQ(bar->count(), 3);
  EXPECT_EQ(plain(bar->text(1)), "Program Messages");
  EXPECT_FALSE(bar->text(2).isEmpty());
  EXPECT_FALSE(bar->text(3).isEmpty());
  at.frame->resize(50, 50);
  settle();
  at.frame->resize(1200, 800);
  settle();
  EXPECT_EQ(plain(bar->text(1)), "Program Messages");
}

}  // namespace
