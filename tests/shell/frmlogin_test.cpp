#include "shell/frmlogin.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "support/desktop.h"
#include "support/memory_store.h"
#include "support/temporary_folder.h"

using texts = std::vector<std::string>;

namespace {

class frmlogin_test : public testing::Test {
 protected:
  void SetUp() override {
    driver.reset();
    store.texts = {{"AS400Default", "SCRIPTED"}, {"AS400DefaultU", "TESTER"}};
  }
  void TearDown() override {
    if (!login.isNull() && login->frame() != nullptr) frame = login->frame();
    if (!frame.isNull()) frame->close();
    delete login;
    settle();
    session::reset();
    EXPECT_TRUE(ODBCD::odbc_free_env());
    EXPECT_EQ(session_scope::open_driver_handles(), 0U);
  }
  void open(const std::string& command_line = {}) {
    login = new frmLogin(store, command_line);
    login->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(login));
  }
  template <typename Widget>
  Widget* control(const char* name) {
    return login->findChild<Widget*>(name);
  }
  // Types a password and presses Enter.
  void enter(const QString& password) {
    QTest::keyClicks(control<QLineEdit>("pwd"), password);
    QTest::keyClick(control<QLineEdit>("pwd"), Qt::Key_Return);
    if (!login.isNull()) frame = login->frame();
    settle();
  }

  recording_user_interface ui;
  scripted::driver& driver = scripted::control();
  memory_store store;
  QPointer<frmLogin> login;
  QPointer<MainMdi> frame;
};

TEST_F(frmlogin_test, opens_with_what_was_used_last_and_waits_for_the_password) {
  open();
  EXPECT_EQ(plain(login->windowTitle()), "Login to DB2");
  EXPECT_EQ(plain(control<QLabel>("Label1")->text()), "Data Source Name  (DSN)");
  EXPECT_EQ(plain(control<QComboBox>("dsn")->currentText()), "SCRIPTED");
  EXPECT_EQ(plain(control<QLineEdit>("uid")->text()), "TESTER");
  EXPECT_EQ(plain(control<QLineEdit>("pwd")->text()), "");
  EXPECT_EQ(control<QLineEdit>("pwd")->echoMode(), QLineEdit::Password);
  EXPECT_TRUE(control<QLineEdit>("pwd")->hasFocus());
  EXPECT_TRUE(control<QRadioButton>("Option1")->isChecked());
  QStringList sources;
  for (int i = 0; i < control<QComboBox>("dsn")->count(); ++i) sources += control<QComboBox>("dsn")->itemText(i);
  sources.sort();
  EXPECT_EQ(plain(sources.join(' ')), "POSTGRES SCRIPTED SQLITE");
  EXPECT_EQ(session::isolation_level, 2) << "the settings are read";
}

TEST_F(frmlogin_test, an_empty_store_leaves_the_boxes_empty) {
  store.texts.clear();
  open();
  EXPECT_EQ(plain(control<QComboBox>("dsn")->currentText() + control<QLineEdit>("uid")->text()), "");
}

TEST_F(frmlogin_test, enter_logs_in_and_the_frame_takes_over) {
  const temporary_folder folder;
  const std::string first = folder.with("a.sql", "select 1;");
  const std::string second = folder.with("my file.sql", "select 2,\r\n3;");
  const std::string third = folder.with("b.sql", "");
  store.texts["ExtFetch_NR"] = "many";
  open(first + " \"" + second + "\" " + folder.file("missing.sql") + " " + folder.file(".") + " " + third);
  control<QRadioButton>("Option2")->setChecked(true);
  session::debug_on = true;
  enter("secret");
  ASSERT_FALSE(frame.isNull());
  EXPECT_TRUE(login.isNull()) << "the login is gone";
  EXPECT_TRUE(frame->isVisible());
  EXPECT_EQ(driver.calls("SQLConnect").at(0).args, (texts{"SCRIPTED", "TESTER", "SECRET"}));
  EXPECT_TRUE(session::is_udb);
  EXPECT_FALSE(session::debug_on);

  const auto documents = frame->findChildren<form1*>();
  ASSERT_EQ(documents.size(), 3);
  const texts paths{first, second, third};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(plain(documents[i]->windowTitle()), "Mirelta Editor: " + paths.at(static_cast<std::size_t>(i)));
    EXPECT_EQ(plain(documents[i]->file_name()), paths.at(static_cast<std::size_t>(i)));
  }
  EXPECT_EQ(text_of(documents[1])->bytes(), "select 2,\r\n3;");
  EXPECT_EQ(plain(frame->findChild<status_panels*>("MDIsb")->text(1)),
            "Setting ExtFetch_NR holds \"many\"; its default is used.");
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(frmlogin_test, a_failed_login_keeps_what_was_typed) {
  driver.require_login("TESTER", "SECRET");
  open();
  control<QComboBox>("dsn")->setEditText(" scripted");
  enter("Wrong");
  EXPECT_TRUE(login->isVisible());
  EXPECT_EQ(login->frame(), nullptr);
  EXPECT_EQ(ui.take_texts(), texts{"Invalid Data Scource, User ID  or Password!"});
  EXPECT_EQ(plain(control<QComboBox>("dsn")->currentText()), " scripted");
  EXPECT_EQ(plain(control<QLineEdit>("uid")->text()), "TESTER");
  EXPECT_EQ(plain(control<QLineEdit>("pwd")->text()), "Wrong");
  EXPECT_TRUE(control<QLineEdit>("pwd")->hasFocus());
  EXPECT_EQ(login->cursor().shape(), Qt::ArrowCursor);

  driver.fail("SQLGetInfo", 1, {SQL_ERROR, "S1000", -77, "no separator"});
  enter("secret");  // over the selected old one
  EXPECT_TRUE(login->isVisible());
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_NE(ui.take_texts()[0].find("no separator"), std::string::npos);
  EXPECT_TRUE(session::g_con.Free());

  enter("secret");
  EXPECT_FALSE(frame.isNull());
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(frmlogin_test, every_way_out_frees_the_environment) {
  const std::vector<std::function<void()>> ways{
      [&] { QTest::mouseClick(control<QPushButton>("Command2"), Qt::LeftButton); },
      [&] { QTest::keyClick(login, Qt::Key_Escape); },
      [&] { login->close(); },
  };
  for (std::size_t way = 0; way < ways.size(); ++way) {
    open();
    EXPECT_NE(ODBCD::henv, nullptr);
    ways[way]();
    EXPECT_EQ(ODBCD::henv, nullptr) << "way " << way;
    EXPECT_FALSE(login->isVisible()) << "way " << way;
    delete login;
  }
  EXPECT_EQ(ui.take_texts(), texts{});
}

}  // namespace
