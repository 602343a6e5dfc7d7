// The environment, the list of data sources, type names, raised errors, raw buffers and diagnostics.
#include <array>
#include <limits>

#include "odbc/manager_faults.h"
#include "odbc/odbc_fixture.h"
#include "odbc/raw_buffer.h"
#include "support/odbc_sandbox.h"
#include "support/scoped_state.h"

namespace {

using environment = odbc_test;
using diagnostics = scripted_test;

std::int32_t number_raised(std::int32_t number) {
  try {
    raise_error(number);
  } catch (const layer_error& error) {
    return error.number();
  }
}

TEST_F(environment, is_freed_once_and_allocated_anew) {
  odbccon con;
  ASSERT_TRUE(con.Connect("SCRIPTED", "ME", "SECRET"));
  EXPECT_EQ(ODBCD::open_connections().find(handle_key(con.Handle())), &con);
  ASSERT_TRUE(ODBCD::odbc_alloc_env());  // frees the old one, and what is connected through it
  EXPECT_TRUE(con.Free());
  EXPECT_TRUE(ODBCD::odbc_free_env());
  EXPECT_TRUE(ODBCD::odbc_free_env());
  EXPECT_EQ(ODBCD::henv, nullptr);
}

TEST_F(environment, shows_a_failed_allocation) {
  ODBCD::odbc_free_env();
  next_manager_faults().alloc_env = SQL_ERROR;
  EXPECT_FALSE(ODBCD::odbc_alloc_env());
  EXPECT_EQ(ODBCD::henv, nullptr);
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0].text, "SqlAlloc returned: -1");
  EXPECT_EQ(ui.messages[0].title, "ODBC ERROR");
  EXPECT_EQ(ui.messages[0].buttons, message_buttons::ok);
}

TEST_F(environment, stays_when_it_cannot_be_freed) {
  next_manager_faults().free_env = SQL_ERROR;
  const SQLHENV before = ODBCD::henv;
  try {
    ODBCD::odbc_free_env();
    ADD_FAILURE() << "nothing was raised";
  } catch (const layer_error& error) {
    EXPECT_EQ(error.number(), error_number(odbc_fault::free_environment));
  }
  EXPECT_EQ(ODBCD::henv, before);
}

TEST_F(environment, lists_data_sources_with_one_row_and_column_more) {
  const value list = ODBCD::list_data_sources();
  ASSERT_TRUE(list.is(value::kind::table));
  const matrix& table = list.table();
  EXPECT_EQ(table.first_lower(), 0);
  EXPECT_EQ(table.first_upper(), 3);
  EXPECT_EQ(table.second_lower(), 0);
  EXPECT_EQ(table.second_count(), 3U);
  const char* names[] = {"SQLITE", "POSTGRES", "SCRIPTED"};
  for (int row = 0; row < 3; ++row) {
    EXPECT_EQ(table(row, 0), value(names[row]));
    EXPECT_TRUE(table(row, 1).is_text());
    EXPECT_TRUE(table(row, 2).is_empty());
    EXPECT_TRUE(table(3, static_cast<std::size_t>(row)).is_empty());
  }
}

TEST_F(environment, a_list_ends_at_an_entry_that_does_not_come_whole) {
  const auto listed = [](const std::string& name, const std::string& ini) {
    const auto file = odbc_sandbox::instance().folder() / name;
    write_file(file, ini);
    const scoped_environment user("ODBCINI", file.string());
    const value list = ODBCD::list_data_sources();
    return list.is_null() ? 0 : list.table().first_upper();
  };
  // The driver manager remembers entries by their name alone, so every name stands once.
  const std::string long_driver = "Driver=" + std::string(300, 'd');
  EXPECT_EQ(listed("none.ini", ""), 0);
  EXPECT_EQ(listed("two.ini", "[A]\nDriver=x\n[B]\nDriver=y\n"), 2);
  EXPECT_EQ(listed("description.ini", "[C]\nDriver=x\n[D]\n" + long_driver + "\n[E]\nDriver=z\n"), 1);
  EXPECT_EQ(listed("name.ini", "[F]\nDriver=x\n[" + std::string(40, 'N') + "]\nDriver=y\n[G]\nDriver=z\n"), 1);
  EXPECT_EQ(listed("first.ini", "[H]\n" + long_driver + "\n[I]\nDriver=z\n"), 0);
}

TEST(data_sources, are_none_without_an_environment) { EXPECT_TRUE(ODBCD::list_data_sources().is_null()); }

TEST(type_names, are_these) {
  const texts names{"Unknown", "Bit",  "TinyInt", "BigInt",    "LongVarBinary", "Var Binary", "Binary", "Long Varchar",
                    "Unknown", "Char", "Numeric", "Decimal",   "Integer",       "Smallint",   "Float",  "Real",
                    "Double",  "Date", "Time",    "Timestamp", "Varchar",       "Unknown"};
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(ODBCD::sql_type_name(static_cast<int>(i) - 8), names[i]);
}

