#include "shell/recent_files.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "shell/settings.h"

namespace {

constexpr std::string_view recent_section = "Recent";

constexpr std::array<std::string_view, recent_files::most_files> keys{"File1", "File2", "File3", "File4", "File5",
                                                                      "File6", "File7", "File8", "File9"};

}  // namespace

recent_files::recent_files(settings_store& store) : store_(store) {
  for (const std::string_view key : keys) {
    const std::string path = store_.read(recent_section, key).value_or("");
    if (!path.empty() && std::find(paths_.begin(), paths_.end(), path) == paths_.end()) paths_.push_back(path);
  }
}

bool recent_files::add(const std::string& path, std::string& why) {
  if (!paths_.empty() && paths_.front() == path) return true;
  std::erase(paths_, path);
  paths_.insert(paths_.begin(), path);
  if (paths_.size() > most_files) paths_.resize(most_files);
  return store_all(why);
}

bool recent_files::remove(const std::string& path, std::string& why) {
  return std::erase(paths_, path) == 0 || store_all(why);
}

bool recent_files::store_all(std::string& why) {
  std::vector<setting_text> texts;
  for (std::size_t i = 0; i < keys.size(); ++i) texts.push_back({keys[i], i < paths_.size() ? paths_[i] : ""});
  return store_.write(recent_section, texts, why);
}
