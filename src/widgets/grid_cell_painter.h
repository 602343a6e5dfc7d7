#pragma once

#include <QSet>
#include <QString>
#include <QStyledItemDelegate>

class grid_model;

// Paints the cells of a flexgrid straight out of its store: one line of text, cut with an ellipsis, the grid's lines,
// and merged cells as one.
class grid_cell_painter : public QStyledItemDelegate {
  Q_OBJECT

 public:
  grid_cell_painter(const grid_model& model, QObject* parent) : QStyledItemDelegate(parent), model_(model) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

  QSet<int> merged_columns;  // of the model
  std::string mark;          // a text that stands for the lack of one, shown dimmed
  int first_visible_row = 0;

 private:
  [[nodiscard]] bool continues(int row, int column) const;

  const grid_model& model_;
};
