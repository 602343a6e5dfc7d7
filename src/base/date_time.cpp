#include "base/date_time.h"

#include <fmt/format.h>

#include <chrono>

namespace {

constexpr std::chrono::sys_days epoch{std::chrono::year{1899} / 12 / 30};

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
  const date_fields at = fields_of(moment);
  if (moment.days == 0) return fmt::format("{:02}:{:02}:{:02}", at.hour, at.minute, at.second);
  std::string date = fmt::format("{:04}-{:02}-{:02}", at.year, at.month, at.day);
  if (moment.seconds == 0) return date;
  return fmt::format("{} {:02}:{:02}:{:02}", date, at.hour, at.minute, at.second);
}
