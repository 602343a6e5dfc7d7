#include "base/number_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>

namespace {

struct number_pattern {
  int required_whole = 0;
  int required_decimals = 0;
  int decimals = 0;
  bool point = false;
  bool grouped = false;
};

number_pattern read_pattern(std::string_view pattern) {
  number_pattern read;
  for (const char c : pattern) {
    if (c == '.') read.point = true;
    if (c == ',' && !read.point) read.grouped = true;
    if (c == '0' && !read.point) ++read.required_whole;
    if ((c == '0' || c == '#') && read.point) ++read.decimals;
    if (c == '0' && read.point) read.required_decimals = read.decimals;
  }
  return read;
}

// The decimal digits of a positive number: 0.d1d2d3... times ten to the power `point`.
struct decimal_digits {
  std::string digits;
  int point = 0;
};

constexpr int significant_digits = 15;

decimal_digits digits_of(double magnitude) {
  if (magnitude == 0) return {};
  const std::string scientific = fmt::format("{:.{}e}", magnitude, significant_digits - 1);
  const std::size_t e = scientific.find('e');
  decimal_digits result;
  result.digits = scientific.substr(0, 1) + scientific.substr(2, e - 2);
  result.point = std::atoi(scientific.c_str() + e + 1) + 1;
  return result;
}

// Rounds to `decimals` places after the decimal point, halves away from zero.
void round_digits(decimal_digits& number, int decimals) {
  const int keep = number.point + decimals;
  if (keep >= static_cast<int>(number.digits.size())) return;
  const bool up = keep >= 0 && number.digits[static_cast<std::size_t>(keep)] >= '5';
  number.digits.resize(static_cast<std::size_t>(std::max(keep, 0)));
  if (!up) return;
  std::size_t i = number.digits.size();
  while (i > 0 && number.digits[i - 1] == '9') number.digits[--i] = '0';
  if (i > 0) {
    ++number.digits[i - 1];
  } else {
    number.digits.insert(0, 1, '1');
    ++number.point;
  }
}

std::string grouped_by_thousands(const std::string& whole) {
  std::string grouped;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    if (i > 0 && (whole.size() - i) % 3 == 0) grouped += ',';
    grouped += whole[i];
  }
  return grouped;
}

}  // namespace

std::string number_text(double number) {
  if (number == 0) return "0";
  return fmt::format("{:.15G}", number);
}

namespace {

constexpr std::array<std::int64_t, 19> powers_of_ten = [] {
  std::array<std::int64_t, 19> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

// The 15 significant digits of a magnitude from 0.0001 to 10^15 as an integer that is to be divided by ten to the power
// `decimals`; nothing where they can not be told for sure. A long double of 64 bits holds the powers of ten exactly, so
// the product is wrong by at most 2^-14, and only a product that near to a half could be rounded wrongly.
struct scaled_digits {
  std::int64_t digits = 0;
  int decimals = 0;
};
std::optional<scaled_digits> fifteen_digits(double magnitude) {
  if (std::numeric_limits<long double>::digits < 64 || !(magnitude >= 1e-4 && magnitude < 1e15)) return std::nullopt;
  int decimals = significant_digits + 3;
  if (magnitude >= 1) {
    decimals = significant_digits - 1;
    while (decimals > 0 && magnitude >= static_cast<double>(powers_of_ten[static_cast<std::size_t>(15 - decimals)]))
      --decimals;
  } else {
    for (double least = 1e-3; magnitude >= least && decimals > significant_digits; least *= 10) --decimals;
  }
  const long double product =
      static_cast<long double>(magnitude) * static_cast<long double>(powers_of_ten[static_cast<std::size_t>(decimals)]);
  const auto whole = static_cast<std::int64_t>(product);
  const long double rest = product - static_cast<long double>(whole);
  constexpr long double doubt = 1.0L / 4096;
  if (rest > 0.5L - doubt && rest < 0.5L + doubt) return std::nullopt;
  const std::int64_t digits = whole + (rest > 0.5L ? 1 : 0);
  // One more digit than are significant: the estimate of the size was wrong at its edge, or the rounding carried.
  if (digits >= powers_of_ten[significant_digits]) return std::nullopt;
  return scaled_digits{digits, decimals};
}

}  // namespace

void append_integer(std::int64_t number, std::string& out) {
  std::array<char, 24> text{};
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  out.append(text.data(), static_cast<std::size_t>(end - text.data()));
}

void append_number_text(double number, std::string& out) {
  const double magnitude = std::fabs(number);
  std::array<char, 24> text{};
  if (magnitude < 1e15 && magnitude == std::trunc(magnitude)) {
    append_integer(static_cast<std::int64_t>(number), out);
    return;
  }
  // Hundredths are the nearest doubles to what they read: 15 digits give that back.
  const double hundredths = std::nearbyint(magnitude * 100);
  auto scaled = hundredths < 1e15 && hundredths / 100 == magnitude
                    ? std::optional(scaled_digits{static_cast<std::int64_t>(hundredths), 2})
                    : fifteen_digits(magnitude);
  if (!scaled) {
    out += number_text(number);
    return;
  }
  if (scaled->decimals >= 8 && scaled->digits % 100'000'000 == 0) {
    scaled->digits /= 100'000'000;
    scaled->decimals -= 8;
  }
  while (scaled->decimals > 0 && scaled->digits % 10 == 0) {
    scaled->digits /= 10;
    --scaled->decimals;
  }
  if (number < 0) out += '-';
  const auto decimals = static_cast<std::size_t>(scaled->decimals);
  const std::int64_t unit = powers_of_ten[decimals];
  append_integer(scaled->digits / unit, out);
  if (decimals == 0) return;
  char* const end = std::to_chars(text.data(), text.data() + text.size(), scaled->digits % unit).ptr;
  out += '.';
  const auto digits = static_cast<std::size_t>(end - text.data());
  out.append(decimals - digits, '0');
  out.append(text.data(), digits);
}

std::string number_text(float number) {
  if (number == 0) return "0";
  return fmt::format("{:.7G}", number);
}

std::string number_text(currency amount) {
  const bool negative = amount.ten_thousandths < 0;
  auto units = static_cast<std::uint64_t>(amount.ten_thousandths);
  if (negative) units = 0 - units;
  std::string text = fmt::format("{}{}.{:04}", negative ? "-" : "", units / 10000, units % 10000);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string format_number(double number, std::string_view pattern) {
  if (!std::isfinite(number)) return number_text(number);
  const number_pattern shape = read_pattern(pattern);
  decimal_digits rounded = digits_of(std::fabs(number));
  round_digits(rounded, shape.decimals);

  const auto digit_at = [&](int place) {  // place 0 is the first digit after the point, -1 the last before it
    const int index = rounded.point + place;
    return index < 0 || index >= static_cast<int>(rounded.digits.size())
               ? '0'
               : rounded.digits[static_cast<std::size_t>(index)];
  };
  std::string whole;
  const int whole_digits = std::max(rounded.digits.empty() ? 0 : rounded.point, shape.required_whole);
  for (int place = -whole_digits; place < 0; ++place) whole += digit_at(place);
  std::string decimals;
  for (int place = 0; place < shape.decimals; ++place) decimals += digit_at(place);
  while (static_cast<int>(decimals.size()) > shape.required_decimals && decimals.back() == '0') decimals.pop_back();

  const bool any = rounded.digits.find_first_not_of('0') != std::string::npos;
  std::string text = number < 0 && any ? "-" : "";
  text += shape.grouped ? grouped_by_thousands(whole) : whole;
  if (shape.point) text += '.';
  return text + decimals;
}
