#pragma once

#include <QString>

#include "shell/settings.h"

// The settings store as an INI file: one section per [section]. A save holds the lock file beside it, reads the file
// anew, changes its own keys and replaces the file whole, so that programs that save at once lose nothing of each
// other's, and a save that fails leaves the file as it was.
class ini_settings final : public settings_store {
 public:
  explicit ini_settings(QString path) : path_(std::move(path)) {}

  // The user's own file, Sorvane/Sorvane.ini below the configuration folder, or the one that the environment variable
  // SORVANE_SETTINGS names.
  static QString default_path();

  [[nodiscard]] std::optional<std::string> read(std::string_view section, std::string_view key) const override;
  bool write(std::string_view section, const std::vector<setting_text>& texts, std::string& why) override;
  [[nodiscard]] std::string trouble() const override;

 private:
  QString path_;
};
