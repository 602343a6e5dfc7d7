// A document's menu and the commands that act on its text.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QComboBox>
#include <QFontDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "editor/frmfind.h"
#include "support/desktop.h"
#include "support/temporary_folder.h"

using texts = std::vector<std::string>;

namespace {

// The entries of a menu and of those below it; "-" is off, "!" is not seen.
void list_entries(const QMenu* menu, texts& into) {
  for (const QAction* each : menu->actions()) {
    if (each->isSeparator()) continue;
    const std::string name = plain(each->menu() != nullptr ? each->menu()->objectName() : each->objectName());
    const std::string marks = std::string(each->isEnabled() ? "" : "-") + (each->isVisible() ? "" : "!");
    into.push_back(marks + name + " " + plain(each->text()));
    if (each->menu() != nullptr) list_entries(each->menu(), into);
  }
}

TEST(form1_commands, the_menus_hold_every_entry_in_order) {
  desktop at(scripted_engine());
  const form1* document = at.new_document();
  texts entries;
  for (const QAction* each : document->menu_bar_actions()) {
    entries.push_back(plain(each->text()));
    if (each->menu()->objectName() != "mnuWindowList") list_entries(each->menu(), entries);
  }
  EXPECT_EQ(entries, (texts{
                         "&File",
                         "mnuMDINew &New Window",
                         "load &Open Existing Document",
                         "mnuOpenNewWindow Open Document in New &Window",
                         "save &Save",
                         "mnuSaveAs Save &As",
                         "clear_editor &Clear Editor",
                         "exit &Close Window",
                         "&Edit",
                         "cut Cu&t",
                         "copy &Copy",
                         "paste &Paste",
                         "mnuDelete &Delete",
                         "mnuEditFind &Find",
                         "&Tools",
                         "mnuToolsDrivenQuery &Driven Query",
                         "Columns_listing &Columns Helper Window",
                         "mnuImportExternalDatato400 &Import External Data to 400",
                         "-mnuImportAccess &Access",
                         "mnuImportDbase &Dbase",
                         "-mnuImportDbaseIII &Dbase III",
                         "-mnuImportDbaseIV Dbase &IV",
                         "-mnuImportDbaseV Dbase &V",
                         "mnuImportParadox &Paradox",
                         "-mnuImportParadox50 Paradox &5.0",
                         "-mnuImportParadox4X Paradox &4.X",
                         "-mnuImportParadox3X Paradox &3.X",
                         "mnuImportExcel &Excell",
                         "-mnuImportExcel30 Excel &3.0",
                         "-mnuImportExcel40 Excel &4.0",
                         "-mnuImportExcel50 Excel &5.0,95,97 and 2000",
                         "-mnuImportExcel97 Excel &97",
                         "-mnuImportTextFile &Text Files",
                         "-mnuImportODBCSource &ODBC Source",
                         "-mnuExportCurrentStatement &Export Current Statement",
                         "&Statement",
                         "check_cur_stmt_syntax &Check Statement Syntax",
                         "check_all_stmt_syntax Check All Statement &Syntax",
                         "exe_current &Execute Current",
                         "exe_all Execute &All",
                         "mnu_speed_test S&peed Test Current Statement",
                         "En&vironment",
                         "data_window &Send Select Data to Data Window?",
                         "m_commit &Commit",
                         "m_Rollback &Rollback",
                         "options_panel &Options Panel",
                         "mnuDisplay400JobInfo &Display 400 Job Information",
                         "-!mnuEvnironmentSendJobLogOutfile &Send Job Log to Outfile",
                         "-!mnuEnvEditMacros Edit &Macros",
                         "&Windows",
                         "&Help",
                         "mnuHelpContents &Contents",
                         "about &About",
                     }));
}

struct find_case {
  std::string text;
  std::size_t caret;
  std::string wanted;
  std::vector<std::size_t> hits;  // of presses of "&Find", until there is none
};

TEST(form1_commands, find_walks_from_hit_to_hit) {
  for (const find_case& each : {
           find_case{"SELECT a; select b", 0, "select", {0, 10}},  // at the very start, and then the next
           {"aaa", 0, "A", {0, 1, 2}},
           {"xax", 1, "a", {}},  // one past the caret
           {"\xC3\x89\r\nt\xC3\xA9\r\n", 0, "\xC3\xA9", {0, 5}},
           {"stra\xC3\x9F"
            "e STRASSE",
            0,
            "strasse",
            {8}},
           {"a b", 0, "c", {}},
           {"", 0, "c", {}},
       }) {
    SCOPED_TRACE(each.text + " / " + each.wanted);
    desktop at(scripted_engine());
    form1* document = at.new_document();
    put_text(document, each.text);
    text_of(document)->set_caret(each.caret);
    action_of(document, "mnuEditFind")->trigger();
    auto* find = document->findChild<frmFind*>();
    ASSERT_NE(find, nullptr);
    EXPECT_TRUE(find->isModal());
    find->findChild<QLineEdit*>("txtFindString")->setText(QString::fromStdString(each.wanted));
    for (const std::size_t hit : each.hits) {
      QTest::keyClick(find, Qt::Key_Return);
      EXPECT_EQ(text_of(document)->caret(), hit);
      EXPECT_EQ(text_of(document)->selectedText().compare(QString::fromStdString(each.wanted), Qt::CaseInsensitive), 0);
      EXPECT_EQ(at.ui.take_texts(), texts{});
    }
    QTest::mouseClick(find->findChild<QPushButton*>("OKButton"), Qt::LeftButton);
    ASSERT_EQ(at.ui.messages.size(), 1U);
    EXPECT_EQ(at.ui.messages[0].title + at.ui.take_texts()[0], "Not Found!");
    EXPECT_TRUE(find->isVisible());
    QTest::mouseClick(find->findChild<QPushButton*>("CancelButton"), Qt::LeftButton);
    settle();
    EXPECT_EQ(document->findChild<frmFind*>(), nullptr);
    EXPECT_EQ(session::find_text, each.wanted);
  }
}

TEST(form1_commands, find_remembers_its_text_and_outlives_no_document) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  put_text(document,
           "Gr\xC3\xB6\xC3\x9F"
           "e a A");
  action_of(document, "find_again")->trigger();  // nothing to look for yet: asks
  auto* find = document->findChild<frmFind*>();
  ASSERT_NE(find, nullptr);
  EXPECT_FALSE(find->findChild<QPushButton*>("OKButton")->isEnabled());
  QTest::keyClicks(find->findChild<QLineEdit*>("txtFindString"), "a");
  QTest::keyClick(find, Qt::Key_Return);
  QTest::keyClick(find, Qt::Key_Escape);
  settle();
  at.frame->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(at.frame));
  QTest::keyClick(text_of(document), Qt::Key_F3);
  EXPECT_EQ(plain(text_of(document)->selectedText()), "A");

  at.dialogs.next = temporary_folder().with("latin1.sql", "x Gr\xF6\xDF\x65");
  session::find_text = "\xC3\x96";
  action_of(document, "mnuEditFind")->trigger();
  const QPointer<frmFind> open = document->findChild<frmFind*>();
  EXPECT_EQ(plain(open->findChild<QLineEdit*>("txtFindString")->text()), "\xC3\x96");
  document->parentWidget()->close();
  settle();
  EXPECT_TRUE(open.isNull());
}

