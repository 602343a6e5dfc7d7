#pragma once

#include <string_view>

// How the panels show times in seconds, and rates in rows per second.
inline constexpr std::string_view seconds_pattern = "##.#######";
inline constexpr std::string_view rate_pattern = "##,###.###";
