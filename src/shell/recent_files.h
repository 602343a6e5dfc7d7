#pragma once

#include <string>
#include <vector>

class settings_store;

// The files opened or saved last, latest first, kept in the settings store.
class recent_files {
 public:
  static constexpr std::size_t most_files = 9;

  explicit recent_files(settings_store& store);

  [[nodiscard]] const std::vector<std::string>& paths() const { return paths_; }
  // Puts a file first. False with the reason when the list cannot be stored; it holds the file all the same.
  bool add(const std::string& path, std::string& why);
  bool remove(const std::string& path, std::string& why);

 private:
  bool store_all(std::string& why);

  settings_store& store_;
  std::vector<std::string> paths_;
};
