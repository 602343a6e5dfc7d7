#pragma once

#include <QAbstractTableModel>
#include <QHash>

#include "widgets/cell_store.h"

// What a flexgrid shows, as Qt's views want it: the rows and columns that are not fixed are the model's, row 0 and
// column 0 are its headers where they are fixed. The grid's numbers count from the fixed ones on.
class grid_model : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  // The text of a cell by its place in the model; "" outside.
  [[nodiscard]] std::string_view text_at(int row, int column) const;
  // By the grid's own numbers.
  [[nodiscard]] std::string_view grid_text(int row, int column) const;
  [[nodiscard]] Qt::Alignment alignment(int grid_column) const;

  // Tells the views what the store and the members below have become. Rows added at the end keep what a view has
  // selected and where it stands; any other change of shape is a reset.
  enum class news { none, rows_added, reshaped };
  news publish();

  cell_store cells;
  int fixed_rows = 0;
  int fixed_columns = 0;
  QHash<int, Qt::Alignment> alignments;  // by grid column; the others stand left

 private:
  int shown_rows_ = 0;  // those of the store that the views know of
  int shown_columns_ = 0;
  int shown_fixed_rows_ = 0;
  int shown_fixed_columns_ = 0;
};
