#include "widgets/cell_store.h"

#include <numeric>

namespace {

constexpr std::size_t rows_per_block = 256;
constexpr std::size_t worth_tidying = 4096;

// A text's length stands before it in seven-bit groups, lowest first; all but the last group have the high bit.
void write_length(std::size_t length, std::string& out) {
  for (; length >= 0x80; length >>= 7U) out += static_cast<char>(0x80U | (length & 0x7FU));
  out += static_cast<char>(length);
}

std::string_view read_text(const std::string& texts, std::size_t at) {
  std::size_t length = 0;
  unsigned shift = 0;
  for (;; shift += 7) {
    const auto group = static_cast<unsigned char>(texts[at++]);
    length |= static_cast<std::size_t>(group & 0x7FU) << shift;
    if (group < 0x80) break;
  }
  return std::string_view(texts).substr(at, length);
}

}  // namespace

cell_store::place cell_store::place_of(std::size_t row, std::size_t column) const {
  const std::size_t at = stored(row);
  return {at / rows_per_block, at % rows_per_block * columns_ + column};
}

std::string_view cell_store::at(std::size_t row, std::size_t column) const {
  const place where = place_of(row, column);
  const block& in = blocks_[where.block];
  return read_text(in.texts, in.places[where.index]);
}

void cell_store::put(block& into, std::size_t index, std::string_view text) {
  if (text.empty()) {
    into.places[index] = 0;
    return;
  }
  if (into.texts.size() + text.size() + sizeof(std::size_t) > std::numeric_limits<std::uint32_t>::max()) {
    throw std::bad_alloc();
  }
  const std::size_t at = into.texts.size();
  write_length(text.size(), into.texts);
  into.texts += text;
  into.places[index] = static_cast<std::uint32_t>(at);
}

void cell_store::set(std::size_t row, std::size_t column, std::string_view text) {
  const place where = place_of(row, column);
  block& in = blocks_[where.block];
  in.dropped += read_text(in.texts, in.places[where.index]).size();
  if (column == 0) longest_first_ = std::max(longest_first_, text.size());
  // The text given may be one of this very block.
  put(in, where.index, std::string(text));
  if (in.dropped > worth_tidying && in.dropped > in.texts.size() / 2) drop_unused(in);
}

void cell_store::drop_unused(block& of) {
  block tidy;
  tidy.texts.assign(1, '\0');
  tidy.places.resize(of.places.size());
  for (std::size_t i = 0; i < of.places.size(); ++i) put(tidy, i, read_text(of.texts, of.places[i]));
  of = std::move(tidy);
}

void cell_store::add_stored_rows(std::size_t count) {
  while (count > 0) {
    const std::size_t used = stored_rows_ % rows_per_block;
    if (used == 0) {
      // A block that is full keeps no room for more; the next is likely to become as large.
      std::size_t expected = 0;
      if (!blocks_.empty()) {
        expected = blocks_.back().texts.size();
        blocks_.back().texts.shrink_to_fit();
      }
      blocks_.emplace_back();
      blocks_.back().texts.reserve(expected + expected / 8);
      blocks_.back().texts.assign(1, '\0');  // the empty text, where new cells point
    }
    const std::size_t taken = std::min(count, rows_per_block - used);
    std::vector<std::uint32_t>& places = blocks_.back().places;
    if (used + taken == rows_per_block || blocks_.size() > 1) places.reserve(rows_per_block * columns_);
    places.resize((used + taken) * columns_, 0);
    if (!order_.empty()) {
      for (std::size_t i = 0; i < taken; ++i) order_.push_back(static_cast<std::uint32_t>(stored_rows_ + i));
    }
    stored_rows_ += taken;
    rows_ += taken;
    count -= taken;
  }
}

void cell_store::append_row() {
  // Within a block, and while rows stand as they were added, only places are added.
  if (stored_rows_ % rows_per_block != 0 && order_.empty()) {
    std::vector<std::uint32_t>& places = blocks_.back().places;
    first_cell_ = next_cell_ = places.size();
    places.resize(places.size() + columns_, 0);
    ++stored_rows_;
    ++rows_;
    return;
  }
  add_stored_rows(1);
  first_cell_ = next_cell_ = (stored_rows_ - 1) % rows_per_block * columns_;
}

void cell_store::append_cell(std::string_view text) {
  block& in = blocks_.back();
  if (next_cell_ == first_cell_) longest_first_ = std::max(longest_first_, text.size());
  if (next_cell_ < in.places.size()) put(in, next_cell_++, text);
}

// A cell without a text, one too many, or one whose length needs more than a byte.
void cell_store::close_odd_cell(std::size_t length) {
  block& in = blocks_.back();
  if (length == 0 || next_cell_ >= in.places.size()) {
    in.texts.resize(opened_at_ - 1);
    ++next_cell_;
    return;
  }
  if (next_cell_ == first_cell_) longest_first_ = std::max(longest_first_, length);
  in.places[next_cell_++] = place_in(in);
  std::string prefix;
  write_length(length, prefix);
  in.texts.replace(opened_at_ - 1, 1, prefix);
}

void cell_store::resize_rows(std::size_t rows) {
  if (rows < rows_) {
    rebuild(rows, columns_);
  } else {
    add_stored_rows(rows - rows_);
  }
}

void cell_store::resize_columns(std::size_t columns) {
  if (columns != columns_) rebuild(rows_, columns);
}

void cell_store::rebuild(std::size_t rows, std::size_t columns) {
  cell_store fresh;
  fresh.columns_ = columns;
  for (std::size_t row = 0; row < rows; ++row) {
    fresh.append_row();
    for (std::size_t column = 0; column < std::min(columns, columns_); ++column) fresh.append_cell(at(row, column));
  }
  *this = std::move(fresh);
}

void cell_store::write_order() {
  if (!order_.empty()) return;
  order_.resize(rows_);
  std::iota(order_.begin(), order_.end(), 0U);
}

void cell_store::insert_row(std::size_t before) {
  add_stored_rows(1);
  if (before + 1 == rows_) return;
  write_order();
  std::rotate(order_.begin() + static_cast<std::ptrdiff_t>(before), order_.end() - 1, order_.end());
}

void cell_store::erase_row(std::size_t row) {
  if (rows_ == 1) {
    rebuild(0, columns_);
    return;
  }
  for (std::size_t column = 0; column < columns_; ++column) set(row, column, {});
  write_order();
  order_.erase(order_.begin() + static_cast<std::ptrdiff_t>(row));
  --rows_;
}

void cell_store::reorder(std::size_t first, const std::vector<std::uint32_t>& order) {
  write_order();
  std::vector<std::uint32_t> moved(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) moved[i] = order_[first + order[i]];
  std::copy(moved.begin(), moved.end(), order_.begin() + static_cast<std::ptrdiff_t>(first));
}
