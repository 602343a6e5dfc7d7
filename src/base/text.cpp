#include "base/text.h"

#include <cwctype>

namespace {

// Bytes of the character that starts with this byte; 1 for a byte that starts none.
std::size_t character_bytes(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 1;
}

bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// Whether the second byte may follow the first: not in a form longer than needed, for a surrogate, or beyond Unicode.
bool goes_together(unsigned char first, unsigned char second) {
  if (first == 0xE0) return second >= 0xA0;
  if (first == 0xED) return second <= 0x9F;
  if (first == 0xF0) return second >= 0x90;
  return first != 0xF4 || second <= 0x8F;
}

// Bytes of the whole character at `at`, 1 when it is broken.
std::size_t step(std::string_view text, std::size_t at) {
  const auto first = static_cast<unsigned char>(text[at]);
  const std::size_t bytes = character_bytes(first);
  if (at + bytes > text.size()) return 1;
  for (std::size_t i = 1; i < bytes; ++i) {
    if (!is_continuation(text[at + i])) return 1;
  }
  return bytes == 1 || goes_together(first, static_cast<unsigned char>(text[at + 1])) ? bytes : 1;
}

char32_t decode(std::string_view character) {
  if (character.size() == 1) return static_cast<unsigned char>(character[0]);
  char32_t code = static_cast<unsigned char>(character[0]) & (0xFFU >> (character.size() + 1));
  for (std::size_t i = 1; i < character.size(); ++i)
    code = code << 6U | (static_cast<unsigned char>(character[i]) & 0x3FU);
  return code;
}

void encode(char32_t code, std::string& out) {
  const auto tail = [&](unsigned shift) { out += static_cast<char>(0x80U | (code >> shift & 0x3FU)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0U | code >> 6U);
    tail(0);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0U | code >> 12U);
    tail(6);
    tail(0);
  } else {
    out += static_cast<char>(0xF0U | code >> 18U);
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

std::string_view trim_blanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string upper_case(std::string_view text) {
  std::string upper;
  upper.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t bytes = step(text, at);
    const std::string_view character = text.substr(at, bytes);
    if (bytes == 1) {
      const char c = character[0];
      upper += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    } else {
      encode(static_cast<char32_t>(std::towupper(static_cast<std::wint_t>(decode(character)))), upper);
    }
    at += bytes;
  }
  return upper;
}

std::size_t count_characters(std::string_view utf8) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < utf8.size(); at += step(utf8, at)) ++count;
  return count;
}

bool is_valid_utf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x80) {
      ++at;
      continue;
    }
    const std::size_t bytes = step(text, at);
    if (bytes == 1) return false;
    const auto second = static_cast<unsigned char>(text[at + 1]);
    // Overlong three- and four-byte forms, surrogates, and codes beyond the last plane.
    if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F)) return false;
    if ((first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F)) return false;
    at += bytes;
  }
  return true;
}

std::string_view first_characters(std::string_view utf8, std::size_t characters) {
  std::size_t at = 0;
  while (at < utf8.size() && characters-- > 0) at += step(utf8, at);
  return utf8.substr(0, at);
}

std::string_view without_cut_character(std::string_view utf8) {
  std::size_t start = utf8.size();
  std::size_t back = 0;
  while (start > 0 && back < 4) {
    --start;
    ++back;
    if (!is_continuation(utf8[start])) {
      const bool cut = character_bytes(static_cast<unsigned char>(utf8[start])) > back;
      return cut ? utf8.substr(0, start) : utf8;
    }
  }
  return utf8;
}

bool begins_with(std::string_view text, std::string_view upper_prefix) {
  if (text.size() < upper_prefix.size()) return false;
  for (std::size_t i = 0; i < upper_prefix.size(); ++i) {
    const char c = text[i];
    if ((c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) != upper_prefix[i]) return false;
  }
  return true;
}
