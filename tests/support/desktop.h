#pragma once

#include <QAction>
#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTest>

#include "editor/form1.h"
#include "editor/sql_text_box.h"
#include "platform/file_dialogs.h"
#include "shell/mainmdi.h"
#include "support/memory_store.h"
#include "support/recording_user_interface.h"
#include "support/session_scope.h"
#include "widgets/status_panels.h"

// Answers file dialogs: the next name, or "" as a user who cancels does.
class answered_dialogs final : public file_dialogs {
 public:
  answered_dialogs() { install(this); }
  ~answered_dialogs() override { install(nullptr); }
  answered_dialogs(const answered_dialogs&) = delete;
  answered_dialogs& operator=(const answered_dialogs&) = delete;

  QString open(const file_dialog&, QWidget*) override { return take(); }
  QString save(const file_dialog&, const QString& suggested, QWidget*) override {
    suggestion = suggested;
    return take();
  }
  std::string next;
  QString suggestion;
  int asked = 0;

 private:
  QString take() {
    ++asked;
    return QString::fromStdString(std::exchange(next, {}));
  }
};

// Lets windows that were closed be deleted, and everything queued happen.
inline void settle() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QApplication::processEvents();
}

inline QAction* action_of(const QWidget* window, const char* name) {
  auto* found = window->findChild<QAction*>(name);
  if (found == nullptr) throw std::runtime_error(std::string("no entry ") + name);
  return found;
}

inline std::string plain(const QString& text) { return text.toStdString(); }

// The frame of a session that is logged in, without a screen; closed and given back at the end of the test.
class desktop {
 public:
  explicit desktop(const engine& which, const std::string& command_line = {})
      : session_(which), frame(new MainMdi(store, command_line)) {
    frame->show();
    frame->MDIForm_Load();
    settle();
  }
  ~desktop() {
    if (!frame.isNull()) frame->close();
    settle();
    EXPECT_TRUE(frame.isNull());
  }
  desktop(const desktop&) = delete;
  desktop& operator=(const desktop&) = delete;

  [[nodiscard]] QList<form1*> documents() const { return frame->findChildren<form1*>(); }
  form1* new_document() {
    action_of(frame, "mnuMdiNew")->trigger();
    settle();
    return documents().last();
  }
  // The captions in the menu bar, joined by blanks.
  [[nodiscard]] std::string menus() const {
    QStringList titles;
    for (const QAction* each : frame->menuBar()->actions()) titles += each->text();
    return plain(titles.join(' '));
  }

  recording_user_interface ui;
  answered_dialogs dialogs;
  memory_store store;  // what the windows save

 private:
  session_scope session_;

 public:
  QPointer<MainMdi> frame;
};

inline sql_text_box* text_of(const form1* document) { return document->findChild<sql_text_box*>("Text1"); }

inline void put_text(const form1* document, const std::string& text) {
  text_of(document)->set_document({text, document_encoding::utf8, false});
}

// The seven panels of a document, joined by '|'; times are left out unless they read "0.00000".
inline std::string panels_of(const form1* document) {
  const auto* bar = document->findChild<status_panels*>("mSB");
  QStringList texts;
  for (int number = 1; number <= bar->count(); ++number) {
    const QString text = bar->text(number);
    const bool figure = number > 1 && number != 6 && text != "0.00000";
    texts += figure ? QString("t") : text;
  }
  return plain(texts.join('|'));
}