TEST(form1_commands, the_clipboard_commands_act_on_the_control_with_the_focus) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  ASSERT_TRUE(QTest::qWaitForWindowActive(at.frame));
  put_text(document, "select a");
  auto* line = new QLineEdit("line", document);
  auto* combo = new QComboBox(document);
  combo->setEditable(true);
  combo->setEditText("combo");
  auto* plain_edit = new QPlainTextEdit("plain", document);
  auto* button = new QPushButton("button", document);
  const auto text_in = [&](int k) {
    return k == 0 ? std::string(text_of(document)->bytes())
                  : plain(k == 1   ? line->text()
                          : k == 2 ? combo->currentText()
                                   : plain_edit->toPlainText());
  };
  QWidget* const controls[] = {text_of(document), line, combo, plain_edit};
  QWidget* const edits[] = {text_of(document), line, combo->lineEdit(), plain_edit};
  QClipboard* clipboard = QGuiApplication::clipboard();
  for (QWidget* each : {static_cast<QWidget*>(line), static_cast<QWidget*>(combo), static_cast<QWidget*>(plain_edit),
                        static_cast<QWidget*>(button)})
    each->show();
  for (int k = 0; k < 4; ++k) {
    SCOPED_TRACE(k);
    const std::string before = text_in(k);
    controls[k]->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), controls[k]);
    clipboard->setText("kept");
    for (const char* entry : {"copy", "cut", "mnuDelete"}) action_of(document, entry)->trigger();
    EXPECT_EQ(text_in(k) + plain(clipboard->text()), before + "kept") << "nothing is selected";

    const auto select_all = [&] { QMetaObject::invokeMethod(edits[k], "selectAll"); };
    select_all();
    action_of(document, "copy")->trigger();
    EXPECT_EQ(plain(clipboard->text()) + text_in(k), before + before);
    clipboard->setText("kept");
    select_all();
    action_of(document, "mnuDelete")->trigger();
    EXPECT_EQ(text_in(k) + plain(clipboard->text()), "kept");
    action_of(document, "paste")->trigger();
    select_all();
    action_of(document, "paste")->trigger();
    EXPECT_EQ(text_in(k), "kept") << "what was selected is replaced";
    select_all();
    clipboard->clear();
    action_of(document, "cut")->trigger();
    EXPECT_EQ(text_in(k) + plain(clipboard->text()), "kept");
  }
  button->setFocus();
  for (const char* entry : {"copy", "cut", "paste", "mnuDelete"}) action_of(document, entry)->trigger();

  // By keyboard the menu bar has the focus while the entry is chosen.
  put_text(document, "menu");
  text_of(document)->setFocus();
  text_of(document)->selectAll();
  QTest::keyClick(at.frame, Qt::Key_E, Qt::AltModifier);
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_T);
  EXPECT_EQ(std::string(text_of(document)->bytes()) + plain(clipboard->text()), "menu");
}

