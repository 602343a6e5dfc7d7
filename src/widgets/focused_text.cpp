#include "widgets/focused_text.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMetaObject>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

// The control with the focus; for an editable combo or spin box the line inside it.
QWidget* focused() {
  QWidget* control = QApplication::focusWidget();
  if (control == nullptr) return nullptr;
  auto* line = control->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
  return line != nullptr ? line : control;
}

void invoke(const char* slot) {
  QWidget* control = focused();
  if (control == nullptr) return;
  if (control->metaObject()->indexOfMethod(QByteArray(slot) + "()") < 0) return;
  QMetaObject::invokeMethod(control, slot, Qt::DirectConnection);
}

template <typename Edit>
bool remove_from(QWidget* control) {
  auto* edit = qobject_cast<Edit*>(control);
  if (edit == nullptr) return false;
  if (!edit->isReadOnly()) edit->textCursor().removeSelectedText();
  return true;
}

}  // namespace

namespace focused_text {

void cut() { invoke("cut"); }
void copy() { invoke("copy"); }
void paste() { invoke("paste"); }

void delete_selection() {
  QWidget* control = focused();
  if (control == nullptr) return;
  if (auto* line = qobject_cast<QLineEdit*>(control)) {
    if (line->hasSelectedText() && !line->isReadOnly()) line->del();
    return;
  }
  if (remove_from<QTextEdit>(control) || remove_from<QPlainTextEdit>(control)) return;
  invoke("removeSelectedText");
}

}  // namespace focused_text
