#include "params/parameter_values.h"

#include "params/prepared.h"
#include "support/printing.h"

namespace {

const locale_forms german{{',', '.'}, "%d.%m.%Y"};
const locale_forms british{{'.', ','}, "%d/%m/%y"};
const date_time today{37028, 49530};  // 2001-05-17 13:45:30

class parameter_values : public prepared_test {};

// A row of the table: number|type|nulls|precision|scale|text.
std::string line_of(const parameter_row& row) {
  return std::to_string(row.number) + '|' + row.type_name + '|' + (row.nullable ? 'Y' : 'N') + '|' +
         std::to_string(row.precision) + '|' + std::to_string(row.scale) + '|' + row.text;
}

TEST_F(parameter_values, rows_describe_the_markers_and_offer_defaults_by_type) {
  const scoped_locale_forms forms(german);
  const auto statement = prepared({{SQL_CHAR, 8, 0, SQL_NO_NULLS},
                                   {SQL_NUMERIC, 9, 2},
                                   {SQL_DECIMAL, 31, -2},
                                   {SQL_INTEGER, 10},
                                   {SQL_SMALLINT, 5},
                                   {SQL_FLOAT, 15},
                                   {SQL_REAL, 7},
                                   {SQL_DOUBLE, 15, 0, SQL_NULLABLE_UNKNOWN},
                                   {SQL_DATE, 10},
                                   {SQL_TIME, 8},
                                   {SQL_TIMESTAMP, 26, 6},
                                   {SQL_VARCHAR, 4294967295}});
  const auto rows = parameter_rows(*statement, today);
  ASSERT_TRUE(rows);
  texts lines;
  for (const parameter_row& row : *rows) lines.push_back(line_of(row));
  EXPECT_EQ(lines, (texts{"1|Char|N|8|0|", "2|Numeric|Y|9|2|0", "3|Decimal|Y|31|-2|0", "4|Integer|Y|10|0|0",
                          "5|Smallint|Y|5|0|0", "6|Float|Y|15|0|0", "7|Real|Y|7|0|0", "8|Double|Y|15|0|0",
                          "9|Date|Y|10|0|05/17/2001", "10|Time|Y|8|0|12:00:00", "11|Timestamp|Y|26|6|17.05.2001",
                          "12|Varchar|Y|4294967295|0|"}));
  for (const int other :
       {SQL_LONGVARCHAR, SQL_BINARY, SQL_VARBINARY, SQL_LONGVARBINARY, SQL_BIGINT, SQL_TINYINT, SQL_BIT}) {
    const auto unhandled = prepared({{SQL_INTEGER, 10}, {static_cast<SQLSMALLINT>(other), 10}});
    EXPECT_FALSE(parameter_rows(*unhandled, today)) << other;
    EXPECT_FALSE(returned_parameter_rows(*unhandled)) << other;
  }
}

TEST(parameter_value, is_read_by_its_type) {
  const struct {
    std::vector<int> types;
    std::vector<std::pair<const char*, value>> read;
    std::vector<const char*> refused;
    const char* message;
  } cases[] = {
      {{SQL_CHAR},
       {{"abc", "abc"}, {" b ", " b "}, {"\u00FC\u00FC\u00FC", "\u00FC\u00FC\u00FC"}},
       {"abcd", "abc "},
       "Char Data in Bind # 4 is too long"},
      {{SQL_CHAR},
       {},
       {""},
       "Can not bind zero length strings.... if you wish to use a null, user the #NULL# keyword...."},
      {{SQL_VARCHAR},
       {{"  x y ", "x y"}, {"", ""}, {"longer than three", "longer than three"}, {"#NULL", "#NULL"}},
       {},
       ""},
      {{SQL_NUMERIC, SQL_DECIMAL, SQL_DOUBLE},
       {{" -12.50 ", -12.5}, {"1e3", 1000.0}},
       {"", "12x", "1e400"},
       "Bind data # 4 is not numeric!"},
      {{SQL_INTEGER},
       {{"12.6", 13}, {"2.5", 2}, {"2147483647", 2147483647}},
       {"2147483648", "-1e12"},
       "Bind data # 4 is not numeric!"},
      {{SQL_SMALLINT}, {{"-32768.4", std::int16_t{-32768}}}, {"32767.5", "65537"}, "Bind data # 4 is not numeric!"},
      {{SQL_FLOAT, SQL_REAL}, {{"1.5", 1.5F}}, {"1e39"}, "Bind data # 4 is not numeric!"},
      {{SQL_DATE},
       {{"2001-03-04 18:00", date_time{36955, 0}},
        {"2001-03-04 06:00", date_time{36954, 0}},
        {"2001-03-04 12:00", date_time{36954, 0}},
        {"2001-03-05 12:00", date_time{36956, 0}},
        {"1899-12-29 12:00", date_time{0, 0}},
        {"05/17/2001", date_time{37028, 0}}},
       {"02/30/2001", "13:45", ""},
       "Bind data # 4 can not be converted to a date!"},
      {{SQL_TIME},
       {{"13:45:00", date_time{0, 49500}},
        {" 1:45 pm", date_time{0, 49500}},
        {"13.45.00", date_time{0, 49500}},
        {"24:00:00", date_time{0, 86400}}},
       {"25:00", "2001-05-17", ""},
       "Bind data # 4 can not be converted to a date!"},
      {{SQL_TIMESTAMP},
       {{"2001-05-17-13.45.30.123456", today}, {"5/17/2001 13:45:30", today}},
       {"13:45", "soon"},
       "Bind data # 4 can not be converted to a date!"}};
  const scoped_locale_forms forms({{'.', '\0'}, "%m/%d/%y"});
  const auto read = [](int type, const char* text) {
    return value_of({.number = 4, .sql_type = type, .precision = 3, .text = text});
  };
  for (const auto& each : cases) {
    for (const int type : each.types) {
      for (const auto& [text, given] : each.read) EXPECT_EQ(read(type, text).given, given) << type << ' ' << text;
      for (const char* text : each.refused) EXPECT_EQ(read(type, text).message, each.message) << type << ' ' << text;
      for (const char* null : {"#NULL#", "  #Null# "}) EXPECT_TRUE(read(type, null).given.is_null()) << type;
    }
  }
}

TEST(parameter_value, heeds_the_locale) {
  const struct {
    const locale_forms& forms;
    int type;
    const char* text;
    value given;
  } cases[] = {{german, SQL_DOUBLE, "1.234", 1.234},
               {german, SQL_DOUBLE, "1,5", 1.0},  // numeric here, but the number ends where the C form does
               {german, SQL_DATE, "17.05.01", date_time{37028, 0}},
               {german, SQL_TIMESTAMP, "17.05.2001 13:45:30", today},
               {british, SQL_DATE, "05/04/2001", date_time{37015, 0}},       // as its default is written
               {british, SQL_TIMESTAMP, "05/04/2001", date_time{36986, 0}},  // as its default is written
               {british, SQL_TIMESTAMP, "05/17/2001", date_time{37028, 0}}};
  for (const auto& each : cases) {
    const scoped_locale_forms forms(each.forms);
    const checked_value read = value_of({.number = 1, .sql_type = each.type, .text = each.text});
    EXPECT_EQ(read.given, each.given) << each.text;
  }
}

TEST_F(parameter_values, the_first_refused_ends_it_and_defaults_stand_for_today) {
  for (const char* short_date : {"%d.%m.%Y", "%d/%m/%y", "%m/%d/%y", "%Y-%m-%d", "%A", ""}) {
    const scoped_locale_forms forms({{}, short_date});
    for (int day = 0; day < 366; ++day) {
      const auto rows = parameter_rows(*prepared({{SQL_DATE, 10}, {SQL_TIMESTAMP, 26}}), {37028 + day, 49530});
      const value midnight(date_time{37028 + day, 0});
      ASSERT_EQ(values_of(*rows).values, (std::vector<value>{midnight, midnight})) << short_date << rows->at(1).text;
    }
  }
  auto rows = *parameter_rows(*prepared(integers(4)), today);
  rows[1].text = "x";
  rows[3].text = "y";
  const checked_values checked = values_of(rows);
  EXPECT_FALSE(checked.ok());
  EXPECT_EQ(checked.refused, 2);
  EXPECT_EQ(checked.message, "Bind data # 2 is not numeric!");
  EXPECT_TRUE(checked.values.empty());
}

TEST_F(parameter_values, are_bound_in_one_step_or_into_a_call) {
  const std::vector<value> values{7, "x", null_t{}};
  const std::vector<scripted::parameter> markers{{SQL_INTEGER, 10}, {SQL_VARCHAR, 5}, {SQL_DATE, 10}};
  for (const bool is_call : {false, true}) {
    const auto statement = prepared(markers, is_call);
    EXPECT_TRUE(bind_values(*statement, values, is_call));
    EXPECT_TRUE(statement->Execute());
    const auto sent = scripted::control().executions().back().rows.at(0);
    EXPECT_EQ(sent.at(0).bytes, std::string("\x07\0\0\0", 4));
    EXPECT_EQ(sent.at(1).bytes, "x");
    EXPECT_EQ(sent.at(2).length_word, SQL_NULL_DATA);
  }
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(parameter_values, that_cannot_be_bound_are_told) {
  const struct {
    SQLSMALLINT sql_type;
    value given;
    bool is_call;
    const char* told;
  } cases[] = {
      {SQL_TIME, date_time{0, 60}, true, "Bind data # 1: a value of the type Time can not be sent to a stored"},
      {SQL_VARCHAR, "six...", true, "Bind data # 1 is too long: the type Varchar takes 5 characters."},
      {SQL_VARCHAR, "\xE2\x82\xAC", true, "Bind data # 1 can not be sent as Varchar: it does not fit"},
      {SQL_VARCHAR, "\xE2\x82\xAC", false, "A value holds a character that the code page ISO-8859-1 lacks"},
      {SQL_INTEGER, 1, false, "SQL error. Code = -7. State = S1000. Message = refused"}};
  for (const auto& each : cases) {
    scripted::control().clear_faults();
    const scoped_code_page pages("ISO-8859-1");
    const auto statement = prepared({{each.sql_type, 5}}, each.is_call);
    scripted::control().fail("SQLBindParameter", 1, {.native = -7, .message = "refused"});
    EXPECT_FALSE(bind_values(*statement, std::vector<value>{each.given}, each.is_call));
    const texts told = ui.take_texts();
    ASSERT_EQ(told.size(), 1U) << each.told;
    EXPECT_EQ(told[0].substr(0, std::string(each.told).size()), each.told);
  }
  EXPECT_FALSE(bind_values(*prepared(integers(1), true), std::vector<value>{1, 2}, true));
  EXPECT_EQ(ui.take_texts(), texts{"Bind data # 2 has no parameter in the call."});
}

TEST_F(parameter_values, returned_rows_hold_what_the_call_left) {
  const auto statement =
      prepared({{SQL_INTEGER, 10}, {SQL_VARCHAR, 9}, {SQL_CHAR, 4}, {SQL_TIME, 8}, {SQL_DATE, 10}}, true,
               {{1, 42}, {2, "  X "}, {4, TIME_STRUCT{1, 2, 3}}, {5, DATE_STRUCT{2001, 5, 17}}});
  EXPECT_TRUE(statement->Execute());
  texts lines;
  const auto rows = returned_parameter_rows(*statement);
  ASSERT_TRUE(rows);
  for (const parameter_row& row : *rows) lines.push_back(line_of(row));
  EXPECT_EQ(lines, (texts{"1|Integer|Y|10|0|42", "2|Varchar|Y|9|0|X", "3|Char|Y|4|0|", "4|Time|Y|8|0|Error 2",
                          "5|Date|Y|10|0|2001-05-17"}));
}

}  // namespace
