#include "platform/program_resources.h"

#include <QGuiApplication>
#include <QIcon>
#include <QMetaObject>

void use_program_resources() {
  Q_INIT_RESOURCE(resources);  // a static library's resources are linked only when asked for
  QMetaObject::invokeMethod(
      qGuiApp, [] { QGuiApplication::setWindowIcon(QIcon(":/icons/sorvane.png")); }, Qt::QueuedConnection);
}
