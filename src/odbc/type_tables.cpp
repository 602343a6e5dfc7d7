#include "odbc/type_tables.h"

#include <algorithm>

#include "base/code_page.h"

std::size_t width_in_bytes(cell_width width, std::size_t precision) {
  if (!width.by_precision) return width.fixed;
  return std::min(precision, widest_text_characters) * current_code_page().max_bytes_per_char() + 1;
}
