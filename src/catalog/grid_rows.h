#pragma once

#include <span>

#include "catalog/catalog_reader.h"
#include "widgets/flexgrid.h"

// Writes the titles into the grid's first row.
void put_titles(flexgrid& grid, std::span<const shown_column> columns);

// Adds the rows at the grid's end.
void add_rows(flexgrid& grid, const catalog_rows& rows);

// Makes each column as wide as its texts, titles included, up to 40 characters.
void fit_column_widths(flexgrid& grid);
