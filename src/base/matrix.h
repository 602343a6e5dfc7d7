#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "base/value.h"

// A two-dimensional result indexed [first, second], by default [column from 1, row from 0], in one contiguous block.
// It grows along its second index. An index outside the bounds reads as Empty.
class matrix {
 public:
  struct bounds {
    int first_lower = 1;
    int second_lower = 0;
  };

  // first_count values along the first index; starts with no element along the second.
  explicit matrix(int first_count) : matrix(first_count, bounds{}) {}
  matrix(int first_count, bounds lower);

  // Adds `count` elements along the second index, all Empty.
  void grow(std::size_t count);
  void reserve(std::size_t second_count);
  // Adds the next value along the first index. The element along the second that it belongs to counts when its last one
  // is there.
  template <typename Cell>
  void append(Cell&& cell) {
    cells_.emplace_back(std::forward<Cell>(cell));
    if (cells_.size() == (second_count_ + 1) * first_count_) ++second_count_;
  }

  [[nodiscard]] int first_lower() const { return lower_.first_lower; }
  [[nodiscard]] int first_upper() const { return lower_.first_lower + static_cast<int>(first_count_) - 1; }
  [[nodiscard]] int second_lower() const { return lower_.second_lower; }
  [[nodiscard]] std::size_t second_count() const { return second_count_; }

  // The element; [first, second] must lie within the bounds.
  value& at(int first, std::size_t second) { return cells_[offset(first, second)]; }
  [[nodiscard]] const value& operator()(int first, std::size_t second) const;

  friend bool operator==(const matrix& left, const matrix& right);

 private:
  [[nodiscard]] std::size_t offset(int first, std::size_t second) const {
    return (second - static_cast<std::size_t>(lower_.second_lower)) * first_count_ +
           static_cast<std::size_t>(first - lower_.first_lower);
  }

  bounds lower_;
  std::size_t first_count_ = 0;
  std::size_t second_count_ = 0;
  std::vector<value> cells_;
};

// The distinct values of a column (first index) in order of first appearance, without Nulls, as an array from 0;
// Null when there are none. Values are compared by their text.
value distinct_values(const matrix& table, int column);
