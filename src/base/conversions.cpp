#include "base/conversions.h"

#include <fmt/format.h>
#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ctime>
#include <limits>

#include "base/number_format.h"
#include "base/text.h"

namespace {

locale_forms forms_of_environment() {
  locale_forms forms;
  const locale_t locale = newlocale(LC_NUMERIC_MASK | LC_TIME_MASK, "", static_cast<locale_t>(nullptr));
  if (locale == static_cast<locale_t>(nullptr)) return forms;
  const std::string decimal = nl_langinfo_l(RADIXCHAR, locale);
  const std::string group = nl_langinfo_l(THOUSEP, locale);
  if (decimal.size() == 1) forms.numbers.decimal = decimal[0];
  if (group.size() == 1) forms.numbers.group = group[0];
  forms.short_date = nl_langinfo_l(D_FMT, locale);
  freelocale(locale);
  return forms;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Takes the group marks out of "1,234,567.5"; nothing when they do not stand between groups of three digits.
std::optional<std::string> without_groups(std::string_view text, const number_marks& marks) {
  std::string plain;
  std::size_t run = 0;
  bool grouped = false;
  bool whole = true;
  for (const char c : text) {
    if (whole && marks.group != '\0' && c == marks.group) {
      if (run == 0 || run > 3 || (grouped && run != 3)) return std::nullopt;
      grouped = true;
      run = 0;
      continue;
    }
    if (whole && !is_digit(c) && c != '+' && c != '-') {
      if (grouped && run != 3) return std::nullopt;
      whole = false;
    }
    if (is_digit(c)) ++run;
    plain += c == marks.decimal ? '.' : c;
  }
  if (whole && grouped && run != 3) return std::nullopt;
  return plain;
}

// A number at the start of a text, and how many bytes it takes.
struct number_at_start {
  double number = 0;
  std::size_t bytes = 0;
};

// Sign, digits, '.', exponent; nothing without a digit and for a number beyond a double's range.
std::optional<number_at_start> read_number(std::string_view text) {
  const std::size_t plus = text.starts_with('+') ? 1 : 0;
  const std::string_view unsigned_part = text.substr(plus + (text.starts_with('-') ? 1 : 0));
  if (unsigned_part.empty() || !(is_digit(unsigned_part[0]) || unsigned_part[0] == '.')) return std::nullopt;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data() + plus, text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  return number_at_start{number, static_cast<std::size_t>(end - text.data())};
}

// The C locale's form, nothing before or after it.
std::optional<double> parse_plain_number(std::string_view text) {
  const auto read = read_number(text);
  return read && read->bytes == text.size() ? std::optional(read->number) : std::nullopt;
}

std::string_view trim_white(std::string_view text) {
  constexpr std::string_view white = " \t\r\n";
  const std::size_t first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

// Reads digits and marks one after the other.
class scanner {
 public:
  explicit scanner(std::string_view text) : rest_(text) {}

  std::optional<int> number(std::size_t most_digits) {
    std::size_t digits = 0;
    int read = 0;
    while (digits < rest_.size() && digits < most_digits && is_digit(rest_[digits]))
      read = read * 10 + (rest_[digits++] - '0');
    if (digits == 0) return std::nullopt;
    rest_.remove_prefix(digits);
    return read;
  }
  bool mark(std::string_view any_of) {
    if (rest_.empty() || any_of.find(rest_[0]) == std::string_view::npos) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void skip_digits() {
    while (!rest_.empty() && is_digit(rest_[0])) rest_.remove_prefix(1);
  }
  [[nodiscard]] std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
};

std::optional<date_time> parse_time(std::string_view text) {
  text = trim_white(text);
  int half = -1;
  if (text.size() > 2) {
    const std::string tail = upper_case(text.substr(text.size() - 2));
    if (tail == "AM" || tail == "PM") {
      half = tail == "PM" ? 1 : 0;
      text = trim_white(text.substr(0, text.size() - 2));
    }
  }
  scanner scan(text);
  const auto hour = scan.number(2);
  if (!hour || !scan.mark(":.")) return std::nullopt;
  const auto minute = scan.number(2);
  if (!minute) return std::nullopt;
  int second = 0;
  if (scan.mark(":.")) {
    const auto read = scan.number(2);
    if (!read) return std::nullopt;
    second = *read;
    if (scan.mark(".,")) scan.skip_digits();
  }
  if (!scan.rest().empty()) return std::nullopt;
  if (half < 0) return make_time(*hour, *minute, second);
  if (*hour < 1 || *hour > 12) return std::nullopt;
  return make_time(*hour % 12 + 12 * half, *minute, second);
}

// The date at the start of a text and what follows it.
struct leading_date {
  date_time date;
  std::string_view rest;
};

std::optional<leading_date> parse_iso_date(std::string_view text) {
  scanner scan(text);
  const auto year = scan.number(4);
  if (!year || text.find('-') != 4 || !scan.mark("-")) return std::nullopt;
  const auto month = scan.number(2);
  if (!month || !scan.mark("-")) return std::nullopt;
  const auto day = scan.number(2);
  if (!day) return std::nullopt;
  const auto date = make_date(*year, *month, *day);
  if (!date) return std::nullopt;
  return leading_date{*date, scan.rest()};
}

std::optional<leading_date> parse_month_first(std::string_view text) {
  scanner scan(text);
  const auto month = scan.number(2);
  if (!month || !scan.mark("/")) return std::nullopt;
  const auto day = scan.number(2);
  if (!day || !scan.mark("/")) return std::nullopt;
  const std::size_t before = scan.rest().size();
  auto year = scan.number(4);
  if (!year) return std::nullopt;
  // Two digits: 00 to 29 are of this century, 30 to 99 of the last.
  if (before - scan.rest().size() <= 2) *year += *year < 30 ? 2000 : 1900;
  const auto date = make_date(*year, *month, *day);
  if (!date) return std::nullopt;
  return leading_date{*date, scan.rest()};
}

// The locale's short date with its year written in two digits (letter 'y') or in four ('Y'), whichever of them the
// locale itself names.
template <char YearLetter>
std::optional<leading_date> parse_locale_date(std::string_view text) {
  std::string form = current_locale_forms().short_date;
  std::replace_if(
      form.begin(), form.end(), [](char c) { return c == 'y' || c == 'Y'; }, YearLetter);
  const std::string terminated(text);
  tm date_read{};
  const char* end = strptime(terminated.c_str(), form.c_str(), &date_read);
  if (end == nullptr || is_digit(*end)) return std::nullopt;
  const auto date = make_date(date_read.tm_year + 1900, date_read.tm_mon + 1, date_read.tm_mday);
  if (!date) return std::nullopt;
  return leading_date{*date, text.substr(static_cast<std::size_t>(end - terminated.c_str()))};
}

}  // namespace

locale_forms& current_locale_forms() {
  static locale_forms current = forms_of_environment();
  return current;
}

std::optional<double> parse_number(std::string_view text) {
  text = trim_white(text);
  if (const auto plain = parse_plain_number(text)) return plain;
  const auto ungrouped = without_groups(text, current_locale_forms().numbers);
  if (!ungrouped) return std::nullopt;
  return parse_plain_number(*ungrouped);
}

bool is_numeric(std::string_view text) { return parse_number(text).has_value(); }

double leading_number(std::string_view text) {
  const auto read = read_number(text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size())));
  return read ? read->number : 0;
}

std::optional<std::int32_t> round_to_int32(double number) {
  const double rounded = std::nearbyint(number);
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() && rounded <= std::numeric_limits<std::int32_t>::max())) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(rounded);
}

