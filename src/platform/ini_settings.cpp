#include "platform/ini_settings.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>
#include <QThread>

#include "base/files.h"
#include "base/ini_text.h"
#include "platform/saved_file.h"

namespace {

// How long a save waits for another program's to end, and how often it looks.
constexpr int patience_in_ms = 2000;
constexpr unsigned long pause_in_ms = 5;

// QLockFile's own waiting doubles its pauses up to seconds; a save takes milliseconds.
bool locked(QLockFile& lock) {
  const QDeadlineTimer end(patience_in_ms);
  while (!lock.tryLock(0)) {
    if (lock.error() != QLockFile::LockFailedError || end.hasExpired()) return false;
    QThread::msleep(pause_in_ms);
  }
  return true;
}

bool is_missing(const QString& path) { return !QFileInfo::exists(path) && !QFileInfo(path).isSymLink(); }

}  // namespace

QString ini_settings::default_path() {
  QString chosen = qEnvironmentVariable("SORVANE_SETTINGS");
  if (!chosen.isEmpty()) return chosen;
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/Sorvane/Sorvane.ini";
}

std::optional<std::string> ini_settings::read(std::string_view section, std::string_view key) const {
  return ini_text(read_whole_file(path_.toStdString()).bytes).value_of(section, key);
}

std::string ini_settings::trouble() const {
  if (is_missing(path_)) return {};
  const file_content file = read_whole_file(path_.toStdString());
  if (file.ok()) return {};
  return "The settings file can not be read: " + path_.toStdString() + " (" + file.error + ")";
}

bool ini_settings::write(std::string_view section, const std::vector<setting_text>& texts, std::string& why) {
  why = "The settings file can not be written: " + path_.toStdString();
  QDir().mkpath(QFileInfo(path_).path());
  QLockFile lock(path_ + ".lock");
  if (!locked(lock)) {
    if (lock.error() == QLockFile::LockFailedError) why += " (another program holds it)";
    return false;
  }
  // A file that cannot be read would lose what it holds.
  if (const std::string unread = trouble(); !unread.empty()) {
    why = unread;
    return false;
  }
  ini_text file(read_whole_file(path_.toStdString()).bytes);
  for (const setting_text& each : texts) file.put(section, each.key, each.text);
  std::string reason;
  if (write_whole_file(path_.toStdString(), file.bytes(), reason)) return true;
  why += " (" + reason + ")";
  return false;
}
