#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/value.h"

// How a locale writes numbers. The C locale's form ("1234.5") is always understood as well.
struct number_marks {
  char decimal = '.';
  char group = '\0';  // between groups of three digits; '\0' for none
};

// What the user's locale says (environment, category LC_NUMERIC and LC_TIME), read once at first use; tests replace it.
struct locale_forms {
  number_marks numbers;
  std::string short_date = "%m/%d/%y";  // strptime's notation
};
locale_forms& current_locale_forms();

// A whole text as a number: blanks around it, a sign, digits, a decimal mark and an exponent, in the locale's form or
// the C locale's. Nothing for anything else, for an empty text and for a number beyond a double's range.
std::optional<double> parse_number(std::string_view text);
bool is_numeric(std::string_view text);

// The number at the start of a text, independent of the locale: leading blanks skipped, then sign, digits, '.',
// exponent; what follows is ignored. 0 when no digit is there ("." is 0).
double leading_number(std::string_view text);

// Nearest integer, a half to the even neighbour; nothing when it does not fit.
std::optional<std::int32_t> round_to_int32(double number);

// Which form is tried first where a text reads as a date in two: 05/04/2001 is the 4th of May with the month first, and
// the 5th of April in a locale that puts the day first.
enum class date_order { month_first, locale_first };

// A text as date, time or both: ISO forms (also with 'T', or as DB2 writes a timestamp: 2001-05-17-13.45.30.123456),
// month first with slashes, the locale's short date; a time has two or three parts and may end in AM or PM. Fractions
// of a second are dropped.
std::optional<date_time> parse_date(std::string_view text, date_order order = date_order::month_first);
// A text that is a time of day alone, in the forms of parse_date (13.45.30, as DB2 writes it, included).
std::optional<date_time> parse_time_of_day(std::string_view text);

// The day of a moment as mm/dd/yyyy.
std::string month_first_text(date_time moment);
// The day of a moment as the locale writes a short date; in ISO form where parse_date with the locale first would not
// read the same day from it. UTF-8.
std::string short_date_text(date_time moment);

// A value as another kind; nothing when it has no such form (Null, Empty, error values, arrays, texts that do not read
// so). A boolean is -1 or 0, a date is its days with the time as fraction, and a number is days likewise.
std::optional<std::int32_t> int32_of(const value& v);
std::optional<double> double_of(const value& v);
std::optional<date_time> date_of(const value& v);

// The same as values: an error value passes through unchanged, a conversion that fails leaves Empty.
value to_int32(const value& v);
value to_double(const value& v);
value to_date(const value& v);

// Null gives ""; a number with a pattern is format_number, anything else to_text.
std::string format_value(const value& v, std::string_view pattern = {});