std::optional<date_time> parse_date(std::string_view text, date_order order) {
  text = trim_white(text);
  if (const auto time = parse_time(text); time && text.find(':') != std::string_view::npos) return time;
  std::array forms{parse_iso_date, parse_month_first, parse_locale_date<'y'>, parse_locale_date<'Y'>};
  if (order == date_order::locale_first) std::rotate(forms.begin() + 1, forms.begin() + 2, forms.end());
  for (const auto& parse : forms) {
    const auto found = parse(text);
    if (!found) continue;
    if (found->rest.empty()) return found->date;
    // A time follows after a blank, a 'T', or DB2's third hyphen.
    if (std::string_view(" Tt-").find(found->rest[0]) == std::string_view::npos) continue;
    if (const auto time = parse_time(found->rest.substr(1))) return found->date + *time;
  }
  return std::nullopt;
}

std::optional<date_time> parse_time_of_day(std::string_view text) { return parse_time(text); }

std::string month_first_text(date_time moment) {
  const date_fields at = fields_of(moment);
  return fmt::format("{:02}/{:02}/{:04}", at.month, at.day, at.year);
}

std::string short_date_text(date_time moment) {
  const date_time day{moment.days, 0};
  const date_fields at = fields_of(day);
  tm broken_down{};
  broken_down.tm_year = at.year - 1900;
  broken_down.tm_mon = at.month - 1;
  broken_down.tm_mday = at.day;
  broken_down.tm_wday = ((day.days + 6) % 7 + 7) % 7;  // the epoch was a Saturday
  std::array<char, 128> written{};
  const std::size_t length =
      std::strftime(written.data(), written.size(), current_locale_forms().short_date.c_str(), &broken_down);
  std::string text(written.data(), length);
  if (is_valid_utf8(text) && parse_date(text, date_order::locale_first) == day) return text;
  return to_text(day);
}

