#include "widgets/generic_order.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <optional>
#include <utility>

#include "base/conversions.h"

namespace {

// Digits with at most one point among them and at most 15 in all, as nearly every number is written; the quotient of
// two exact doubles is the nearest double. Nothing for any other text, which may still be a number.
std::optional<double> read_short_decimal(std::string_view text) {
  constexpr std::array<double, 16> powers{1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  std::int64_t digits = 0;
  std::size_t count = 0;
  std::size_t decimals = 0;
  bool point = false;
  for (const char c : text) {
    if (c == '.' && !point) {
      point = true;
      continue;
    }
    if (c < '0' || c > '9' || ++count > 15) return std::nullopt;
    digits = digits * 10 + (c - '0');
    if (point) ++decimals;
  }
  if (count == 0) return std::nullopt;
  const double magnitude = static_cast<double>(digits) / powers[decimals];
  return negative ? -magnitude : magnitude;
}

// Only a text with a digit can be a number.
std::optional<double> read_number(std::string_view text) {
  if (const auto read = read_short_decimal(text)) return read;
  if (text.find_first_of("0123456789") == std::string_view::npos) return std::nullopt;
  return parse_number(text);
}

// Numbers as bits that compare as they do: the sign bit flipped, and for negative ones all the others as well.
std::uint64_t ordered_bits(double number) {
  std::uint64_t bits = 0;
  if (number == 0) number = 0;  // -0 equals 0
  std::memcpy(&bits, &number, sizeof bits);
  return (bits >> 63U) != 0 ? ~bits : bits | (std::uint64_t{1} << 63U);
}

struct number_key {
  std::uint64_t bits;
  std::uint32_t row;
};

// A stable radix sort in six passes of 11 bits, whose counters fit into a processor's nearest memory. A pass whose
// digit is the same everywhere is left out.
void sort_numbers(std::vector<number_key>& keys) {
  constexpr unsigned digit_bits = 11;
  constexpr unsigned passes = 6;
  constexpr std::uint64_t digit_mask = (1U << digit_bits) - 1;
  std::vector<std::array<std::uint32_t, digit_mask + 1>> counts(passes);
  for (const number_key& each : keys) {
    for (unsigned pass = 0; pass < passes; ++pass) ++counts[pass][each.bits >> pass * digit_bits & digit_mask];
  }
  std::vector<number_key> other(keys.size());
  for (unsigned pass = 0; pass < passes; ++pass) {
    const auto digit = [shift = pass * digit_bits](const number_key& of) { return of.bits >> shift & digit_mask; };
    auto& starts = counts[pass];
    if (starts[digit(keys.front())] == keys.size()) continue;
    std::uint32_t start = 0;
    for (std::uint32_t& each : starts) start += std::exchange(each, start);
    for (const number_key& each : keys) other[starts[digit(each)]++] = each;
    keys.swap(other);
  }
}

struct text_key {
  std::string_view text;
  std::uint32_t row;
};

// Sorts rows, which stand in an order so far, by one column; equal ones keep that order.
void sort_by(const cell_store& cells, std::size_t first, std::size_t column, sort_direction direction,
             std::vector<std::uint32_t>& rows) {
  std::vector<number_key> numbers;
  std::vector<text_key> texts;
  numbers.reserve(rows.size());
  const bool ascending = direction == sort_direction::ascending;
  for (const std::uint32_t row : rows) {
    const std::string_view text = cells.at(first + row, column);
    if (const auto number = read_number(text)) {
      const std::uint64_t bits = ordered_bits(*number);
      numbers.push_back({ascending ? bits : ~bits, row});
    } else {
      texts.push_back({text, row});
    }
  }
  if (!numbers.empty()) sort_numbers(numbers);
  std::stable_sort(texts.begin(), texts.end(), [ascending](const text_key& left, const text_key& right) {
    return ascending ? left.text < right.text : right.text < left.text;
  });
  auto next = rows.begin();
  const auto take = [&next](const auto& keys) {
    for (const auto& each : keys) *next++ = each.row;
  };
  if (ascending) take(numbers);
  take(texts);
  if (!ascending) take(numbers);
}

}  // namespace

std::vector<std::uint32_t> generic_order(const cell_store& cells, std::size_t first, std::size_t count,
                                         std::size_t first_key, std::size_t last_key, sort_direction direction) {
  std::vector<std::uint32_t> rows(count);
  std::iota(rows.begin(), rows.end(), 0U);
  if (count < 2) return rows;
  for (std::size_t column = last_key + 1; column-- > first_key;) sort_by(cells, first, column, direction, rows);
  return rows;
}
