#include "base/matrix.h"

#include <gtest/gtest.h>

#include "support/printing.h"

namespace {

TEST(matrix, grows_along_the_second_index_and_keeps_what_it_holds) {
  matrix table(2);
  EXPECT_EQ(table.second_count(), 0U);
  table.grow(2);
  table.at(1, 0) = "a";
  table.at(2, 1) = 5;
  table.reserve(100);
  table.grow(3);
  EXPECT_EQ(table.second_count(), 5U);
  EXPECT_EQ(table(1, 0), value("a"));
  EXPECT_EQ(table(2, 1), value(5));
  EXPECT_TRUE(table(1, 4).is_empty());
}

TEST(matrix, reads_empty_outside_its_bounds) {
  matrix table(2, {0, 7});  // [0..1, 7..8]
  table.grow(2);
  for (const int first : {0, 1}) {
    for (const std::size_t second : {7U, 8U}) table.at(first, second) = "x";
  }
  EXPECT_EQ(table.first_upper(), 1);
  EXPECT_EQ(table(1, 8), value("x"));
  const struct {
    int first;
    std::size_t second;
  } outside[] = {{-1, 7}, {2, 7}, {0, 6}, {0, 9}, {0, 0}, {1, static_cast<std::size_t>(-1)}};
  for (const auto& each : outside)
    EXPECT_TRUE(table(each.first, each.second).is_empty()) << each.first << ',' << each.second;
  EXPECT_TRUE(matrix(-3)(1, 0).is_empty());
}

TEST(matrix, compares_bounds_and_content) {
  const auto filled = [](matrix::bounds lower, const char* text) {
    matrix table(1, lower);
    table.grow(1);
    table.at(lower.first_lower, static_cast<std::size_t>(lower.second_lower)) = text;
    return value(table);
  };
  EXPECT_EQ(filled({1, 0}, "a"), filled({1, 0}, "a"));
  EXPECT_NE(filled({1, 0}, "a"), filled({1, 0}, "b"));
  EXPECT_NE(filled({1, 0}, "a"), filled({0, 0}, "a"));
  EXPECT_NE(filled({1, 0}, "a"), filled({1, 1}, "a"));
}

TEST(matrix, distinct_values_keep_the_first_of_each_and_skip_nulls) {
  matrix table(2);
  table.grow(6);
  const value column[] = {"b", null_t{}, "a", "b", 1, "1"};
  for (std::size_t row = 0; row < 6; ++row) table.at(2, row) = column[row];
  EXPECT_EQ(distinct_values(table, 2), value(array{0, {"b", "a", 1}}));
  for (std::size_t row = 0; row < 6; ++row) table.at(1, row) = null_t{};
  EXPECT_TRUE(distinct_values(table, 1).is_null());
  EXPECT_TRUE(distinct_values(matrix(1), 1).is_null());
}

}  // namespace
