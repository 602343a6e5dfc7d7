#pragma once

#include <string>
#include <string_view>

#include "base/value.h"

// A number as text, independent of the locale: up to 15 significant digits for a double (0.1, 1E+20), 7 for a
// single, up to four decimals for a currency. Never a trailing zero after the decimal point.
std::string number_text(double number);
std::string number_text(float number);
std::string number_text(currency amount);

// The same text at the end of `out`, without a string of its own.
void append_number_text(double number, std::string& out);
void append_integer(std::int64_t number, std::string& out);

// A number shown by a pattern. '0' is a required digit, '#' an optional one, '.' the decimal point, which is printed
// whenever the pattern has it, and ',' anywhere before the point groups thousands. Values are rounded, halves away from
// zero, to the digits after the point; digits before the point are never dropped. So with "##.#######" 0.25 is ".25"
// and 0 is ".". Numbers that are not finite give their number_text.
std::string format_number(double number, std::string_view pattern);
