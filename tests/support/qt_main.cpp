// main() for tests with windows: one application object, without a screen.
#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>
#include <clocale>

#include "support/odbc_sandbox.h"

namespace {

class sandbox_environment final : public testing::Environment {
  void SetUp() override {
    const std::string settings = (odbc_sandbox::instance().folder() / "Sorvane.ini").string();
    qputenv("SORVANE_SETTINGS", settings.c_str());
  }
};

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QStandardPaths::setTestModeEnabled(true);
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  // Every machine has this locale; results must not depend on the user's.
  std::setlocale(LC_ALL, "C.UTF-8");
  testing::AddGlobalTestEnvironment(new sandbox_environment);
  return RUN_ALL_TESTS();
}
