// sorvane: the desktop program.
#include <QApplication>
#include <clocale>

#include "platform/ini_settings.h"
#include "platform/program_resources.h"
#include "platform/qt_user_interface.h"
#include "shell/command_line.h"
#include "shell/frmlogin.h"
#include "shell/session.h"

int main(int argc, char** argv) {
  QApplication program(argc, argv);
  QApplication::setApplicationName("Sorvane");
  QApplication::setApplicationVersion(SORVANE_VERSION);
  use_program_resources();
  QApplication::setQuitOnLastWindowClosed(false);  // the frame and the login end the program
  std::setlocale(LC_NUMERIC, "C");                 // drivers read and write numbers through the C library
  std::vector<std::string> arguments;
  const QStringList given = QApplication::arguments();
  for (qsizetype i = 1; i < given.size(); ++i) arguments.push_back(given[i].toStdString());

  qt_user_interface interface;
  const scoped_user_interface installed(interface);
  ini_settings store(ini_settings::default_path());
  auto* login = new frmLogin(store, command_line_text(arguments));
  login->show();
  const int status = QApplication::exec();
  session::reset();
  return status;
}
