#include "shell/about.h"

#include <QCoreApplication>
#include <QMessageBox>

#include "odbc/odbccon.h"

namespace {

constexpr std::uint16_t driver_manager_version = 171;  // SQL_DM_VER

QString info(odbccon& connection, std::uint16_t type) {
  try {
    QString text = QString::fromStdString(connection.GetInfoChar_XX(type)).trimmed();
    if (!text.isEmpty()) return text;
  } catch (const layer_error&) {
    // Not connected, or a driver that does not say.
  }
  return "not known";
}

}  // namespace

QString about_text(odbccon& connection) {
  return QString(
             "Sorvane %1\n\nODBC driver manager: %2\nODBC driver: %3, version %4\nDatabase: %5, version %6\n\n"
             "Free software under the GNU General Public License, version 3 or later.")
      .arg(QString(SORVANE_VERSION), info(connection, driver_manager_version), info(connection, SQL_DRIVER_NAME),
           info(connection, SQL_DRIVER_VER), info(connection, SQL_DBMS_NAME), info(connection, SQL_DBMS_VER));
}

void show_about_box(QWidget* owner, odbccon& connection) {
  QMessageBox box(QMessageBox::NoIcon, "About Sorvane", about_text(connection), QMessageBox::Ok, owner);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}
