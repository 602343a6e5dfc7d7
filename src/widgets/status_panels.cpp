#include "widgets/status_panels.h"

#include <QLabel>
#include <QLayout>

namespace {

constexpr int text_margin = 2;

}  // namespace

status_panels::status_panels(QWidget* parent) : QStatusBar(parent) { setSizeGripEnabled(false); }

void status_panels::add_panel(const QString& text, const QString& tooltip, int stretch) {
  auto* label = new QLabel(this);
  label->setTextFormat(Qt::PlainText);
  label->setToolTip(tooltip);
  label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  label->setMargin(text_margin);
  const int characters = stretch > 0 ? 10 : 5;
  label->setMinimumWidth(label->fontMetrics().averageCharWidth() * characters);
  label->setSizePolicy(stretch > 0 ? QSizePolicy::Ignored : QSizePolicy::Minimum, QSizePolicy::Fixed);
  panels_.push_back({label, text, stretch > 0});
  addPermanentWidget(label, stretch);
  show_text(panels_.back());
}

void status_panels::show_text(panel_state& shown) {
  if (shown.shares) {
    const int room = shown.label->contentsRect().width() - 2 * text_margin;
    shown.label->setText(shown.label->fontMetrics().elidedText(shown.text, Qt::ElideRight, room));
    return;
  }
  shown.label->setText(shown.text);
  shown.label->setMinimumWidth(qMax(shown.label->minimumWidth(), shown.label->sizeHint().width()));
}

void status_panels::set_text(int number, const QString& text) {
  panel_state& changed = panels_[static_cast<std::size_t>(number - 1)];
  if (changed.text == text) return;
  changed.text = text;
  show_text(changed);
  if (layout() != nullptr) layout()->activate();
  for (panel_state& each : panels_) {
    if (each.shares) show_text(each);
  }
}

QString status_panels::text(int number) const { return at(number).text; }

void status_panels::resizeEvent(QResizeEvent* event) {
  QStatusBar::resizeEvent(event);
  if (layout() != nullptr) layout()->activate();
  for (panel_state& each : panels_) {
    if (each.shares) show_text(each);
  }
}
