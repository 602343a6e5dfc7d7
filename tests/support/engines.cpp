#include "support/engines.h"

#include <gtest/gtest.h>

#include <ostream>

#include "support/odbc_sandbox.h"

const engine& sqlite() {
  static const engine it{"sqlite", "SQLITE", "", ""};
  return it;
}

const engine& postgres() {
  static const engine it{"postgres", "POSTGRES", "SORVANE", "SECRET"};
  return it;
}

void PrintTo(const engine& shown, std::ostream* out) { *out << shown.name; }

void connect_to(odbccon& con, const engine& which) {
  if (which.dsn == "POSTGRES" && !odbc_sandbox::instance().has_postgres()) {
    FAIL() << "no PostgreSQL to test with: set SORVANE_TEST_PG_HOST and SORVANE_TEST_PG_PORT, or run tools/test";
  }
  ASSERT_TRUE(con.Connect(which.dsn, which.user, which.password)) << diagnostic_text(con.connect_failure());
}
