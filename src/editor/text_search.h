#pragma once

#include <optional>
#include <string_view>

bool is_ascii(std::string_view text);

// The first place at or after byte `start` where `wanted`, which is ASCII, stands in any case of its letters. Nothing
// when there is none or `wanted` is empty.
std::optional<std::size_t> find_ignoring_case(std::string_view text, std::string_view wanted, std::size_t start);
