#include "widgets/grid_cell_painter.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>

#include "widgets/grid_model.h"
#include "widgets/grid_text.h"

namespace {

// Room between a cell's text and its lines, left and right together.
constexpr int side_margin = 4;
constexpr int longest_tooltip = 2000;

// The colour halfway, or further, from one to the other.
QColor between(const QColor& from, const QColor& to, double share) {
  const auto mix = [share](float a, float b) { return a + (b - a) * static_cast<float>(share); };
  return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()), mix(from.blueF(), to.blueF()));
}

}  // namespace

// Whether a row's cell is one with the cell above it.
bool grid_cell_painter::continues(int row, int column) const {
  return row > 0 && row < model_.rowCount() && merged_columns.contains(column) &&
         model_.text_at(row, column) == model_.text_at(row - 1, column);
}

void grid_cell_painter::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const int row = index.row();
  const int column = index.column();
  const bool selected = option.state.testFlag(QStyle::State_Selected);
  const auto group = option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
  const QColor background = option.palette.color(group, selected ? QPalette::Highlight : QPalette::Base);
  const QColor ink = option.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);
  if (selected) painter->fillRect(option.rect, background);

  const bool below_is_same = continues(row + 1, column);
  painter->setPen(between(option.palette.color(QPalette::Base), option.palette.color(QPalette::Text), 0.22));
  const QRect& cell = option.rect;
  const bool right_to_left = option.direction == Qt::RightToLeft;
  painter->drawLine(right_to_left ? cell.topLeft() : cell.topRight(),
                    right_to_left ? cell.bottomLeft() : cell.bottomRight());
  if (!below_is_same) painter->drawLine(cell.bottomLeft(), cell.bottomRight());

  // Merged cells show their text once, in the first row that is in view.
  const std::string_view text = model_.text_at(row, column);
  if (!text.empty() && (row == first_visible_row || !continues(row, column))) {
    painter->setFont(option.font);
    painter->setPen(text == mark ? between(background, ink, 0.6) : ink);
    const QRect room = cell.adjusted(side_margin, 0, -side_margin, -1);
    const QString shown = option.fontMetrics.elidedText(one_line_text(text), Qt::ElideRight, room.width());
    painter->drawText(room, static_cast<int>(model_.alignment(column + model_.fixed_columns)) | Qt::TextSingleLine,
                      shown);
  }
  if (option.state.testFlag(QStyle::State_HasFocus)) {
    painter->setPen(ink);
    painter->drawRect(cell.adjusted(0, 0, -2, -2));
  }
}

QSize grid_cell_painter::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QString text = one_line_text(model_.text_at(index.row(), index.column()));
  return {option.fontMetrics.horizontalAdvance(text) + 2 * side_margin + 2, option.fontMetrics.height() + side_margin};
}

// A text that its cell cuts, or shows on one line only, is told whole.
bool grid_cell_painter::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) {
  if (event->type() != QEvent::ToolTip || !index.isValid()) return false;
  const QString whole = readable_text(model_.text_at(index.row(), index.column()));
  const bool cut = sizeHint(option, index).width() > view->visualRect(index).width() || whole.contains('\n');
  QToolTip::showText(event->globalPos(), cut ? Qt::convertFromPlainText(whole.left(longest_tooltip)) : QString(), view);
  return true;
}
