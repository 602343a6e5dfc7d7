#include "params/parameter_lines.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>

#include "params/value_box.h"

namespace {

// A column: the boxes' name, its title, and the widest text that it is made for.
struct column {
  const char* name;
  const char* title;
  const char* widest;
};
constexpr column columns[] = {{"Parm", "Parm #", "9999"},  {"DataType", "Data Type", "Timestamp"},
                              {"Nullable", "Nulls?", "N"}, {"Length", "Length", "2147483647"},
                              {"pScale", "Scale", "-99"},  {"BindData", "Data to Bind", "2001-05-17 13:45:30.123456"}};
constexpr int value_position = 5;
constexpr int last_line = parameter_lines::line_count - 1;

QString name_of(int position, int k) { return QString("%1_%2").arg(columns[position].name).arg(k); }

}  // namespace

parameter_lines::parameter_lines(QWidget* parent) : QWidget(parent), pS(new QScrollBar(Qt::Vertical, this)) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(10);  // titles as wide as their boxes must not run together
  grid->setColumnStretch(value_position, 1);
  for (int position = 0; position <= value_position; ++position) {
    auto* title = new QLabel(columns[position].title, this);
    title->setObjectName(QString("Label%1").arg(position + 1));
    grid->addWidget(title, 0, position);
    titles_[static_cast<std::size_t>(position)] = title;
  }
  for (int k = 0; k < line_count; ++k) {
    line& each = lines_[static_cast<std::size_t>(k)];
    for (int position = 0; position < value_position; ++position) {
      auto* described = new QLineEdit(this);
      described->setObjectName(name_of(position, k));
      described->setAccessibleName(columns[position].title);
      described->setReadOnly(true);
      described->setFocusPolicy(Qt::ClickFocus);
      grid->addWidget(described, k + 1, position);
      each.described[static_cast<std::size_t>(position)] = described;
    }
    each.BindData = new value_box(this);
    each.BindData->setObjectName(name_of(value_position, k));
    grid->addWidget(each.BindData, k + 1, value_position);
    connect(each.BindData, &QLineEdit::textChanged, this, [this, k] { BindData_Change(k); });
    connect(each.BindData, &value_box::entered, this, [this, k](Qt::FocusReason why) { BindData_GotFocus(k, why); });
    connect(each.BindData, &value_box::left, this, [this, k] { BindData_LostFocus(k); });
  }
  pS->setObjectName("pS");
  pS->setPageStep(line_count);
  pS->setToolTip("Pages through the parameters");
  grid->addWidget(pS, 1, value_position + 1, line_count, 1);
  connect(pS, &QScrollBar::valueChanged, this, &parameter_lines::pS_Change);
  adopt_font();
  set_value_column(columns[value_position].title, value_column::editable);
}

void parameter_lines::set_value_column(const QString& title, value_column kind) {
  values_ = kind;
  titles_[value_position]->setText(title);
  const bool editable = kind == value_column::editable;
  for (const line& each : lines_) {
    each.BindData->setReadOnly(!editable);
    each.BindData->setAccessibleName(title);
    each.BindData->setToolTip(editable ? "The value of this parameter; #NULL# stands for a null value" : QString());
  }
  adopt_palette();
}

void parameter_lines::set_up(int n) {
  n_ = n;
  table_.clear();
  pS->setRange(0, qMax(0, n - line_count));
  pS->setValue(0);
  pS->setVisible(n >= line_count);
  top_ = pS->value();
  for (int k = 0; k < line_count; ++k) {
    const line& each = lines_[static_cast<std::size_t>(k)];
    for (QLineEdit* described : each.described) described->setVisible(k < n);
    each.BindData->setVisible(k < n);
  }
}

void parameter_lines::fill(std::vector<parameter_row> table) {
  table_ = std::move(table);
  for (int k = 0; k < qMin(n_, line_count); ++k) show_line(k);
  scroll_guard_ = false;
  last_line_left_ = 0;
}