TEST(form1_commands, keys_of_the_text_stay_its_own) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  ASSERT_TRUE(QTest::qWaitForWindowActive(at.frame));
  QTest::keyClicks(text_of(document), "abc");
  text_of(document)->set_caret(0);
  QTest::keyClick(text_of(document), Qt::Key_Delete);
  EXPECT_EQ(text_of(document)->bytes(), "bc") << "Del removes the next character, not only a selection";
  QTest::keyClick(text_of(document), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(text_of(document)->bytes(), "abc");
  QTest::keyClick(text_of(document), Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(text_of(document)->bytes(), "bc");
  QTest::keyClick(text_of(document), Qt::Key_F, Qt::ControlModifier);
  auto* find = document->findChild<frmFind*>();
  ASSERT_NE(find, nullptr);
  find->close();
  settle();
  at.frame->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(at.frame));
  QTest::keyClick(text_of(document), Qt::Key_W, Qt::ControlModifier);
  settle();
  EXPECT_EQ(at.documents().size(), 0);
}

TEST(form1_commands, clear_asks_and_can_be_undone) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  QTest::keyClicks(text_of(document), "typed");
  at.ui.answers = {message_answer::cancel, message_answer::ok};
  action_of(document, "clear_editor")->trigger();
  EXPECT_EQ(text_of(document)->bytes(), "typed");
  action_of(document, "clear_editor")->trigger();
  EXPECT_EQ(text_of(document)->bytes(), "");
  EXPECT_EQ(at.ui.messages.at(0).title, "Decision");
  EXPECT_EQ(at.ui.messages.at(0).icon, message_icon::question);
  EXPECT_EQ(at.ui.messages.at(0).buttons, message_buttons::ok_cancel);
  EXPECT_EQ(at.ui.take_texts(), (texts{"Clear the editor?", "Clear the editor?"}));
  action_of(document, "undo")->trigger();
  EXPECT_EQ(text_of(document)->bytes(), "typed");

  at.ui.while_open = [&](const message&) {
    document->parentWidget()->close();
    settle();
  };
  action_of(document, "clear_editor")->trigger();
  EXPECT_EQ(at.documents().size(), 0);
  at.ui.messages.clear();
}

TEST(form1_commands, the_job_log_goes_to_an_outfile) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  const std::string call = "call qsys.qcmdexc('DSPJOBLOG OUTPUT(*OUTFILE) OUTFILE(CODE/JLTEST)',0000000047.00000)";
  scripted::control().answer_to(call, {.row_count = 0});
  action_of(document, "mnuEvnironmentSendJobLogOutfile")->trigger();
  EXPECT_EQ(scripted::control().executions().size(), 1U);
  EXPECT_EQ(at.ui.take_texts(), texts{});
  scripted::control().fail("SQLExecute", 1, {SQL_ERROR, "S1000", -443, "no such library"});
  action_of(document, "mnuEvnironmentSendJobLogOutfile")->trigger();
  ASSERT_EQ(at.ui.messages.size(), 1U);
  EXPECT_NE(at.ui.take_texts()[0].find("no such library"), std::string::npos);
}

TEST(form1_commands, the_font_starts_as_arial_and_a_choice_is_remembered) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  EXPECT_EQ(plain(text_of(document)->text_font().family()), "Arial");
  action_of(document, "choose_font")->trigger();
  auto* dialog = document->findChild<QFontDialog*>();
  ASSERT_NE(dialog, nullptr);
  dialog->setCurrentFont(QFont("Monospace", 17));
  dialog->accept();
  settle();
  EXPECT_EQ(text_of(document)->text_font().pointSize(), 17);
  EXPECT_EQ(text_of(at.new_document())->text_font().pointSize(), 17);
}

TEST(form1_commands, the_icon_of_an_unsaved_document_has_a_dot) {
  const temporary_folder folder;
  desktop at(scripted_engine());
  form1* document = at.new_document();
  const auto picture = [&] { return document->parentWidget()->windowIcon().pixmap(32, 32).toImage(); };
  const std::string caption = plain(document->windowTitle());
  QTest::keyClicks(text_of(document), "a");
  const QImage unsaved = picture();
  EXPECT_EQ(plain(document->windowTitle()), caption);
  EXPECT_EQ(unsaved.pixelColor(unsaved.width() * 3 / 4, unsaved.height() * 3 / 4), QColor(0xd0, 0x20, 0x20));
  at.dialogs.next = folder.file("saved.sql");
  action_of(document, "save")->trigger();
  EXPECT_NE(picture(), unsaved);
  at.ui.messages.clear();
}

}  // namespace
