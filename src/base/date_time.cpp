#include "base/date_time.h"

#include <fmt/format.h>

#include <chrono>
#include <iterator>

namespace {

constexpr std::chrono::sys_days epoch{std::chrono::year{1899} / 12 / 30};

void append_two_digits(int number, std::string& out) {
  if (number < 0 || number > 99) {
    fmt::format_to(std::back_inserter(out), "{:02}", number);
    return;
  }
  out += static_cast<char>('0' + number / 10);
  out += static_cast<char>('0' + number % 10);
}

}  // namespace

date_time operator+(date_time date, date_time time) {
  date_time sum{date.days + time.days, date.seconds + time.seconds};
  if (sum.days != 0 && sum.seconds >= seconds_per_day) {
    sum.days += sum.seconds / seconds_per_day;
    sum.seconds %= seconds_per_day;
  }
  return sum;
}

std::optional<date_time> make_date(int year, int month, int day) {
  if (year < -32767 || year > 32767 || month < 1 || month > 12 || day < 1 || day > 31) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                         std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok()) return std::nullopt;
  return date_time{static_cast<std::int32_t>((std::chrono::sys_days{date} - epoch).count()), 0};
}

std::optional<date_time> make_time(int hour, int minute, int second) {
  const bool end_of_day = hour == 24 && minute == 0 && second == 0;
  if (!end_of_day && (hour < 0 || hour > 23)) return std::nullopt;
  if (minute < 0 || minute > 59 || second < 0 || second > 61) return std::nullopt;
  return date_time{0, (hour * 60 + minute) * 60 + second};
}

date_fields fields_of(date_time moment) {
  const std::chrono::year_month_day date{epoch + std::chrono::days{moment.days}};
  date_fields fields;
  fields.year = static_cast<int>(date.year());
  fields.month = static_cast<int>(static_cast<unsigned>(date.month()));
  fields.day = static_cast<int>(static_cast<unsigned>(date.day()));
  fields.hour = moment.seconds / 3600;
  fields.minute = moment.seconds / 60 % 60;
  fields.second = moment.seconds % 60;
  return fields;
}

std::string to_text(date_time moment) {
  std::string text;
  append_text(moment, text);
  return text;
}

void append_text(date_time moment, std::string& out) {
  const date_fields at = fields_of(moment);
  if (moment.days != 0) {
    if (at.year >= 0 && at.year <= 9999) {
      append_two_digits(at.year / 100, out);
      append_two_digits(at.year % 100, out);
    } else {
      fmt::format_to(std::back_inserter(out), "{:04}", at.year);
    }
    out += '-';
    append_two_digits(at.month, out);
    out += '-';
    append_two_digits(at.day, out);
    if (moment.seconds == 0) return;
    out += ' ';
  }
  append_two_digits(at.hour, out);
  out += ':';
  append_two_digits(at.minute, out);
  out += ':';
  append_two_digits(at.second, out);
}