void parameter_lines::RePaintME() {
  if (n_ <= line_count) return;
  for (int k = 0; k < line_count; ++k) show_line(k);
}

void parameter_lines::show_line(int k) {
  const std::size_t at = row_of(k);
  if (at >= table_.size()) return;
  const line& each = lines_[static_cast<std::size_t>(k)];
  const parameter_row row = table_[at];
  const QString texts[] = {QString::number(row.number), QString::fromStdString(row.type_name), row.nullable ? "Y" : "N",
                           QString::number(row.precision), QString::number(row.scale)};
  for (std::size_t i = 0; i < described_columns; ++i) each.described[i]->setText(texts[i]);
  each.BindData->setText(QString::fromStdString(row.text));
  each.BindData->setCursorPosition(0);
}

void parameter_lines::go_to(int parameter) {
  if (parameter < top_) pS->setValue(parameter);
  if (parameter > top_ + last_line) pS->setValue(parameter - last_line);
  page(0, parameter - top_);
}

void parameter_lines::pS_Change() {
  top_ = pS->value();
  RePaintME();
}

void parameter_lines::BindData_Change(int k) {
  const std::size_t at = row_of(k);
  if (values_ == value_column::editable && at < table_.size()) table_[at].text = box(k)->text().toStdString();
}

// Past the last line the table moves up by one and the focus stays there, and so above the first. A click into the
// other end of the lines is no paging.
void parameter_lines::BindData_GotFocus(int k, Qt::FocusReason why) {
  if (scroll_guard_ || why == Qt::MouseFocusReason) return;
  if (last_line_left_ == last_line && k == 0 && pS->value() < pS->maximum()) {
    page(1, last_line);
  } else if (last_line_left_ == 0 && k == last_line && pS->value() > 0) {
    page(-1, 0);
  }
}

void parameter_lines::BindData_LostFocus(int k) { last_line_left_ = k; }

void parameter_lines::page(int by, int k) {
  scroll_guard_ = true;
  pS->setValue(pS->value() + by);
  box(k)->setFocus();
  box(k)->selectAll();
  scroll_guard_ = false;
}

// While there are parameters beyond the lines, the first line follows the last one, so that the next is one key away;
// after the last parameter comes what follows in the form.
bool parameter_lines::focusNextPrevChild(bool next) {
  const bool more = next ? box(last_line)->hasFocus() && pS->value() < pS->maximum()
                         : box(0)->hasFocus() && pS->value() > pS->minimum();
  if (!more) return QWidget::focusNextPrevChild(next);
  box(next ? 0 : last_line)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

void parameter_lines::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) adopt_font();
  if (event->type() == QEvent::PaletteChange) adopt_palette();
}

void parameter_lines::wheelEvent(QWheelEvent* event) {
  if (pS->maximum() > 0) {
    QCoreApplication::sendEvent(pS, event);
  } else {
    QWidget::wheelEvent(event);
  }
}

void parameter_lines::adopt_font() {
  const QFontMetrics font = fontMetrics();
  // What a line edit adds to its text: frame, margins, and room for the caret.
  const int around =
      2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this) + 4 * font.averageCharWidth();
  for (const line& each : lines_) {
    for (std::size_t i = 0; i < described_columns; ++i)
      each.described[i]->setFixedWidth(
          qMax(font.horizontalAdvance(columns[i].widest) + around, font.horizontalAdvance(columns[i].title)));
    each.BindData->setMinimumWidth(font.horizontalAdvance(columns[value_position].widest) + around);
  }
}

// What cannot be changed has the window's ground in place of a text box's.
void parameter_lines::adopt_palette() {
  QPalette flat;
  flat.setBrush(QPalette::Base, palette().brush(QPalette::Window));
  const auto ground = [&](QLineEdit* of) { of->setPalette(of->isReadOnly() ? flat : QPalette()); };
  for (const line& each : lines_) {
    for (QLineEdit* described : each.described) ground(described);
    ground(each.BindData);
  }
}