TEST(raised_errors, carry_the_base_unless_negative) {
  EXPECT_EQ(number_raised(0), object_error_base + 65001);
  EXPECT_EQ(number_raised(11070), -2147210434);
  EXPECT_EQ(number_raised(-5), -5);
}

TEST(raw_buffers, hold_words_at_any_offset) {
  byte_buffer bytes(32, 0xEE);
  cfputw(&bytes[1], -2);
  cfputd(&bytes[3], -70000);
  cfputf(&bytes[7], -0.1);
  EXPECT_EQ(cfgetw(&bytes[1]), -2);
  EXPECT_EQ(cfgetd(&bytes[3]), -70000);
  EXPECT_EQ(cfgetf(&bytes[7]), -0.1);
  EXPECT_EQ(bytes[1], 0xFE);  // little-endian
  EXPECT_EQ(bytes[0], 0xEE);
  EXPECT_EQ(bytes[15], 0xEE);
  cfmove("abc", &bytes[0], 4);
  EXPECT_EQ(cflocc(0, bytes.data(), bytes.size()), 3U);
  EXPECT_EQ(cflocc(0, bytes.data(), 3), 3U);
}

TEST(raw_buffers, give_text_by_length_and_never_beyond_their_end) {
  const scoped_code_page page("ISO-8859-15");
  const byte_buffer bytes{'a', 0, 0xE9, 'b'};
  const struct {
    std::size_t offset;
    std::ptrdiff_t length;
    std::string text;
  } cases[] = {
      {0, 3, std::string("a\0é", 4)}, {2, 2, "éb"}, {2, 99, "éb"}, {0, 0, ""}, {0, -1, ""}, {4, 1, ""}, {9, 1, ""}};
  for (const auto& each : cases) EXPECT_EQ(bytes_to_string(bytes, each.offset, each.length), each.text);
}

TEST_F(diagnostics, show_what_the_driver_said) {
  driver.answer_to("x", {.prepare_failure = scripted::failure{SQL_ERROR, "42704", -204, "NAME undefined."}});
  EXPECT_TRUE(failed_with(stmt.Prep("x"), stmt, odbc_fault::prepare));
  EXPECT_EQ(stmt.Errd(), -204);
  ASSERT_EQ(ui.messages.size(), 1U);
  const message& shown = ui.messages[0];
  EXPECT_EQ(shown.text, "SQL error. Code = -204. State = 42704. Message = NAME undefined..");
  EXPECT_EQ(shown.title, "");
  EXPECT_EQ(shown.icon, message_icon::none);
  EXPECT_EQ(shown.buttons, message_buttons::ok);

  stmt.Prep("x");
  EXPECT_EQ(stmt.Errnum(), -204);
  EXPECT_EQ(ui.messages.size(), 1U);

  driver.fail("SQLTransact", 1, {SQL_ERROR, "40001", -913, "deadlock"});
  EXPECT_TRUE(failed_with(con.Commit(), con, odbc_fault::commit));
  EXPECT_EQ(con.Errd(), -913);
  EXPECT_EQ(ui.messages.back().text, "SQL error. Code = -913. State = 40001. Message = deadlock.");
}

TEST_F(diagnostics, tell_when_there_is_nothing_to_tell) {
  const diagnostic_record none = stmt.ErrData();  // no failure is pending
  EXPECT_EQ(none.rc, SQL_NO_DATA_FOUND);
  EXPECT_EQ(none.native, -1);
  EXPECT_EQ(none.state + none.text, "");
  next_manager_faults().error = SQL_INVALID_HANDLE;
  EXPECT_EQ(con.Errd(), -1);
  odbccon idle;
  odbcstmt empty;
  EXPECT_EQ(idle.Errd(), 0);
  EXPECT_EQ(empty.Errd(), 0);
  EXPECT_EQ(idle.Errnum() + empty.Errnum(), 0);
  const std::string disconnected = "SQL error. Code = 0. State = Disconnected. Message = Inactive connection.";
  EXPECT_EQ(ui.take_texts(), (texts{"Error return -2 during call to SQLERROR.", disconnected, disconnected}));
}

TEST_F(diagnostics, cut_a_long_message_at_a_whole_character) {
  const std::string whole(510, 'm');  // 512 bytes are offered, the last for a zero
  for (const auto& [tail, kept] : {std::pair{std::string("a€€"), std::string("a")},
                                   {std::string("€"), std::string()},
                                   {std::string("x"), std::string("x")},
                                   {std::string(1000, 'n'), std::string("n")}}) {
    driver.answer_to("x", {.prepare_failure = scripted::failure{SQL_ERROR, "42000", 1, whole + tail}});
    stmt.Prep("x");
    EXPECT_EQ(stmt.ErrData().text, whole + kept);
  }
}

}  // namespace
