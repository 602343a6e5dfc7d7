#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "base/code_page.h"

// Bound ODBC buffers are plain byte arrays; these reach into them at any offset, aligned or not. Words are of the
// machine's byte order, as ODBC's C structures lay them. Nothing here allocates or frees a buffer, and nothing checks
// an address.
using byte_buffer = std::vector<unsigned char>;

// A buffer of zero bytes whose memory is used up only where it is touched: of an array of wide cells, most never are.
class zeroed_buffer {
 public:
  explicit zeroed_buffer(std::size_t size) { assign(size); }
  // Replaces the bytes; std::bad_alloc leaves them as they were.
  void assign(std::size_t size) {
    void* fresh = std::calloc(std::max<std::size_t>(size, 1), 1);
    if (fresh == nullptr) throw std::bad_alloc();
    bytes_.reset(static_cast<unsigned char*>(fresh));
    size_ = size;
  }
  [[nodiscard]] unsigned char* data() { return bytes_.get(); }
  [[nodiscard]] const unsigned char* data() const { return bytes_.get(); }
  [[nodiscard]] std::size_t size() const { return size_; }

 private:
  struct give_back {
    void operator()(unsigned char* bytes) const { std::free(bytes); }
  };
  std::unique_ptr<unsigned char, give_back> bytes_;
  std::size_t size_ = 0;
};

template <typename T>
T get_raw(const unsigned char* address) {
  T read;
  std::memcpy(&read, address, sizeof read);
  return read;
}
template <typename T>
void put_raw(unsigned char* address, T written) {
  std::memcpy(address, &written, sizeof written);
}

inline std::int16_t cfgetw(const unsigned char* address) { return get_raw<std::int16_t>(address); }
inline std::int32_t cfgetd(const unsigned char* address) { return get_raw<std::int32_t>(address); }
inline double cfgetf(const unsigned char* address) { return get_raw<double>(address); }
inline void cfputw(unsigned char* address, std::int16_t word) { put_raw(address, word); }
inline void cfputd(unsigned char* address, std::int32_t number) { put_raw(address, number); }
inline void cfputf(unsigned char* address, double number) { put_raw(address, number); }
inline void cfmove(const void* source, unsigned char* destination, std::size_t count) {
  if (count > 0) std::memcpy(destination, source, count);
}
inline void cfmsetb(unsigned char* address, unsigned char byte, std::size_t count) {
  std::fill_n(address, count, byte);
}

// Offset of the first `byte` within the first `count` bytes; `count` when there is none.
inline std::size_t cflocc(unsigned char byte, const unsigned char* address, std::size_t count) {
  return static_cast<std::size_t>(std::find(address, address + count, byte) - address);
}

// The address that ODBC is handed for an array.
inline unsigned char* cfrptr(byte_buffer& bytes) { return bytes.data(); }

// `length` bytes from `offset` as text; "" when length is below 1. A length beyond the array is cut at its end.
inline std::string bytes_to_string(const byte_buffer& bytes, std::size_t offset, std::ptrdiff_t length) {
  if (length < 1 || offset >= bytes.size()) return {};
  const std::size_t taken = std::min(static_cast<std::size_t>(length), bytes.size() - offset);
  return current_code_page().to_utf8({reinterpret_cast<const char*>(bytes.data() + offset), taken});
}
