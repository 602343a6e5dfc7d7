#pragma once

#include <QString>

#include "shell/settings.h"

// The settings store as an INI file: one section per [section]. Another program that writes the same file meanwhile
// keeps its keys.
class ini_settings final : public settings_store {
 public:
  explicit ini_settings(QString path) : path_(std::move(path)) {}

  // The user's own file, Sorvane/Sorvane.ini below the configuration folder, or the one that the environment variable
  // SORVANE_SETTINGS names.
  static QString default_path();

  [[nodiscard]] std::optional<std::string> read(std::string_view section, std::string_view key) const override;
  bool write(std::string_view section, std::string_view key, std::string_view text, std::string& why) override;

 private:
  QString path_;
};
