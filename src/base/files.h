#pragma once

#include <cstddef>
#include <string>

// True if the path names a regular file that can be opened for reading (it is opened and closed again). Folders,
// devices and pipes are no documents.
bool file_exists(const std::string& path);

// No larger file is read: the text box and its undo would need several times the memory.
inline constexpr std::size_t most_file_bytes = 1'000'000'000;

// A whole file's bytes. On failure `error` says why and `bytes` is empty.
struct file_content {
  std::string bytes;
  std::string error;
  [[nodiscard]] bool ok() const { return error.empty(); }
};
file_content read_whole_file(const std::string& path);
