// What is typed and not saved: copied meanwhile, and kept when its document goes.
#include <gtest/gtest.h>

#include "editor/document_keeper.h"
#include "platform/user_data.h"
#include "support/desktop.h"
#include "support/temporary_folder.h"

namespace fs = std::filesystem;
using texts = std::vector<std::string>;

namespace {

class document_keeper_test : public testing::Test {
 protected:
  document_keeper_test() { fs::remove_all(recovery()); }
  static fs::path recovery() { return user_data_folder() / "recovery"; }
  // The contents, without their heads, of the texts below a folder whose name begins with `where`.
  static texts kept(const std::string& where) {
    texts found;
    std::error_code none;
    for (const auto& each : fs::recursive_directory_iterator(recovery(), none)) {
      const bool there = each.path().parent_path().filename().string().starts_with(where);
      if (!there || each.path().extension() != ".text") continue;
      const std::string bytes = bytes_of(each.path());
      std::size_t body = 0;
      for (int line = 0; line < 3; ++line) body = bytes.find('\n', body) + 1;
      found.push_back(bytes.substr(body));
    }
    return found;
  }
  static bool comes_to(const std::function<bool()>& state) { return QTest::qWaitFor(state, 15'000); }
  [[nodiscard]] std::string note() const { return plain(at.frame->findChild<status_panels*>("MDIsb")->text(1)); }

  const temporary_folder folder;
  desktop at{scripted_engine()};
  form1* document = at.new_document();
};

TEST_F(document_keeper_test, a_pause_copies_what_is_typed_and_a_save_drops_the_copy) {
  QTest::keyClicks(text_of(document), "typed");
  EXPECT_EQ(kept("session-"), texts{}) << "no key waits for the disk";
  EXPECT_TRUE(comes_to([] { return kept("session-") == texts{"typed"}; }));
  QTest::keyClicks(text_of(document), "!");
  EXPECT_TRUE(comes_to([] { return kept("session-") == texts{"typed!"}; }));
  at.dialogs.next = folder.file("saved.sql");
  action_of(document, "save")->trigger();
  EXPECT_EQ(kept("session-"), texts{});
  QTest::keyClicks(text_of(document), "?");
  EXPECT_TRUE(comes_to([] { return !kept("session-").empty(); }));
  action_of(document, "undo")->trigger();
  EXPECT_TRUE(comes_to([] { return kept("session-").empty(); })) << "as saved again";
}

TEST_F(document_keeper_test, a_large_text_is_copied_whole_though_keys_come_between) {
  std::string large;
  while (large.size() < 900'000) large += "select " + std::to_string(large.size()) + ";\r\n";
  put_text(document, large);
  auto* keeper = document->findChild<document_keeper*>();
  text_of(document)->set_caret(large.size() / 2);
  QTest::keyClick(text_of(document), Qt::Key_A);
  const auto begun = [] {
    std::error_code none;
    for (const auto& each : fs::recursive_directory_iterator(recovery(), none))
      if (each.path().extension() == ".begun") return true;
    return false;
  };
  bool seen = false;
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, keeper, [&] {
    if (seen || !begun()) return;
    seen = true;
    QTest::keyClick(text_of(document), Qt::Key_B);
  });
  watch.start(0);
  EXPECT_TRUE(comes_to([&] { return !kept("session-").empty(); }));
  EXPECT_TRUE(seen);
  EXPECT_TRUE(kept("session-").at(0) == large.insert(large.size() / 2, "ab"));
}

TEST_F(document_keeper_test, only_what_no_file_holds_is_kept_when_a_document_goes) {
  QTest::keyClicks(text_of(document), "typed");
  at.dialogs.next = folder.with("clean.sql", "clean");
  action_of(document, "load")->trigger();
  EXPECT_EQ(kept("closed"), texts{"typed"}) << "replaced by a file";
  EXPECT_EQ(text_of(document)->bytes(), "clean");
  action_of(document, "undo")->trigger();
  EXPECT_EQ(text_of(document)->bytes(), "typed");
  action_of(document, "redo")->trigger();
  EXPECT_FALSE(text_of(document)->isModified());
  document->parentWidget()->close();
  at.new_document();
  at.frame->close();
  settle();
  EXPECT_EQ(kept("closed"), texts{"typed"});
  EXPECT_EQ(kept("session-"), texts{});
  EXPECT_EQ(at.ui.take_texts(), texts{});
}

TEST_F(document_keeper_test, a_full_disk_is_told_once_and_loses_nothing) {
  fs::remove_all(recovery());
  write_file(recovery(), "a file in the way");
  auto* keeper = document->findChild<document_keeper*>();
  texts told;
  QObject::connect(keeper, &document_keeper::copied, keeper, [&](const QString& why) { told.push_back(plain(why)); });
  for (int round = 0; round < 2; ++round) {
    QTest::keyClicks(text_of(document), "x");
    QTest::qWait(1300);
  }
  EXPECT_EQ(told.size(), 1U);
  EXPECT_NE(note().find("Not a directory"), std::string::npos) << note();
  EXPECT_EQ(text_of(document)->bytes(), "xx");
  EXPECT_EQ(at.ui.take_texts(), texts{});

  document->parentWidget()->close();
  settle();
  QTest::keyClick(at.frame, Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_EQ(at.documents().size(), 1) << "from memory";
  EXPECT_EQ(text_of(at.documents()[0])->bytes(), "xx");
  fs::remove(recovery());
  QTest::keyClicks(text_of(at.documents()[0]), "y");
  EXPECT_TRUE(comes_to([] { return kept("session-") == texts{"yxx"}; }));
  EXPECT_EQ(note(), "Program Messages");
}

}  // namespace
