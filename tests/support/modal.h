#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <functional>

// Runs what opens a modal window and drives the window while it is open. What the driver leaves open is cancelled.
template <typename Window>
void in_modal(const std::function<void()>& open, const std::function<void(Window&)>& drive) {
  bool driven = false;
  QTimer::singleShot(0, qApp, [&] {
    const QPointer window = qobject_cast<Window*>(QApplication::activeModalWidget());
    ASSERT_FALSE(window.isNull()) << "no such window is open";
    driven = true;
    // A window over an active one counts as active before it has the focus.
    EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == window; }));
    drive(*window);
    if (!window.isNull() && window->isVisible()) window->reject();
  });
  open();
  EXPECT_TRUE(driven);
}

// Presses Alt and a letter, and waits until the button that this animates has been clicked.
inline void press_mnemonic(QWidget& window, Qt::Key letter) {
  const QPointer alive(&window);
  QTest::keyClick(&window, letter, Qt::AltModifier);
  QAbstractButton* pressed = nullptr;
  for (auto* each : window.findChildren<QAbstractButton*>()) pressed = each->isDown() ? each : pressed;
  ASSERT_NE(pressed, nullptr) << "no button has this letter";
  EXPECT_TRUE(QTest::qWaitFor([&] { return alive.isNull() || !pressed->isDown(); }));
}

// The names of the widgets that Tab reaches one after the other, from the one that has the focus on, joined by blanks.
// Of radio buttons that exclude each other Tab reaches the checked one.
inline std::string tab_order(QWidget& window, int count) {
  std::string names;
  for (int i = 0; i < count; ++i) {
    QWidget* focused = window.focusWidget();
    names += (i == 0 ? "" : " ") + (focused == nullptr ? "nothing" : focused->objectName().toStdString());
    QTest::keyClick(focused, Qt::Key_Tab);
  }
  return names;
}
