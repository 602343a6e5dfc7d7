#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <vector>

// The texts of a grid's cells, UTF-8 as they were given, in compact blocks: a block holds a few hundred rows, one
// string with all their texts (each after its length), and the place of each cell in it. A cell takes five bytes beside
// its text. Rows can be put into another order without touching the texts. Rows and columns count from 0 and are not
// checked.
class cell_store {
 public:
  [[nodiscard]] std::size_t rows() const { return rows_; }
  [[nodiscard]] std::size_t columns() const { return columns_; }

  // The bytes of the longest text that column 0 has, or has had since its rows or columns last became fewer.
  [[nodiscard]] std::size_t longest_first() const { return longest_first_; }

  // Valid until the store is changed.
  [[nodiscard]] std::string_view at(std::size_t row, std::size_t column) const;
  void set(std::size_t row, std::size_t column, std::string_view text);

  // Adds empty rows at the end, or drops the last ones.
  void resize_rows(std::size_t rows);
  // Adds empty columns at the right, or drops the last ones.
  void resize_columns(std::size_t columns);

  // Adds the texts of one row at the end, cell by cell from column 0 on: the way to fill a grid fast. Call append_cell
  // for each of the row's columns after append_row, before anything else is changed; cells not given are empty.
  void append_row();
  void append_cell(std::string_view text);
  // The same in place: the cell's text is what is put at the end of the string until close_cell.
  std::string& open_cell() {
    std::string& texts = blocks_.back().texts;
    texts.push_back('\0');  // the length takes one byte until the text is there and needs more
    opened_at_ = texts.size();
    return texts;
  }
  void close_cell() {
    block& in = blocks_.back();
    const std::size_t length = in.texts.size() - opened_at_;
    if (length == 0 || length >= longest_short || next_cell_ >= in.places.size()) {
      close_odd_cell(length);
      return;
    }
    if (next_cell_ == first_cell_) longest_first_ = std::max(longest_first_, length);
    in.texts[opened_at_ - 1] = static_cast<char>(length);
    in.places[next_cell_++] = place_in(in);
  }

  // Makes room for an empty row in front of a row, or takes a row out.
  void insert_row(std::size_t before);
  void erase_row(std::size_t row);

  // Row first + i becomes what row first + order[i] was.
  void reorder(std::size_t first, const std::vector<std::uint32_t>& order);

 private:
  static constexpr std::size_t longest_short = 0x80;  // from here on a length takes more than one byte

  struct block {
    std::string texts;
    std::vector<std::uint32_t> places;
    std::size_t dropped = 0;  // bytes of texts that no cell uses any more
  };
  struct place {
    std::size_t block;
    std::size_t index;
  };

  // A row's number in the order in which rows were added.
  [[nodiscard]] std::size_t stored(std::size_t row) const { return order_.empty() ? row : order_[row]; }
  [[nodiscard]] place place_of(std::size_t row, std::size_t column) const;
  static void put(block& into, std::size_t index, std::string_view text);
  static void drop_unused(block& of);
  // Where the open cell's text begins; throws std::bad_alloc when the block has become too large for its places.
  [[nodiscard]] std::uint32_t place_in(const block& in) const {
    if (in.texts.size() > std::numeric_limits<std::uint32_t>::max() - sizeof(std::size_t)) throw std::bad_alloc();
    return static_cast<std::uint32_t>(opened_at_ - 1);
  }
  void close_odd_cell(std::size_t length);
  void add_stored_rows(std::size_t count);
  void write_order();
  // Copies the rows and columns that stay into fresh blocks.
  void rebuild(std::size_t rows, std::size_t columns);

  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  std::size_t stored_rows_ = 0;
  std::size_t longest_first_ = 0;
  std::size_t first_cell_ = 0;  // of the last row
  std::size_t next_cell_ = 0;   // for append_cell
  std::size_t opened_at_ = 0;   // where the text of the open cell begins
  std::vector<block> blocks_;
  std::vector<std::uint32_t> order_;  // empty while rows stand as they were added
};
