#include "base/conversions.h"

#include <gtest/gtest.h>

#include <limits>

#include "base/matrix.h"
#include "support/printing.h"
#include "support/scoped_state.h"

namespace {

const locale_forms c_forms{{'.', '\0'}, "%m/%d/%y"};
const locale_forms german{{',', '.'}, "%d.%m.%Y"};
const locale_forms swiss{{'.', '\''}, "%d.%m.%Y"};
const locale_forms british{{'.', ','}, "%d/%m/%y"};

TEST(conversions, parse_number_knows_the_locale_and_the_c_form) {
  const struct {
    const locale_forms& forms;
    std::vector<std::pair<const char*, double>> read;
    std::vector<const char*> refused;
  } cases[] = {
      {c_forms,
       {{"12.5", 12.5}, {" \t-12.5\r\n", -12.5}, {"+.5", .5}, {"5.", 5}, {"1e3", 1000}, {"1E-2", .01}},
       {"", "   ", ".", "-", "+-5", "- 5", "5-", "1e", "1,234", "1,5", "12 34", "0x10", "inf", "nan", "1e999"}},
      // "1.234" is the C form, which comes first.
      {german,
       {{"1,5", 1.5}, {"-1.234.567,89", -1234567.89}, {"1.234", 1.234}, {"1,5E3", 1500}},
       {"1.5,3", "1,5,3", "12.34.567,8", "1,234.5"}},
      {swiss, {{"1'234.50", 1234.5}, {"12'345'678", 12345678}}, {"'234", "1234'567", "1'23", "1'234'"}},
      {british, {{"1,234.5", 1234.5}, {"-1,234", -1234}}, {"1,2345", "1.5,000"}}};
  for (const auto& each : cases) {
    const scoped_locale_forms forms(each.forms);
    for (const auto& [text, number] : each.read) EXPECT_EQ(parse_number(text), number) << text;
    for (const char* text : each.refused) EXPECT_FALSE(is_numeric(text)) << text;
  }
}

TEST(conversions, leading_number_takes_what_it_can_read) {
  const scoped_locale_forms forms(german);  // which it must not heed
  const struct {
    const char* text;
    double number;
  } cases[] = {{"12abc", 12},  {"  -1.5 rows", -1.5},
               {"1.5,3", 1.5}, {"1e2x", 100},
               {"1e", 1},      {".5", .5},
               {"+7", 7},      {".", 0},
               {"", 0},        {"-", 0},
               {"abc", 0},     {"+-5", 0},
               {"1e999", 0},   {"nan", 0}};
  for (const auto& each : cases) EXPECT_EQ(leading_number(each.text), each.number) << each.text;
}

TEST(conversions, round_to_int32_is_half_even_and_bounded) {
  const struct {
    double number;
    std::optional<std::int32_t> rounded;
  } cases[] = {{0.5, 0},
               {1.5, 2},
               {2.5, 2},
               {-0.5, 0},
               {-1.5, -2},
               {-2.5, -2},
               {2.500001, 3},
               {2147483647.4, std::numeric_limits<std::int32_t>::max()},
               {2147483647.5, {}},
               {-2147483648.5, std::numeric_limits<std::int32_t>::min()},
               {-2147483648.6, {}},
               {1e300, {}},
               {std::numeric_limits<double>::quiet_NaN(), {}}};
  for (const auto& each : cases) EXPECT_EQ(round_to_int32(each.number), each.rounded) << each.number;
}

TEST(conversions, parse_date_reads_these_forms_and_no_others) {
  const struct {
    const locale_forms& forms;
    std::vector<std::pair<const char*, const char*>> read;  // text, the same as ISO
    std::vector<const char*> refused;
  } cases[] = {{c_forms,
                {{"2001-05-17", "2001-05-17"},
                 {"  2001-5-7 ", "2001-05-07"},
                 {"2001-05-17 13:45:30", "2001-05-17 13:45:30"},
                 {"2001-05-17T13:45", "2001-05-17 13:45:00"},
                 {"2001-05-17-13.45.30.123456", "2001-05-17 13:45:30"},
                 {"2001-05-17 13:45:30.999", "2001-05-17 13:45:30"},
                 {"2001-05-17 24:00:00", "2001-05-18"},
                 {"2000-02-29", "2000-02-29"},
                 {"5/17/2001", "2001-05-17"},
                 {"5/17/29", "2029-05-17"},
                 {"5/17/30", "1930-05-17"},
                 {"05/17/2001 1:45 pm", "2001-05-17 13:45:00"},
                 {"13:45", "13:45:00"},
                 {"12:30:15 AM", "00:30:15"},
                 {"12:30 PM", "12:30:00"},
                 {"24:00:00", "24:00:00"}},
                {"", "2001-02-29", "1900-02-29", "2001-13-01", "2001-00-10", "2001-05", "01-05-17", "2001-05-17x",
                 "2001-05-17T", "2001-05-17 25:00", "2001-05-17 24:00:01", "13:60", "13:30 PM", "0:30 AM",
                 "13:45:", "13/13/2001", "37028", "tomorrow"}},
               {german,
                {{"17.05.2001", "2001-05-17"}, {"17.05.2001 13:45", "2001-05-17 13:45:00"}, {"17.05.01", "2001-05-17"}},
                {"31.02.2001", "17.05.20011"}},
               // Month first where it can be.
               {british, {{"17/05/2001", "2001-05-17"}, {"17/05/01", "2001-05-17"}, {"05/04/2001", "2001-05-04"}}, {}}};
  for (const auto& each : cases) {
    const scoped_locale_forms forms(each.forms);
    for (const auto& [text, iso] : each.read) EXPECT_EQ(to_text(parse_date(text).value_or(date_time{})), iso) << text;
    for (const char* text : each.refused) EXPECT_EQ(parse_date(text), std::nullopt) << text;
  }
}

TEST(conversions, an_ambiguous_date_is_read_in_the_order_asked_for) {
  const scoped_locale_forms forms(british);
  const struct {
    const char* text;
    const char* month_first;
    const char* locale_first;
  } cases[] = {{"05/04/2001", "2001-05-04", "2001-04-05"},
               {"05/04/01 13:45", "2001-05-04 13:45:00", "2001-04-05 13:45:00"},
               {"17/05/2001", "2001-05-17", "2001-05-17"},
               {"05/17/2001", "2001-05-17", "2001-05-17"},
               {"2001-05-04", "2001-05-04", "2001-05-04"}};
  for (const auto& each : cases) {
    EXPECT_EQ(to_text(parse_date(each.text, date_order::month_first).value_or(date_time{})), each.month_first);
    EXPECT_EQ(to_text(parse_date(each.text, date_order::locale_first).value_or(date_time{})), each.locale_first);
  }
}

TEST(conversions, short_dates_read_back_as_their_day) {
  const date_time moment{37015, 49530};  // 2001-05-04
  EXPECT_EQ(month_first_text(moment), "05/04/2001");
  const struct {
    const char* form;
    date_time moment;
    const char* text;
  } cases[] = {{"%d.%m.%Y", moment, "04.05.2001"},
               {"%d/%m/%y", moment, "04/05/01"},
               {"%a %d.%m.%Y", moment, "Fri 04.05.2001"},
               {"%d/%m/%y", {-14'000, 0}, "1861-08-31"},  // two digits would read as another century
               {"%m/%Y", moment, "2001-05-04"},
               {"\xFF%d.%m.%Y", moment, "2001-05-04"},
               {"", moment, "2001-05-04"}};
  for (const auto& each : cases) {
    const scoped_locale_forms forms({{}, each.form});
    EXPECT_EQ(short_date_text(each.moment), each.text);
    EXPECT_EQ(parse_date(each.text, date_order::locale_first), (date_time{each.moment.days, 0})) << each.text;
  }
  EXPECT_EQ(parse_time_of_day("13.45.30"), (date_time{0, 49530}));
  EXPECT_EQ(parse_time_of_day("25:00"), std::nullopt);
}

TEST(conversions, values_convert_pass_errors_and_leave_empty_behind) {
  const date_time moment{37028, 43200};
  const struct {
    value from;
    value int32;
    value real;
    value date;
  } cases[] = {{value(), {}, {}, {}},
               {null_t{}, {}, {}, {}},
               {error_value{13}, error_value{13}, error_value{13}, error_value{13}},
               {array{1, {5}}, {}, {}, {}},
               {matrix(1), {}, {}, {}},
               {true, -1, -1.0, date_time{-1, 0}},
               {std::int16_t{7}, 7, 7.0, date_time{7, 0}},
               {2.5F, 2, 2.5, date_time{2, 43200}},
               {currency{25000}, 2, 2.5, date_time{2, 43200}},
               {3000000000.0, {}, 3000000000.0, {}},
               {" 12.5 ", 12, 12.5, {}},
               {"2001-05-17 12:00", {}, {}, moment},
               {"x", {}, {}, {}},
               {moment, 37028, 37028.5, moment},
               {-0.25, 0, -0.25, date_time{-1, 64800}},
               {0.9999999, 1, 0.9999999, date_time{0, 86400}},
               {1.9999999, 2, 1.9999999, date_time{2, 0}},
               {2958465.5, 2958466, 2958465.5, date_time{2958465, 43200}},  // the last day of the year 9999
               {2958466.0, 2958466, 2958466.0, {}}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::PrintToString(each.from));
    EXPECT_EQ(to_int32(each.from), each.int32);
    EXPECT_EQ(to_double(each.from), each.real);
    EXPECT_EQ(to_date(each.from), each.date);
  }
}

TEST(conversions, format_value_gives_every_kind_its_text_and_applies_a_pattern_to_numbers_only) {
  const struct {
    value from;
    const char* text;
    const char* by_pattern;  // "##,##0.00"
  } cases[] = {{value(), "", ""},
               {null_t{}, "", ""},
               {std::int16_t{-7}, "-7", "-7.00"},
               {std::int32_t{2147483647}, "2147483647", "2,147,483,647.00"},
               {0.1F, "0.1", "0.10"},
               {0.1 + 0.2, "0.3", "0.30"},
               {currency{15000}, "1.5", "1.50"},
               {"1234", "1234", "1234"},
               {date_time{37028, 49530}, "2001-05-17 13:45:30", "2001-05-17 13:45:30"},
               {error_value{2}, "Error 2", "Error 2"},
               {array{1, {1}}, "", ""},
               {matrix(1), "", ""}};
  for (const auto& each : cases) {
    EXPECT_EQ(format_value(each.from), each.text);
    EXPECT_EQ(format_value(each.from, "##,##0.00"), each.by_pattern);
  }
  EXPECT_EQ(to_text(true) + to_text(false), "TrueFalse");
}

TEST(values, are_equal_when_kind_and_content_are) {
  EXPECT_NE(value(), value(null_t{}));
  EXPECT_NE(value(std::int16_t{1}), value(1));
  EXPECT_NE(value(1), value(1.0));
  EXPECT_NE(value(error_value{1}), value(1));
  EXPECT_EQ(value(array{1, {1, "x"}}), value(array{1, {1, "x"}}));
  EXPECT_NE(value(array{1, {1, "x"}}), value(array{0, {1, "x"}}));
}

}  // namespace
