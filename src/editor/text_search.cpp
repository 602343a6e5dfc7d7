#include "editor/text_search.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

// Every byte with the letters A to Z lowered.
constexpr std::array<unsigned char, 256> lowered = [] {
  std::array<unsigned char, 256> table{};
  for (std::size_t c = 0; c < table.size(); ++c)
    table[c] = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  return table;
}();

unsigned char lower(char c) { return lowered[static_cast<unsigned char>(c)]; }

}  // namespace

bool is_ascii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80U; });
}

// Compares at the end of the wanted text first, and moves on as far as the byte there allows.
std::optional<std::size_t> find_ignoring_case(std::string_view text, std::string_view wanted, std::size_t start) {
  if (wanted.empty() || start > text.size()) return std::nullopt;
  const std::size_t last = wanted.size() - 1;
  std::array<std::size_t, 256> step{};
  step.fill(wanted.size());
  for (std::size_t i = 0; i < last; ++i) step[lower(wanted[i])] = last - i;
  const auto same = [](char a, char b) { return lower(a) == lower(b); };
  for (std::size_t at = start; text.size() - at > last; at += step[lower(text[at + last])]) {
    if (std::equal(wanted.begin(), wanted.end(), text.begin() + static_cast<std::ptrdiff_t>(at), same)) return at;
    if (text.size() - at <= step[lower(text[at + last])]) break;
  }
  return std::nullopt;
}
