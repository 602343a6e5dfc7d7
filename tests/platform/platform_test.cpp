#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QIcon>
#include <QMessageBox>
#include <QTextBrowser>
#include <QTimer>
#include <QWidget>
#include <csignal>

#include "platform/file_dialogs.h"
#include "platform/help_viewer.h"
#include "platform/program_resources.h"
#include "platform/qt_user_interface.h"
#include "platform/saved_file.h"
#include "support/temporary_folder.h"

using namespace std::string_literals;

namespace {

TEST(saved_file, replaces_a_file_whole_or_leaves_it) {
  const temporary_folder folder;
  std::string why;
  const std::string path = folder.with("doc.sql", "a longer old text");
  EXPECT_TRUE(write_whole_file(path, "new\0\r\n"s, why));
  EXPECT_EQ(bytes_of(path), "new\0\r\n"s);
  EXPECT_TRUE(write_whole_file(path, "", why));
  EXPECT_EQ(bytes_of(path), "");

  EXPECT_FALSE(write_whole_file(path + "/below.sql", "x", why));
  EXPECT_NE(why, "");
  EXPECT_EQ(bytes_of(path), "");
  why.clear();
  std::filesystem::create_directories(folder.file("sub"));
  EXPECT_FALSE(write_whole_file(folder.file("sub"), "x", why)) << "a folder of that name";
  EXPECT_NE(why, "");
  EXPECT_FALSE(write_whole_file(folder.file("missing/doc.sql"), "x", why));
  EXPECT_EQ(folder.entries(), 2U) << "no temporary file is left";
}

TEST(saved_file, a_disk_that_fills_up_in_the_middle_leaves_the_old_file) {
  const temporary_folder folder;
  const std::string path = folder.with("doc.sql", "the old text");
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  std::string why;
  const bool written = write_whole_file(path, std::string(100'000, 'x'), why);
  std::string why_short;
  const bool short_written = write_whole_file(path, std::string(2000, 'x'), why_short);  // less than a buffer
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_FALSE(written);
  EXPECT_FALSE(short_written);
  EXPECT_EQ(why + ", " + why_short, "File too large, File too large");
  EXPECT_TRUE(bytes_of(path) == "the old text") << "it is " << bytes_of(path).size() << " bytes";
  EXPECT_EQ(folder.entries(), 1U) << "no temporary file is left";
}

TEST(saved_file, a_link_goes_on_leading_to_the_file) {
  const temporary_folder folder;
  const std::string path = folder.with("doc.sql", "old");
  std::filesystem::create_symlink(path, folder.file("link.sql"));
  std::string why;
  EXPECT_TRUE(write_whole_file(folder.file("link.sql"), "new", why)) << why;
  EXPECT_EQ(bytes_of(path), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.sql")));
}

TEST(file_dialogs_test, filters_are_pairs_of_description_and_pattern) {
  EXPECT_EQ(qt_filter("SQL Files|*.sql"), "SQL Files (*.sql);;All Files (*)");
  EXPECT_EQ(qt_filter("Excel|*.xls;*.xlsx|Text|*.txt"), "Excel (*.xls *.xlsx);;Text (*.txt);;All Files (*)");
  EXPECT_EQ(qt_filter(""), "All Files (*)");
}

TEST(file_dialogs_test, another_can_be_installed_and_taken_back) {
  class answering final : public file_dialogs {
    QString open(const file_dialog& dialog, QWidget*) override { return dialog.title + "!"; }
    QString save(const file_dialog&, const QString& suggested, QWidget*) override { return suggested; }
  } answers;
  file_dialogs& desktop = file_dialogs::current();
  file_dialogs::install(&answers);
  EXPECT_EQ(file_dialogs::current().open({"Title", "", ""}, nullptr), "Title!");
  file_dialogs::install(nullptr);
  EXPECT_EQ(&file_dialogs::current(), &desktop);
}

TEST(program_resources, the_help_page_and_the_icon_are_inside_the_program) {
  use_program_resources();
  QApplication::processEvents();
  EXPECT_FALSE(QGuiApplication::windowIcon().isNull());
  QWidget owner;
  show_help_contents(&owner);
  show_help_contents(&owner);
  const auto viewers = owner.findChildren<QTextBrowser*>();
  ASSERT_EQ(viewers.size(), 1) << "the open window is used again";
  EXPECT_TRUE(viewers[0]->isVisible());
  EXPECT_TRUE(viewers[0]->toPlainText().contains("Sorvane"));
}

TEST(qt_user_interface_test, a_message_may_have_a_check_box) {
  qt_user_interface desktop;
  for (const bool tick : {true, false}) {
    QTimer::singleShot(0, [tick] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      EXPECT_EQ(box->text(), "text");
      EXPECT_EQ(box->checkBox()->text(), "&Not again");
      if (tick) box->checkBox()->click();
      box->accept();
    });
    EXPECT_EQ(desktop.show_message_with_check({"text", {}, message_icon::none, message_buttons::ok, {}}, "&Not again"),
              tick);
  }
}

TEST(qt_user_interface_test, the_busy_pointer_is_set_once_and_taken_back) {
  qt_user_interface desktop;
  const scoped_user_interface installed(desktop);
  begin_busy();
  begin_busy();
  ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
  end_busy();
  EXPECT_EQ(desktop.pointer(), pointer_shape::hourglass);
  end_busy();
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

}  // namespace
