#include "platform/ini_settings.h"

#include <QSettings>
#include <QStandardPaths>

namespace {

QString full_key(std::string_view section, std::string_view key) {
  return QString::fromUtf8(section.data(), static_cast<qsizetype>(section.size())) + '/' +
         QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

}  // namespace

QString ini_settings::default_path() {
  QString chosen = qEnvironmentVariable("SORVANE_SETTINGS");
  if (!chosen.isEmpty()) return chosen;
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/Sorvane/Sorvane.ini";
}

std::optional<std::string> ini_settings::read(std::string_view section, std::string_view key) const {
  const QSettings file(path_, QSettings::IniFormat);
  const QVariant stored = file.value(full_key(section, key));
  if (!stored.isValid()) return std::nullopt;
  // A value with a comma that nobody quoted reads as a list.
  return stored.toStringList().join(", ").toStdString();
}

bool ini_settings::write(std::string_view section, std::string_view key, std::string_view text, std::string& why) {
  QSettings file(path_, QSettings::IniFormat);
  file.setValue(full_key(section, key), QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
  file.sync();
  if (file.status() == QSettings::NoError) return true;
  why = (file.status() == QSettings::FormatError ? "The settings file is damaged: "
                                                 : "The settings file can not be written: ") +
        path_.toStdString();
  return false;
}
