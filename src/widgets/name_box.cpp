#include "widgets/name_box.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QListView>
#include <QStringListModel>
#include <QWheelEvent>

namespace {

constexpr int shown_at_least = 16;  // characters
constexpr int rows_of_popup = 20;

void make_light(QAbstractItemView* view) {
  view->setTextElideMode(Qt::ElideMiddle);
  if (auto* list = qobject_cast<QListView*>(view)) list->setUniformItemSizes(true);
}

}  // namespace

name_box::name_box(QWidget* parent) : QComboBox(parent), names_(new QStringListModel(this)) {
  setEditable(true);
  setInsertPolicy(NoInsert);
  setFocusPolicy(Qt::StrongFocus);
  // The width must not depend on the entries: it would measure them all.
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(shown_at_least);
  setMaxVisibleItems(rows_of_popup);
  setModel(names_);
  make_light(view());
  auto* completer = new QCompleter(names_, this);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  completer->setFilterMode(Qt::MatchContains);
  completer->setCompletionMode(QCompleter::PopupCompletion);
  completer->setMaxVisibleItems(rows_of_popup);
  make_light(completer->popup());
  setCompleter(completer);
  // The base class takes a typed text for the first entry that is like it but for case.
  disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
  connect(lineEdit(), &QLineEdit::returnPressed, this, &name_box::text_entered);
  connect(this, &QComboBox::activated, this, [this] { emit chosen(); });
}

void name_box::set_names(const QStringList& names) {
  names_->setStringList(names);
  setCurrentIndex(-1);
  setEditText({});
}

bool name_box::lists(const QString& text) const { return names_->stringList().contains(text); }

void name_box::text_entered() {
  // An entry of the offered ones is about to be chosen instead.
  const QAbstractItemView* offered = completer()->popup();
  if (offered->isVisible() && offered->selectionModel()->isSelected(offered->currentIndex())) return;
  if (!currentText().isEmpty()) emit chosen();
}

void name_box::wheelEvent(QWheelEvent* event) {
  if (hasFocus()) {
    QComboBox::wheelEvent(event);
  } else {
    event->ignore();
  }
}
