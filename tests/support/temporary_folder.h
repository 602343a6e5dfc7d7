#pragma once

#include <fstream>
#include <iterator>

#include "support/odbc_sandbox.h"

// A folder of the sandbox that is removed at the end of its scope.
class temporary_folder {
 public:
  temporary_folder() { std::filesystem::create_directories(path_); }
  ~temporary_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  temporary_folder(const temporary_folder&) = delete;
  temporary_folder& operator=(const temporary_folder&) = delete;

  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }
  // Writes a file and gives its path.
  [[nodiscard]] std::string with(const std::string& name, const std::string& bytes) const {
    write_file(path_ / name, bytes);
    return file(name);
  }
  [[nodiscard]] std::size_t entries() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::filesystem::path path_ = odbc_sandbox::instance().folder() / "files";
};

inline std::string bytes_of(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}
