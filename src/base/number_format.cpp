#include "base/number_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

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

// A number that is a whole count of ten-thousandths, or of a coarser unit, with at most 15 digits is written from that
// count: it is the nearest double to that decimal, so 15 significant digits give the decimal back.
void append_number_text(double number, std::string& out) {
  constexpr double most = 999'999'999'999'999.0;
  constexpr std::array<double, 5> units{1, 10, 100, 1'000, 10'000};
  for (std::size_t decimals = 0; decimals < units.size() && number != 0; ++decimals) {
    const double scaled = std::nearbyint(number * units[decimals]);
    if (!(std::fabs(scaled) <= most)) break;
    if (scaled / units[decimals] != number) continue;
    std::array<char, 24> digits{};
    const auto magnitude = static_cast<std::int64_t>(std::fabs(scaled));
    const auto unit = static_cast<std::int64_t>(units[decimals]);
    if (number < 0) out += '-';
    char* end = std::to_chars(digits.data(), digits.data() + digits.size(), magnitude / unit).ptr;
    out.append(digits.data(), end);
    if (decimals == 0) return;
    // The unit in front keeps the zeros that lead the decimals.
    end = std::to_chars(digits.data(), digits.data() + digits.size(), unit + magnitude % unit).ptr;
    digits[0] = '.';
    out.append(digits.data(), end);
    return;
  }
  out += number_text(number);
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
