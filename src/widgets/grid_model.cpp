#include "widgets/grid_model.h"

#include "widgets/grid_text.h"

int grid_model::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : qMax(0, shown_rows_ - shown_fixed_rows_);
}

int grid_model::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : qMax(0, shown_columns_ - shown_fixed_columns_);
}

std::string_view grid_model::text_at(int row, int column) const {
  return grid_text(row + shown_fixed_rows_, column + shown_fixed_columns_);
}

// A view may still ask for what the store has given up and publish has not told yet.
std::string_view grid_model::grid_text(int row, int column) const {
  const auto at_row = static_cast<std::size_t>(row);
  const auto at_column = static_cast<std::size_t>(column);
  if (row < 0 || column < 0 || at_row >= cells.rows() || at_column >= cells.columns()) return {};
  return cells.at(at_row, at_column);
}

Qt::Alignment grid_model::alignment(int grid_column) const {
  return alignments.value(grid_column, Qt::AlignLeft) | Qt::AlignVCenter;
}

QVariant grid_model::data(const QModelIndex& index, int role) const {
  if (role == Qt::DisplayRole) return readable_text(text_at(index.row(), index.column()));
  return {};
}

QVariant grid_model::headerData(int section, Qt::Orientation orientation, int role) const {
  const bool across = orientation == Qt::Horizontal;
  if (role == Qt::TextAlignmentRole) {
    if (!across) return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    return QVariant::fromValue(alignment(section + shown_fixed_columns_));
  }
  if (role != Qt::DisplayRole) return {};
  // A blank that stays keeps a text at the right off the line beside it.
  if (across && shown_fixed_rows_ > 0) {
    const bool at_right = alignment(section + shown_fixed_columns_).testFlag(Qt::AlignRight);
    const QString title = one_line_text(grid_text(0, section + shown_fixed_columns_));
    return at_right ? title + QChar::Nbsp : title;
  }
  if (!across && shown_fixed_columns_ > 0) {
    return QString(one_line_text(grid_text(section + shown_fixed_rows_, 0)) + QChar::Nbsp);
  }
  return {};
}

grid_model::news grid_model::publish() {
  const auto rows = static_cast<int>(cells.rows());
  const auto columns = static_cast<int>(cells.columns());
  const bool same_columns = columns == shown_columns_ && fixed_columns == shown_fixed_columns_;
  if (same_columns && fixed_rows == shown_fixed_rows_ && rows >= shown_rows_ && shown_rows_ >= fixed_rows) {
    if (rows == shown_rows_) return news::none;
    beginInsertRows({}, shown_rows_ - fixed_rows, rows - fixed_rows - 1);
    shown_rows_ = rows;
    endInsertRows();
    return news::rows_added;
  }
  beginResetModel();
  shown_rows_ = rows;
  shown_columns_ = columns;
  shown_fixed_rows_ = fixed_rows;
  shown_fixed_columns_ = fixed_columns;
  endResetModel();
  return news::reshaped;
}
