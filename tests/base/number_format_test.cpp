#include "base/number_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(number_format, shows_by_pattern) {
  constexpr const char* seconds = "##.#######";
  constexpr const char* rate = "##,###.###";
  constexpr const char* amount = "##,##0.00";
  constexpr const char* exact = "##0.000000";
  const struct {
    double number;
    const char* pattern;
    const char* text;
  } cases[] = {{0, seconds, "."},
               {0.25, seconds, ".25"},
               {-0.25, seconds, "-.25"},
               {12.5, seconds, "12.5"},
               {123, seconds, "123."},
               {1.23456789, seconds, "1.2345679"},
               {0.00000005, seconds, ".0000001"},  // half of the last place, away from zero
               {0.00000004, seconds, "."},
               {-0.00000004, seconds, "."},  // no sign on what shows as zero
               {0.99999996, seconds, "1."},  // the carry runs over the point
               {0, rate, "."},
               {999.9996, rate, "1,000."},
               {1234.5, rate, "1,234.5"},
               {1234567.8916, rate, "1,234,567.892"},
               {-1234567, rate, "-1,234,567."},
               {1e20, rate, "100,000,000,000,000,000,000."},
               {0, amount, "0.00"},
               {0.25, amount, "0.25"},
               {0.285, amount, "0.29"},  // what the user reads is rounded, not the binary fraction below it
               {1.005, amount, "1.01"},
               {-0.004, amount, "0.00"},
               {-0.005, amount, "-0.01"},
               {999.995, amount, "1,000.00"},
               {-1234.5, amount, "-1,234.50"},
               {1234567.891, amount, "1,234,567.89"},
               {0, exact, "0.000000"},
               {0.0000005, exact, "0.000001"},
               {1e-300, exact, "0.000000"},
               {12.3456784, exact, "12.345678"},
               {12345, exact, "12345.000000"},
               {99.9999995, exact, "100.000000"},
               {2.5, "0", "3"},
               {-2.5, "#", "-3"},
               {7, "000", "007"},
               {infinite, amount, "INF"}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.number << " by " << each.pattern);
    EXPECT_EQ(format_number(each.number, each.pattern), each.text);
  }
  EXPECT_EQ(format_number(1e300, rate).size(), 301U + 100U + 1U);  // digits, commas, point
}

TEST(number_format, number_text_is_short_and_free_of_binary_noise) {
  EXPECT_EQ(number_text(0.1 + 0.2), "0.3");
  EXPECT_EQ(number_text(-0.0), "0");
  EXPECT_EQ(number_text(1e20), "1E+20");
  EXPECT_EQ(number_text(123456789012345.0), "123456789012345");
  EXPECT_EQ(number_text(-1234.5), "-1234.5");
  EXPECT_EQ(number_text(1.0F / 3.0F), "0.3333333");
  EXPECT_EQ(number_text(0.1F), "0.1");
  EXPECT_EQ(number_text(currency{123456}), "12.3456");
  EXPECT_EQ(number_text(currency{-5000}), "-0.5");
  EXPECT_EQ(number_text(currency{100000}), "10");
  EXPECT_EQ(number_text(currency{std::numeric_limits<std::int64_t>::min()}), "-922337203685477.5808");
}

TEST(number_format, appends_the_text_of_a_number) {
  std::vector<double> numbers{0,
                              -0.0,
                              0.1,
                              -0.1,
                              0.1 + 0.2,
                              1e15,
                              -1e15,
                              999'999'999'999'999.0,
                              0.0001,
                              0.00001,
                              0.12345,
                              1e20,
                              1e-300,
                              2.0 / 3,
                              12.30,
                              1e14 + 0.5,
                              99'999'999'999.9999,
                              infinite,
                              -infinite,
                              5e-324,
                              123456789012.125,
                              -0.07,
                              1.00005};
  // Hundredths, ten-thousandths and what multiplication leaves of them.
  for (int i = -3000; i < 3000; ++i) numbers.insert(numbers.end(), {i / 100.0, i * 0.37, i * 1e7 / 1e4, i / 7.0});
  for (const double number : numbers) {
    std::string text = "=";
    append_number_text(number, text);
    EXPECT_EQ(text, "=" + number_text(number));
  }
}

}  // namespace
