#include "params/parameter_values.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

#include "base/code_page.h"
#include "base/conversions.h"
#include "base/text.h"
#include "base/user_interface.h"
#include "odbc/odbcd.h"

namespace {

// What a typed text must be, and the kind of value it becomes.
enum class check { characters, trimmed_text, real, single, int32, int16, date, time, timestamp };

std::string nothing(date_time) { return {}; }
std::string zero(date_time) { return "0"; }
std::string noon(date_time) { return "12:00:00"; }

// SQL type code -> default text and check. A type without a row is unhandled.
struct parameter_rule {
  int sql_type;
  check kind;
  std::string (*default_text)(date_time today);
};
constexpr std::array<parameter_rule, 12> parameter_rules{{
    {SQL_CHAR, check::characters, nothing},
    {SQL_NUMERIC, check::real, zero},
    {SQL_DECIMAL, check::real, zero},
    {SQL_INTEGER, check::int32, zero},
    {SQL_SMALLINT, check::int16, zero},
    {SQL_FLOAT, check::single, zero},
    {SQL_REAL, check::single, zero},
    {SQL_DOUBLE, check::real, zero},
    {SQL_DATE, check::date, month_first_text},
    {SQL_TIME, check::time, noon},
    {SQL_TIMESTAMP, check::timestamp, short_date_text},
    {SQL_VARCHAR, check::trimmed_text, nothing},
}};

template <typename ValueText>
std::optional<std::vector<parameter_row>> described_rows(const odbcstmt& statement, ValueText value_text) {
  std::vector<parameter_row> rows;
  for (int marker = 1; marker <= statement.Nparms(); ++marker) {
    const int sql_type = statement.Ptype(marker);
    const parameter_rule* rule = find_type(parameter_rules, sql_type);
    if (rule == nullptr) return std::nullopt;
    rows.push_back({marker, sql_type, ODBCD::sql_type_name(sql_type), statement.PNullable(marker) != 0,
                    statement.Pprec(marker), statement.pScale(marker), value_text(*rule, marker)});
  }
  return rows;
}

std::optional<value> number_of(check kind, const std::string& text) {
  if (!is_numeric(text)) return std::nullopt;
  const double number = leading_number(text);
  if (kind == check::real) return number;
  if (kind == check::single) {
    if (std::abs(number) > std::numeric_limits<float>::max()) return std::nullopt;
    return static_cast<float>(number);
  }
  const auto rounded = round_to_int32(number);
  if (!rounded || kind == check::int32) return rounded;
  const auto narrow = static_cast<std::int16_t>(*rounded);
  return narrow == *rounded ? std::optional<value>(narrow) : std::nullopt;
}

date_time nearest_day(date_time moment) {
  constexpr std::int32_t noon_seconds = seconds_per_day / 2;
  const bool up = moment.seconds > noon_seconds || (moment.seconds == noon_seconds && moment.days % 2 != 0);
  return {moment.days + (up ? 1 : 0), 0};
}

std::optional<value> moment_of(check kind, const std::string& text) {
  const auto time = parse_time_of_day(text);
  if (kind == check::time) return time;
  const auto date = parse_date(text, kind == check::date ? date_order::month_first : date_order::locale_first);
  if (!date || date == time) return std::nullopt;
  if (kind == check::timestamp) return date;
  return nearest_day(*date);
}

checked_value converted_or(std::optional<value> converted, std::string message) {
  if (converted) return {*std::move(converted), {}};
  return {{}, std::move(message)};
}

// Why a value that passed its check cannot be set on a marker of a call.
std::string refused_by_call(const odbcstmt& statement, const value& given, int marker) {
  if (marker > statement.Nparms()) return fmt::format("Bind data # {} has no parameter in the call.", marker);
  const std::string type = ODBCD::sql_type_name(statement.Ptype(marker));
  if (statement.Pkind(marker) == parameter_kind::time) {
    return fmt::format(
        "Bind data # {}: a value of the type {} can not be sent to a stored procedure. Only the {} "
        "keyword can be bound to it.",
        marker, type, null_keyword);
  }
  if (given.is_text() && count_characters(given.text()) > statement.Pprec(marker)) {
    return fmt::format("Bind data # {} is too long: the type {} takes {} characters.", marker, type,
                       statement.Pprec(marker));
  }
  return fmt::format(
      "Bind data # {} can not be sent as {}: it does not fit, holds a zero byte, or holds a character "
      "that the code page {} lacks.",
      marker, type, current_code_page().name());
}

}  // namespace

std::optional<std::vector<parameter_row>> parameter_rows(const odbcstmt& statement, date_time today) {
  return described_rows(statement, [&](const parameter_rule& rule, int) { return rule.default_text(today); });
}

std::optional<std::vector<parameter_row>> returned_parameter_rows(const odbcstmt& statement) {
  return described_rows(statement,
                        [&](const parameter_rule&, int marker) { return to_text(statement.GetParm(marker)); });
}

checked_value value_of(const parameter_row& row) {
  if (upper_case(trim_blanks(row.text)) == null_keyword) return {null_t{}, {}};
  const parameter_rule* rule = find_type(parameter_rules, row.sql_type);
  switch (rule == nullptr ? check::trimmed_text : rule->kind) {
    case check::characters:
      if (count_characters(row.text) > row.precision)
        return {{}, fmt::format("Char Data in Bind # {} is too long", row.number)};
      if (row.text.empty()) {
        return {{},
                "Can not bind zero length strings.... if you wish to use a null, user the #NULL# "
                "keyword...."};
      }
      return {row.text, {}};
    case check::real:
    case check::single:
    case check::int32:
    case check::int16:
      return converted_or(number_of(rule->kind, row.text), fmt::format("Bind data # {} is not numeric!", row.number));
    case check::date:
    case check::time:
    case check::timestamp:
      return converted_or(moment_of(rule->kind, row.text),
                          fmt::format("Bind data # {} can not be converted to a date!", row.number));
    case check::trimmed_text:
      break;
  }
  return {trim_blanks(row.text), {}};
}

checked_values values_of(std::span<const parameter_row> rows) {
  checked_values all;
  for (const parameter_row& row : rows) {
    checked_value each = value_of(row);
    if (!each.ok()) return {{}, std::move(each.message), row.number};
    all.values.push_back(std::move(each.given));
  }
  return all;
}

bool bind_values(odbcstmt& statement, std::span<const value> values, bool is_call) {
  if (!is_call) {
    if (statement.BindV(values)) return true;
    if (statement.last_error() == error_number(odbc_fault::text_not_sendable)) {
      show_user_error(fmt::format("A value holds a character that the code page {} lacks, so it can not be sent.",
                                  current_code_page().name()));
    } else {
      statement.Errd();
    }
    return false;
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    const int marker = static_cast<int>(i) + 1;
    if (statement.BindProcParm(values[i], marker)) continue;
    show_user_error(refused_by_call(statement, values[i], marker));
    return false;
  }
  return true;
}
