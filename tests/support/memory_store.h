#pragma once

#include <map>

#include "shell/settings.h"

// A settings store that lives as long as a test; it refuses to write while `refuses` says why.
class memory_store final : public settings_store {
 public:
  [[nodiscard]] std::optional<std::string> read(std::string_view section, std::string_view key) const override {
    const auto found = texts.find(name_of(section, key));
    return found != texts.end() ? std::optional(found->second) : std::nullopt;
  }
  bool write(std::string_view section, const std::vector<setting_text>& given, std::string& why) override {
    why = refuses;
    if (!refuses.empty()) return false;
    for (const setting_text& each : given) {
      texts[name_of(section, each.key)] = each.text;
      written += (written.empty() ? "" : " ") + name_of(section, each.key);
    }
    return true;
  }
  [[nodiscard]] std::string trouble() const override { return unreadable; }

  std::map<std::string, std::string> texts;  // by key; outside the section "Startup" by section/key
  std::string written;                       // the keys in the order of their writing, joined by blanks
  std::string unreadable;
  std::string refuses;

 private:
  static std::string name_of(std::string_view section, std::string_view key) {
    return section == settings::section ? std::string(key) : std::string(section) + '/' + std::string(key);
  }
};
