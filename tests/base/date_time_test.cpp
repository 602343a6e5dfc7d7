#include "base/date_time.h"

#include <gtest/gtest.h>

#include "support/printing.h"

namespace {

TEST(date_time, dates_count_from_the_epoch) {
  const struct {
    int year, month, day;
    std::optional<std::int32_t> days;
  } cases[] = {{1899, 12, 30, 0}, {1899, 12, 31, 1},    {1899, 12, 29, -1},      {2001, 5, 17, 37028},
               {1900, 3, 1, 61},  {2000, 2, 29, 36585}, {9999, 12, 31, 2958465}, {1, 1, 1, -693593},
               {1900, 2, 29, {}}, {2001, 2, 29, {}},    {2001, 4, 31, {}},       {2001, 0, 1, {}},
               {2001, 13, 1, {}}, {2001, 1, 0, {}},     {2001, 1, 32, {}},       {2001, -1, 1, {}},
               {32768, 1, 1, {}}, {-32768, 1, 1, {}},   {2001, 1, 257, {}}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.year << '-' << each.month << '-' << each.day);
    const auto made = make_date(each.year, each.month, each.day);
    EXPECT_EQ(made ? std::optional(made->days) : std::nullopt, each.days);
    if (!made) continue;
    const date_fields at = fields_of(*made);
    EXPECT_TRUE(at.year == each.year && at.month == each.month && at.day == each.day && at.hour == 0);
  }
  for (const int year : {-32767, 32767}) EXPECT_EQ(fields_of(make_date(year, 12, 31).value()).year, year);
}

TEST(date_time, times_are_seconds_of_the_day) {
  const struct {
    int hour, minute, second;
    std::optional<std::int32_t> seconds;
  } cases[] = {{0, 0, 0, 0},   {13, 45, 30, 49530}, {23, 59, 59, 86399}, {24, 0, 0, 86400}, {23, 59, 61, 86401},
               {24, 0, 1, {}}, {24, 1, 0, {}},      {25, 0, 0, {}},      {-1, 0, 0, {}},    {0, 60, 0, {}},
               {0, -1, 0, {}}, {0, 0, 62, {}},      {0, 0, -1, {}}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << each.hour << ':' << each.minute << ':' << each.second);
    const auto made = make_time(each.hour, each.minute, each.second);
    EXPECT_EQ(made ? std::optional(made->seconds) : std::nullopt, each.seconds);
  }
}

TEST(date_time, date_plus_time_is_an_addition) {
  const date_time end_of_day{0, 86400};
  EXPECT_EQ((date_time{37028, 0} + date_time{0, 49530}), (date_time{37028, 49530}));
  EXPECT_EQ((date_time{37028, 0} + end_of_day), (date_time{37029, 0}));
  EXPECT_EQ((date_time{37028, 86399} + date_time{0, 86399}), (date_time{37029, 86398}));
  EXPECT_EQ((date_time{-1, 0} + end_of_day), (date_time{0, 0}));
  // Two times of day stay one: 24:00:00 is not 00:00:00.
  EXPECT_EQ((date_time{} + end_of_day), end_of_day);
  EXPECT_NE(end_of_day, date_time{});
}

TEST(date_time, texts_are_iso_and_drop_what_is_not_there) {
  const struct {
    date_time moment;
    const char* text;
  } cases[] = {{{37028, 0}, "2001-05-17"},
               {{0, 49530}, "13:45:30"},
               {{37028, 49530}, "2001-05-17 13:45:30"},
               {{0, 0}, "00:00:00"},
               {{0, 86400}, "24:00:00"},
               {{-693593, 1}, "0001-01-01 00:00:01"},
               {{2958465, 86399}, "9999-12-31 23:59:59"}};
  for (const auto& each : cases) EXPECT_EQ(to_text(each.moment), each.text);
}

}  // namespace
