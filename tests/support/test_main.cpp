#include <gtest/gtest.h>

#include <clocale>

#include "support/odbc_sandbox.h"

namespace {

class sandbox_environment final : public testing::Environment {
  void SetUp() override { odbc_sandbox::instance(); }
};

}  // namespace

int main(int argc, char** argv) {
  // Every machine has this locale; results must not depend on the user's.
  std::setlocale(LC_ALL, "C.UTF-8");
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new sandbox_environment);
  return RUN_ALL_TESTS();
}
