#pragma once

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include "params/fbindparms.h"
#include "params/fshowparms.h"
#include "params/parameter_lines.h"
#include "params/prepared.h"
#include "params/value_box.h"

// The one open window of a class, or nullptr.
template <typename Form>
Form* open_form() {
  Form* found = nullptr;
  for (QWidget* each : QApplication::topLevelWidgets()) {
    if (auto* form = qobject_cast<Form*>(each); form != nullptr && form->isVisible()) found = form;
  }
  return found;
}

inline QLineEdit* box_of(const QWidget* form, const char* column, int k) {
  auto* found = form->findChild<QLineEdit*>(QString("%1_%2").arg(column).arg(k));
  if (found == nullptr) throw std::runtime_error("no such box");
  return found;
}
inline value_box* value_of_line(const QWidget* form, int k) {
  return qobject_cast<value_box*>(box_of(form, "BindData", k));
}
inline QScrollBar* scroll_bar_of(const QWidget* form) { return form->findChild<QScrollBar*>("pS"); }
inline void press(const QWidget* form, const char* button) { form->findChild<QPushButton*>(button)->click(); }

inline void settle() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QApplication::processEvents();
}
