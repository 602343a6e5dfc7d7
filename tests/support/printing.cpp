#include "support/printing.h"

#include <array>
#include <ostream>

#include "base/matrix.h"

namespace {

constexpr std::array<const char*, 13> kind_names{"Empty",    "Null", "Boolean", "Int16", "Int32", "Single", "Double",
                                                 "Currency", "Text", "Moment",  "Error", "Array", "Matrix"};

void print_items(const std::vector<value>& items, std::ostream& out) {
  for (const value& each : items) {
    PrintTo(each, &out);
    out << ' ';
  }
}

}  // namespace

void PrintTo(const value& shown, std::ostream* out) {
  *out << kind_names[static_cast<std::size_t>(shown.type())] << '(' << to_text(shown);
  if (shown.is(value::kind::list)) {
    *out << "from " << shown.list().lower << ": ";
    print_items(shown.list().items, *out);
  }
  if (shown.is(value::kind::table)) {
    const matrix& table = shown.table();
    *out << table.first_lower() << ".." << table.first_upper() << " x " << table.second_count() << " from "
         << table.second_lower();
  }
  *out << ')';
}

void PrintTo(date_time shown, std::ostream* out) {
  *out << to_text(shown) << " (" << shown.days << " + " << shown.seconds << " s)";
}

void PrintTo(error_value shown, std::ostream* out) { *out << "error value " << shown.code; }
