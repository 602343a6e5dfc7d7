#pragma once

#include <map>

#include "shell/settings.h"

// A settings store that lives as long as a test; it refuses to write while `refuses` says why.
class memory_store final : public settings_store {
 public:
  [[nodiscard]] std::optional<std::string> read(std::string_view section, std::string_view key) const override {
    const auto found = texts.find(std::string(key));
    return section == settings::section && found != texts.end() ? std::optional(found->second) : std::nullopt;
  }
  bool write(std::string_view, std::string_view key, std::string_view text, std::string& why) override {
    why = refuses;
    if (refuses.empty()) texts[std::string(key)] = text;
    return refuses.empty();
  }

  std::map<std::string, std::string> texts;
  std::string refuses;
};
