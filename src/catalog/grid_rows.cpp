#include "catalog/grid_rows.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QStyle>

namespace {

constexpr int most_characters = 40;
constexpr int twips_per_inch = 1440;

}  // namespace

void put_titles(flexgrid& grid, std::span<const shown_column> columns) {
  int column = 0;
  for (const shown_column& each : columns) grid.set_text(0, column++, each.title);
}

void add_rows(flexgrid& grid, const catalog_rows& rows) {
  for (const auto& row : rows) {
    grid.append_row();
    for (const value& cell : row) grid.append_cell(to_text(cell));
  }
}

void fit_column_widths(flexgrid& grid) {
  const QFontMetrics metrics(grid.font());
  const QFontMetrics title_metrics(grid.horizontalHeader()->font());
  const int margins = 2 * (grid.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &grid) + 4);
  const int widest = most_characters * metrics.averageCharWidth();
  for (int column = 0; column < grid.Cols(); ++column) {
    int pixels = title_metrics.horizontalAdvance(grid.text(0, column));
    for (int row = 1; row < grid.Rows() && pixels < widest; ++row)
      pixels = qMax(pixels, metrics.horizontalAdvance(grid.text(row, column).left(most_characters + 1)));
    grid.set_column_width(column, (qMin(pixels, widest) + margins) * twips_per_inch / grid.logicalDpiX());
  }
}
