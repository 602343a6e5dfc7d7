#pragma once

#include <cstdint>
#include <vector>

#include "widgets/cell_store.h"

enum class sort_direction { ascending, descending };

// The order of `count` rows from `first` on, by the columns first_key..last_key, the leftmost first: entry i says which
// row, counted from `first`, comes i-th. Two cells are compared as numbers when both read as one, else as texts byte by
// byte; numbers stand before texts (behind them when descending). Rows that compare equal keep their order.
std::vector<std::uint32_t> generic_order(const cell_store& cells, std::size_t first, std::size_t count,
                                         std::size_t first_key, std::size_t last_key, sort_direction direction);
