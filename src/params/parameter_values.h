#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"
#include "odbc/odbcstmt.h"

// A parameter marker as the user sees it: the driver's description, and the text of its value.
struct parameter_row {
  int number = 0;  // from 1
  int sql_type = 0;
  std::string type_name{};
  bool nullable = false;
  std::uint64_t precision = 0;
  int scale = 0;
  std::string text{};
};

// What is told when a marker has a type that no value can be typed for (LONG VARCHAR, binary types and the like).
inline constexpr std::string_view unhandled_type = "Unhandeled Type Encountered!";
// The text that binds SQL NULL to a marker of any type; case and blanks around it do not matter.
inline constexpr std::string_view null_keyword = "#NULL#";

// The markers of a prepared statement in order, each with its type's default text; `today` is any moment of the current
// day. Nothing when a marker's type is unhandled.
std::optional<std::vector<parameter_row>> parameter_rows(const odbcstmt& statement, date_time today);
// The same after a call, each with the value that the marker then holds: "" for Null, and "Error 2" for a TIME, which
// cannot be read back.
std::optional<std::vector<parameter_row>> returned_parameter_rows(const odbcstmt& statement);

// The value that a text stands for, or the message that refuses it.
struct checked_value {
  value given;
  std::string message;
  [[nodiscard]] bool ok() const { return message.empty(); }
};
// Reads the text of a row by the row's type:
// - CHAR: the text as it is, blanks and all; at least one character and at most the precision.
// - Numeric types: a text that is_numeric in the locale, whose value is the leading_number of the text: the two read a
//   locale's own marks differently, "1,5" is accepted where ',' is the decimal mark and stands for 1. Integers are
//   rounded to the nearest (a half to the even); one beyond its type's range counts as not numeric.
// - DATE: rounded to the nearest day (a half to the even day number); an ambiguous date has its month first, as the
//   default shows it. TIMESTAMP: an ambiguous date is read as the locale writes it, as the default shows it. A time of
//   day alone is neither. TIME: a time of day.
// - VARCHAR: the text without the blanks around it, of any length.
checked_value value_of(const parameter_row& row);

// The values of all rows; or, at the first that is refused, its message and number.
struct checked_values {
  std::vector<value> values;
  std::string message;
  int refused = 0;  // the row's number, 0 when none is refused
  [[nodiscard]] bool ok() const { return refused == 0; }
};
checked_values values_of(std::span<const parameter_row> rows);

// Binds one value per marker: all in one step, or, to a call, marker by marker. What fails is told, with the marker's
// number where it is known, and answers false; the statement must then not be executed.
bool bind_values(odbcstmt& statement, std::span<const value> values, bool is_call);
