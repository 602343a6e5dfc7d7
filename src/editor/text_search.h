#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A text to look for: for each of its characters the ways in which it may be written, upper and lower case, as bytes
// of the text to be searched.
using wanted_text = std::vector<std::vector<std::string>>;

struct found_text {
  std::size_t start;
  std::size_t length;
};

// The first place at or after byte `start` where every character stands in one of its ways. Nothing when there is none,
// when nothing is wanted, or when a character can not be written at all.
std::optional<found_text> find_text(std::string_view text, const wanted_text& wanted, std::size_t start);
