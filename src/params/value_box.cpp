#include "params/value_box.h"

#include <QFocusEvent>
#include <limits>

// A line edit's own limit of 32,767 characters would cut a pasted or returned value without a word.
value_box::value_box(QWidget* parent) : QLineEdit(parent) { setMaxLength(std::numeric_limits<int>::max()); }

void value_box::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  selectAll();
  emit entered(event->reason());
}

void value_box::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  emit left();
}
