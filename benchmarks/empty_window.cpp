// The rival of the start-up measurement: an empty Qt Widgets window.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QWidget window;
  window.show();
  return QApplication::exec();
}
