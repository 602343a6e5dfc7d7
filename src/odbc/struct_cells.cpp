#include "odbc/struct_cells.h"

#include "base/text.h"

namespace {

int word(const unsigned char* bytes, std::size_t index) { return cfgetw(bytes + 2 * index); }

void put_word(unsigned char* bytes, std::size_t index, int number) {
  cfputw(bytes + 2 * index, static_cast<std::int16_t>(number));
}

// The bytes of a text cell, in the code page in force.
std::string_view cell_bytes(const unsigned char* bytes, std::size_t width, SQLLEN length) {
  if (length < 1 || width < 2) return {};
  const std::size_t room = width - 1;
  const auto reported = static_cast<std::size_t>(length);
  const std::string_view text(reinterpret_cast<const char*>(bytes), std::min(reported, room));
  return reported > room && current_code_page().is_utf8() ? without_cut_character(text) : text;
}

}  // namespace

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

void put_date_cell(unsigned char* bytes, date_time moment) {
  const date_fields at = fields_of(moment);
  put_word(bytes, 0, at.year);
  put_word(bytes, 1, at.month);
  put_word(bytes, 2, at.day);
}

void put_timestamp_cell(unsigned char* bytes, date_time moment) {
  const date_fields at = fields_of(moment);
  put_date_cell(bytes, moment);
  put_word(bytes, 3, at.hour);
  put_word(bytes, 4, at.minute);
  put_word(bytes, 5, at.second);
  cfputd(bytes + 12, 0);
}
