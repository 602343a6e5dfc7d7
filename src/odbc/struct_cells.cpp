#include "odbc/struct_cells.h"

#include <array>

#include "base/text.h"

namespace {

int word(const unsigned char* bytes, std::size_t index) { return cfgetw(bytes + 2 * index); }

void put_word(unsigned char* bytes, std::size_t index, int number) {
  cfputw(bytes + 2 * index, static_cast<std::int16_t>(number));
}

}  // namespace

std::string_view cell_bytes(const unsigned char* bytes, std::size_t width, SQLLEN length) {
  if (length < 1 || width < 2) return {};
  const std::size_t room = width - 1;
  const auto reported = static_cast<std::size_t>(length);
  const std::string_view text(reinterpret_cast<const char*>(bytes), std::min(reported, room));
  return reported > room && current_code_page().is_utf8() ? without_cut_character(text) : text;
}

std::string cell_text(const unsigned char* bytes, std::size_t width, SQLLEN length) {
  return current_code_page().to_utf8(cell_bytes(bytes, width, length));
}

void append_trimmed_cell_text(const unsigned char* bytes, std::size_t width, SQLLEN length, std::string& out) {
  const code_page& page = current_code_page();
  const std::string_view text = cell_bytes(bytes, width, length);
  if (page.is_utf8()) {
    out += trim_blanks(text);
  } else {
    out += trim_blanks(page.to_utf8(text));
  }
}

value moment_cell(SQLSMALLINT ctype, const unsigned char* bytes, error_value impossible) {
  if (ctype == SQL_C_TIME) {
    const auto time = make_time(word(bytes, 0), word(bytes, 1), word(bytes, 2));
    return time ? value(*time) : value(impossible);
  }
  const auto date = make_date(word(bytes, 0), word(bytes, 1), word(bytes, 2));
  if (!date || ctype == SQL_C_DATE) return date ? value(*date) : value(impossible);
  const auto time = make_time(word(bytes, 3), word(bytes, 4), word(bytes, 5));
  return time ? value(*date + *time) : value(impossible);
}

namespace {

bool within(int number, int least, int most) { return number >= least && number <= most; }

char* write_two_digits(int number, char* to) {
  *to++ = static_cast<char>('0' + number / 10);
  *to++ = static_cast<char>('0' + number % 10);
  return to;
}

char* write_date(const unsigned char* bytes, char* to) {
  to = write_two_digits(word(bytes, 0) / 100, to);
  to = write_two_digits(word(bytes, 0) % 100, to);
  for (const std::size_t field : {1U, 2U}) {
    *to++ = '-';
    to = write_two_digits(word(bytes, field), to);
  }
  return to;
}

char* write_time(const unsigned char* bytes, std::size_t first_word, char* to) {
  for (const std::size_t field : {0U, 1U, 2U}) {
    if (field > 0) *to++ = ':';
    to = write_two_digits(word(bytes, first_word + field), to);
  }
  return to;
}

// Days and times of day whose text is just their fields: after the epoch's century, and without the end of a day or
// leap seconds, which carry.
bool is_plain_date(const unsigned char* bytes) {
  // The days that every year has.
  constexpr std::array<int, 13> days{0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const int month = word(bytes, 1);
  return within(word(bytes, 0), 1900, 9999) && within(month, 1, 12) &&
         within(word(bytes, 2), 1, days[static_cast<std::size_t>(month)]);
}
bool is_plain_time(const unsigned char* bytes, std::size_t first_word) {
  return within(word(bytes, first_word), 0, 23) && within(word(bytes, first_word + 1), 0, 59) &&
         within(word(bytes, first_word + 2), 0, 59);
}

}  // namespace

void append_moment_cell(SQLSMALLINT ctype, const unsigned char* bytes, error_value impossible, std::string& out) {
  const bool dated = ctype != SQL_C_TIME;
  const bool timed = ctype != SQL_C_DATE;
  const std::size_t time_at = dated ? 3 : 0;
  if ((dated && !is_plain_date(bytes)) || (timed && !is_plain_time(bytes, time_at))) {
    out += to_text(moment_cell(ctype, bytes, impossible));
    return;
  }
  std::array<char, 20> text{};
  char* end = text.data();
  if (dated) end = write_date(bytes, end);
  const bool midnight =
      timed && word(bytes, time_at) == 0 && word(bytes, time_at + 1) == 0 && word(bytes, time_at + 2) == 0;
  if (timed && !(dated && midnight)) {
    if (dated) *end++ = ' ';
    end = write_time(bytes, time_at, end);
  }
  out.append(text.data(), static_cast<std::size_t>(end - text.data()));
}

void put_date_cell(unsigned char* bytes, date_time moment) {
  const date_fields at = fields_of(moment);
  put_word(bytes, 0, at.year);
  put_word(bytes, 1, at.month);
  put_word(bytes, 2, at.day);
}

void put_time_cell(unsigned char* bytes, date_time moment) {
  const date_fields at = fields_of(moment);
  put_word(bytes, 0, at.hour);
  put_word(bytes, 1, at.minute);
  put_word(bytes, 2, at.second);
}

void put_timestamp_cell(unsigned char* bytes, date_time moment) {
  const date_fields at = fields_of(moment);
  put_date_cell(bytes, moment);
  put_word(bytes, 3, at.hour);
  put_word(bytes, 4, at.minute);
  put_word(bytes, 5, at.second);
  cfputd(bytes + 12, 0);
}
