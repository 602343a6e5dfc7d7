#include "platform/user_data.h"

#include <QFileInfo>
#include <QStandardPaths>

std::filesystem::path user_data_folder() {
  const QString settings = qEnvironmentVariable("SORVANE_SETTINGS");
  const QString folder = settings.isEmpty()
                             ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Sorvane"
                             : QFileInfo(settings).absolutePath();
  return folder.toStdString();
}
