#include "editor/text_search.h"

#include <algorithm>
#include <array>

namespace {

// How many bytes at the front of `text` read as the wanted text; 0 when they do not.
std::size_t length_of_match(std::string_view text, const wanted_text& wanted) {
  std::size_t length = 0;
  for (const auto& ways : wanted) {
    const auto way = std::find_if(ways.begin(), ways.end(),
                                  [&](const std::string& each) { return text.substr(length).starts_with(each); });
    if (way == ways.end()) return 0;
    length += way->size();
  }
  return length;
}

}  // namespace

std::optional<found_text> find_text(std::string_view text, const wanted_text& wanted, std::size_t start) {
  if (wanted.empty()) return std::nullopt;
  std::array<bool, 256> begins{};
  for (const std::string& way : wanted.front()) begins[static_cast<unsigned char>(way.front())] = true;
  for (std::size_t at = start; at < text.size(); ++at) {
    if (!begins[static_cast<unsigned char>(text[at])]) continue;
    if (const std::size_t length = length_of_match(text.substr(at), wanted)) return found_text{at, length};
  }
  return std::nullopt;
}
