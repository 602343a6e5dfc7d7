// The documents that the frame brings back: recent files, dropped files, closed and crashed texts.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDropEvent>
#include <QMimeData>
#include <csignal>

#include "editor/recovery_folder.h"
#include "platform/user_data.h"
#include "support/desktop.h"
#include "support/temporary_folder.h"

using texts = std::vector<std::string>;
namespace fs = std::filesystem;

namespace {

fs::path recovery() { return user_data_folder() / "recovery"; }

class mainmdi_documents : public testing::Test {
 protected:
  mainmdi_documents() { fs::remove_all(recovery()); }
  const temporary_folder folder;
};

// Entries of the frame's "&File" menu; those behind "&Reopen Closed Document".
QList<QAction*> recent_entries(const desktop& at) {
  QList<QAction*> found;
  const auto* menu = qobject_cast<const QMenu*>(action_of(at.frame, "mnuMdiNew")->associatedObjects().value(0));
  for (QAction* each : menu->actions())
    if (each->text().contains('/')) found += each;
  return found;
}

texts captions(const desktop& at) {
  texts all;
  for (const form1* each : at.documents())
    all.push_back(plain(each->windowTitle() + "|" + each->file_name()) + "|" + std::string(text_of(each)->bytes()));
  return all;
}

TEST_F(mainmdi_documents, the_files_used_last_stand_in_the_file_menu) {
  desktop at(scripted_engine());
  for (int i = 0; i < 11; ++i)
    open_document(*at.frame, QString::fromStdString(folder.with("a & b" + std::to_string(i), std::to_string(i))));
  open_document(*at.frame, QString::fromStdString(folder.file("a & b9")));
  ASSERT_EQ(recent_entries(at).size(), 9);
  EXPECT_EQ(plain(recent_entries(at)[0]->text()), "&1 " + folder.file("a && b9"));
  EXPECT_EQ(plain(recent_entries(at)[1]->text()), "&2 " + folder.file("a && b10"));
  EXPECT_EQ(at.store.texts["Recent/File1"], folder.file("a & b9")) << "for the next run";

  recent_entries(at)[2]->trigger();
  settle();
  EXPECT_EQ(text_of(at.documents().last())->bytes(), "8");
  EXPECT_EQ(plain(recent_entries(at)[0]->text()), "&1 " + folder.file("a && b8"));
  fs::remove(folder.file("a & b9"));
  recent_entries(at)[1]->trigger();
  settle();
  EXPECT_EQ(at.ui.take_texts(), texts{"Bad File Name!\rI can not open this document: " + folder.file("a & b9")});
  EXPECT_EQ(recent_entries(at).size(), 8) << "forgotten";

  at.store.refuses = "read-only";
  open_document(*at.frame, QString::fromStdString(folder.file("a & b7")));
  EXPECT_EQ(at.ui.take_texts(), texts{}) << "no box";
  EXPECT_NE(at.frame->findChild<status_panels*>("MDIsb")->text(1).indexOf("read-only"), -1);
}

TEST_F(mainmdi_documents, files_dropped_on_frame_or_text_open) {
  desktop at(scripted_engine());
  form1* document = at.new_document();
  put_text(document, "text");
  const auto drop = [](QWidget* on, const QList<QUrl>& files) {
    QMimeData carried;
    carried.setUrls(files);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &carried, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(on, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent dropped({5, 5}, Qt::CopyAction, &carried, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(on, &dropped);
    return true;
  };
  const QUrl good = QUrl::fromLocalFile(QString::fromStdString(folder.with("good.sql", "good")));
  EXPECT_TRUE(drop(text_of(document)->viewport(), {good}));
  EXPECT_TRUE(drop(at.frame, {QUrl::fromLocalFile("/dev/zero"), QUrl("https://host/far.sql"), good}));
  const std::string opened = "Mirelta Editor: " + folder.file("good.sql") + "|" + folder.file("good.sql") + "|good";
  EXPECT_EQ(captions(at), (texts{"Mirelta Editor: UnNamed||text", opened, opened}));
  EXPECT_EQ(at.ui.messages.size(), 2U);
  at.ui.messages.clear();
}

TEST_F(mainmdi_documents, closed_documents_reopen_latest_first_and_unsaved) {
  desktop at(scripted_engine());
  const std::string path = folder.with("file.sql",
                                       "\xEF\xBB\xBF"
                                       "file");
  for (form1* each : {open_document(*at.frame, QString::fromStdString(path)), at.new_document()}) {
    QTest::keyClicks(text_of(each), "typed ");
    each->parentWidget()->close();
  }
  settle();
  for (int i = 0; i < 3; ++i) {
    QTest::keyClick(at.frame, Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    settle();
  }
  EXPECT_EQ(captions(at),
            (texts{"Mirelta Editor: UnNamed||typed ", "Mirelta Editor: " + path + "|" + path + "|typed file"}));
  EXPECT_EQ(plain(at.frame->findChild<status_panels*>("MDIsb")->text(1)), "No unsaved document was closed.");
  for (const form1* each : at.documents()) EXPECT_TRUE(text_of(each)->isModified());
  action_of(at.documents().last(), "save")->trigger();
  EXPECT_EQ(bytes_of(path),
            "\xEF\xBB\xBF"
            "typed file");
  at.ui.messages.clear();
}

// Another program with an unsaved text; killed, or living until the returned descriptor is closed.
int other_program(const std::string& text, bool killed) {
  int ready[2];
  int hold[2];
  if (pipe(ready) != 0 || pipe(hold) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    close(hold[1]);
    std::string ignored;
    recovery_folder::copy copy(std::make_shared<recovery_folder>(recovery()));
    const bool good = copy.begin({"Mirelta Editor: UnNamed", ""}, ignored) && copy.append(text, ignored) &&
                      copy.finish(ignored) && write(ready[1], "x", 1) == 1;
    char byte = 0;
    if (good && !killed && read(hold[0], &byte, 1) >= 0) copy.drop();
    raise(SIGKILL);
  }
  close(hold[0]);
  char byte = 0;
  EXPECT_EQ(read(ready[0], &byte, 1), 1);
  if (killed) waitpid(child, nullptr, 0);
  return hold[1];
}

TEST_F(mainmdi_documents, texts_of_a_crashed_program_are_offered_and_those_of_a_living_one_are_not) {
  const int living = other_program("living", false);
  {
    const desktop at(scripted_engine());
    EXPECT_EQ(at.ui.messages.size(), 0U);
  }
  for (const char* text : {"one", "two"}) other_program(text, true);
  {
    const desktop at(scripted_engine());
    ASSERT_EQ(at.ui.messages.size(), 1U);
    EXPECT_EQ(at.ui.messages[0].title, "Decision");
    EXPECT_NE(at.ui.messages[0].text.find("2 unsaved documents were kept"), std::string::npos);
    texts found;
    for (const form1* each : at.documents()) found.emplace_back(text_of(each)->bytes());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (texts{"one", "two"}));
  }
  fs::remove_all(recovery() / "closed");
  desktop at(scripted_engine());
  other_program("declined", true);
  at.ui.answers = {message_answer::cancel};
  at.frame->MDIForm_Load();
  settle();
  EXPECT_EQ(at.ui.take_texts().size(), 1U);
  EXPECT_EQ(at.documents().size(), 0);
  action_of(at.frame, "mnuReopenClosed")->trigger();
  EXPECT_EQ(captions(at), texts{"Mirelta Editor: UnNamed||declined"}) << "still there for later";
  close(living);
}

}  // namespace
