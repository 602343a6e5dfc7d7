#pragma once

#include <cstdint>
#include <optional>
#include <string>

// A date, a time of day, or both: whole days since the epoch 1899-12-30 plus whole seconds of the day.
// A date alone has 0 seconds, a time of day alone has 0 days, and date + time is a plain addition.
struct date_time {
  std::int32_t days = 0;
  std::int32_t seconds = 0;

  friend bool operator==(const date_time&, const date_time&) = default;

  // Seconds beyond a day's 86,400 carry into the days, unless both sides are times of day: DB2 tells
  // 24:00:00, the end of a day, from 00:00:00.
  friend date_time operator+(date_time date, date_time time);
};

inline constexpr std::int32_t seconds_per_day = 86400;

// The calendar fields of a date_time (proleptic Gregorian calendar).
struct date_fields {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

// Midnight of the day; nothing when month or day name no day of that year. Years -32767 to 32767.
std::optional<date_time> make_date(int year, int month, int day);

// A time of day; 24:00:00 counts as the end of the day, and seconds up to 61 as leap seconds.
std::optional<date_time> make_time(int hour, int minute, int second);

date_fields fields_of(date_time moment);

// ISO text: "2001-05-17", "13:45:30", "2001-05-17 13:45:30". Midnight drops the time, day zero the date;
// midnight of day zero is "00:00:00".
std::string to_text(date_time moment);