std::optional<std::int32_t> int32_of(const value& v) {
  if (const auto* n = v.get<std::int32_t>()) return *n;
  const auto number = double_of(v);
  return number ? round_to_int32(*number) : std::nullopt;
}

std::optional<double> double_of(const value& v) {
  if (const auto* n = v.get<double>()) return *n;
  if (const auto* n = v.get<std::int32_t>()) return *n;
  if (const auto* n = v.get<std::int16_t>()) return *n;
  if (const auto* n = v.get<float>()) return static_cast<double>(*n);
  if (const auto* n = v.get<currency>()) return static_cast<double>(n->ten_thousandths) / 10000.0;
  if (const auto* b = v.get<bool>()) return *b ? -1.0 : 0.0;
  if (const auto* text = v.get<std::string>()) return parse_number(*text);
  if (const auto* d = v.get<date_time>()) return d->days + static_cast<double>(d->seconds) / seconds_per_day;
  return std::nullopt;
}

std::optional<date_time> date_of(const value& v) {
  if (const auto* d = v.get<date_time>()) return *d;
  if (const auto* text = v.get<std::string>()) return parse_date(*text);
  const auto number = double_of(v);
  // Beyond the years 0 to 9999 a number of days is no date.
  if (!number || !(*number > -693'960.0 && *number < 2'958'466.0)) return std::nullopt;
  const double day = std::floor(*number);
  date_time moment{static_cast<std::int32_t>(day), 0};
  return moment + date_time{0, static_cast<std::int32_t>(std::lround((*number - day) * seconds_per_day))};
}

namespace {

template <typename T>
value converted(const value& v, std::optional<T> (*convert)(const value&)) {
  if (v.is_error()) return v;
  const auto result = convert(v);
  return result ? value(*result) : value();
}

}  // namespace

value to_int32(const value& v) { return converted(v, int32_of); }
value to_double(const value& v) { return converted(v, double_of); }
value to_date(const value& v) { return converted(v, date_of); }

std::string format_value(const value& v, std::string_view pattern) {
  if (pattern.empty() || v.is_text() || v.is(value::kind::moment)) return to_text(v);
  const auto number = double_of(v);
  return number ? format_number(*number, pattern) : to_text(v);
}
