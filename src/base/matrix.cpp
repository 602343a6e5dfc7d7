#include "base/matrix.h"

#include <unordered_set>

matrix::matrix(int first_count, bounds lower)
    : lower_(lower), first_count_(first_count < 0 ? 0 : static_cast<std::size_t>(first_count)) {}

void matrix::grow(std::size_t count) {
  second_count_ += count;
  cells_.resize(second_count_ * first_count_);
}

void matrix::reserve(std::size_t second_count) { cells_.reserve(second_count * first_count_); }

const value& matrix::operator()(int first, std::size_t second) const {
  static const value nothing;
  const auto second_lower = static_cast<std::size_t>(lower_.second_lower);
  if (first < lower_.first_lower || first > first_upper()) return nothing;
  if (second < second_lower || second - second_lower >= second_count_) return nothing;
  return cells_[offset(first, second)];
}

bool operator==(const matrix& left, const matrix& right) {
  return left.lower_.first_lower == right.lower_.first_lower && left.lower_.second_lower == right.lower_.second_lower &&
         left.first_count_ == right.first_count_ && left.cells_ == right.cells_;
}

value distinct_values(const matrix& table, int column) {
  array distinct;
  std::unordered_set<std::string> seen;
  const auto lower = static_cast<std::size_t>(table.second_lower());
  for (std::size_t row = lower; row < lower + table.second_count(); ++row) {
    const value& v = table(column, row);
    if (!v.is_null() && seen.insert(to_text(v)).second) distinct.items.push_back(v);
  }
  if (distinct.items.empty()) return null_t{};
  return distinct;
}
