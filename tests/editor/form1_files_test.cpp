// A document's files: what is loaded, saved, and kept when either fails.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QKeyEvent>

#include "base/files.h"
#include "support/desktop.h"
#include "support/temporary_folder.h"

using namespace std::string_literals;
using texts = std::vector<std::string>;

namespace {

class form1_files : public testing::Test {
 protected:
  void trigger(const char* entry) { action_of(document, entry)->trigger(); }
  // Caption, file name and text of the document.
  [[nodiscard]] texts state() const {
    return {plain(document->windowTitle()), plain(document->file_name()), std::string(text_of(document)->bytes())};
  }

  const temporary_folder folder;
  desktop at{scripted_engine()};
  form1* document = at.new_document();
};

TEST_F(form1_files, load_takes_a_files_text_and_name) {
  const std::string path = folder.with("some, file.sql", "select 1;\r\nselect 2;\n");
  put_text(document, "replaced without a question");
  at.dialogs.next = path;
  trigger("load");
  EXPECT_EQ(state(), (texts{"Mirelta Editor: " + path, path, "select 1;\r\nselect 2;\n"}));
  EXPECT_EQ(at.ui.take_texts(), texts{});

  trigger("load");  // cancelled
  EXPECT_EQ(state().at(1), path);
  EXPECT_EQ(at.dialogs.asked, 2);
}

TEST_F(form1_files, a_failed_load_loses_nothing) {
  at.dialogs.next = folder.with("kept.sql", "select 'kept';");
  trigger("load");
  QTest::keyClicks(text_of(document), "typed");
  const texts before = state();
  ASSERT_EQ(mkfifo(folder.file("pipe.sql").c_str(), 0600), 0);
  std::filesystem::resize_file(folder.with("huge.sql", ""), most_file_bytes + 1);
  for (const std::string& path : {folder.file("missing.sql"), folder.file("."), folder.file("kept.sql") + "/below",
                                  folder.file("pipe.sql"), folder.file("huge.sql"), "/dev/zero"s}) {
    at.dialogs.next = path;
    trigger("load");
    ASSERT_EQ(at.ui.messages.size(), 1U);
    EXPECT_EQ(at.ui.messages[0].title, "User Error");
    EXPECT_EQ(at.ui.messages[0].icon, message_icon::question);
    EXPECT_FALSE(at.ui.messages[0].details.empty()) << "the system's reason";
    EXPECT_EQ(at.ui.take_texts(), texts{"Bad File Name!\rI can not open this document: " + path});
    EXPECT_EQ(state(), before);
  }
}

TEST_F(form1_files, save_asks_for_a_name_once) {
  put_text(document, "select 'ü';\r\n");
  trigger("save");  // cancelled
  EXPECT_EQ(state(), (texts{"Mirelta Editor: UnNamed", "", "select 'ü';\r\n"}));
  EXPECT_EQ(at.ui.take_texts(), texts{});

  const std::string path = folder.with("out.sql", std::string(10'000, 'x'));
  at.dialogs.next = path;
  trigger("save");
  EXPECT_EQ(bytes_of(path), "select 'ü';\r\n") << "nothing of the longer file is left";
  EXPECT_EQ(at.ui.messages.at(0).title, "Message");
  EXPECT_EQ(at.ui.take_texts(), texts{"Output Saved!\rFile: " + path});
  EXPECT_EQ(state(), (texts{"Mirelta Editor: " + path, path, "select 'ü';\r\n"}));

  QTest::keyClicks(text_of(document), "x");
  trigger("save");
  EXPECT_EQ(bytes_of(path), "xselect 'ü';\r\n");
  EXPECT_EQ(at.dialogs.asked, 2);

  at.dialogs.next = folder.file("other.sql");
  trigger("mnuSaveAs");
  EXPECT_EQ(plain(at.dialogs.suggestion), path);
  EXPECT_EQ(state().at(1), folder.file("other.sql"));
  EXPECT_EQ(bytes_of(folder.file("other.sql")), bytes_of(path));
}

TEST_F(form1_files, a_failed_save_loses_nothing) {
  const std::string path = folder.with("good.sql", "old");
  at.dialogs.next = path;
  trigger("load");
  QTest::keyClicks(text_of(document), "typed ");
  const texts before = state();
  ASSERT_EQ(mkfifo(folder.file("pipe.sql").c_str(), 0600), 0);
  for (const std::string& bad : {path + "/below.sql", folder.file("."), folder.file("no folder/a.sql"),
                                 folder.file("pipe.sql"), "/dev/full"s, "/proc/new.sql"s}) {
    at.dialogs.next = bad;
    trigger("mnuSaveAs");
    ASSERT_EQ(at.ui.messages.size(), 1U);
    EXPECT_EQ(at.ui.messages[0].title, "User Error");
    EXPECT_EQ(at.ui.messages[0].icon, message_icon::question);
    EXPECT_FALSE(at.ui.messages[0].details.empty());
    EXPECT_EQ(at.ui.take_texts(), texts{"The filename you supplied: " + bad + " is not valid.....  Try Again."});
    EXPECT_EQ(state(), before);
    EXPECT_EQ(bytes_of(path), "old");
  }
  EXPECT_TRUE(text_of(document)->isModified());
  trigger("save");
  EXPECT_EQ(bytes_of(path), "typed old") << "the document still knows its file";
}

TEST_F(form1_files, bytes_in_are_bytes_out) {
  for (const std::string& content :
       {"'Gr\xFC\xDF\x65' \x80\r\n"s, "\xEF\xBB\xBFselect 'ü';\n"s, "a\0b\r\r\nc\n"s, ""s, "\xEF\xBB\xBF\xFF"s}) {
    SCOPED_TRACE(testing::PrintToString(content));
    at.dialogs.next = folder.with("in.sql", content);
    trigger("load");
    at.dialogs.next = folder.file("out.sql");
    trigger("mnuSaveAs");
    EXPECT_EQ(bytes_of(folder.file("out.sql")), content);
  }
  at.ui.messages.clear();
}

TEST_F(form1_files, a_statement_leaves_a_document_of_any_encoding_as_utf8) {
  scripted::control().default_answer({.row_count = 0});
  at.dialogs.next = folder.with("latin1.sql", "-- \xA7;update t set a = 'Gr\xFC\xDF\x65';\r\n");
  trigger("load");
  text_of(document)->set_caret(10);
  trigger("exe_current");
  EXPECT_EQ(scripted::control().calls("SQLPrepare").back().args.at(0), "update t set a = 'Grüße'");
  QKeyEvent key(QEvent::KeyPress, Qt::Key_Eacute, Qt::NoModifier, "é");
  QApplication::sendEvent(text_of(document), &key);
  trigger("save");
  EXPECT_NE(bytes_of(folder.file("latin1.sql")).find('\xE9'), std::string::npos)
      << "what is typed joins the file's own encoding";
}

TEST_F(form1_files, a_document_opened_in_a_new_window_asks_for_its_first_name) {
  const std::string path = folder.with("some.sql", "select 1;\n");
  trigger("mnuOpenNewWindow");  // cancelled
  at.dialogs.next = folder.file("missing.sql");
  trigger("mnuOpenNewWindow");
  EXPECT_EQ(at.ui.take_texts(), texts{"Bad File Name!\rI can not open this document: " + folder.file("missing.sql")});
  ASSERT_EQ(at.documents().size(), 1);
  at.dialogs.next = path;
  trigger("mnuOpenNewWindow");
  ASSERT_EQ(at.documents().size(), 2);
  document = at.documents().last();
  EXPECT_EQ(state(), (texts{"SQL Editor: " + path, "", "select 1;\n"}));
  trigger("save");
  EXPECT_EQ(at.dialogs.asked, 4);
  EXPECT_EQ(plain(at.dialogs.suggestion), "");
}

TEST_F(form1_files, new_window_opens_another_document) {
  trigger("mnuMDINew");
  ASSERT_EQ(at.documents().size(), 2);
  EXPECT_EQ(plain(at.documents().last()->windowTitle()), "Mirelta Editor: UnNamed");
  EXPECT_EQ(plain(at.documents().last()->file_name()), "");
}

}  // namespace
