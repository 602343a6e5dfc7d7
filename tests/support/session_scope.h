#pragma once

#include <gtest/gtest.h>

#include "scripted_driver.h"
#include "shell/login.h"
#include "shell/session.h"
#include "support/engines.h"
#include "support/odbc_sandbox.h"

inline const engine& scripted_engine() {
  static const engine it{"scripted", "SCRIPTED", "TESTER", "SECRET"};
  return it;
}

// A session logged in to an engine with the settings' defaults. At its end the session and the environment are as at
// program start; on the scripted driver no handle may be left.
class session_scope {
 public:
  explicit session_scope(const engine& which) {
    scripted::control().reset();
    settings::no_store store;
    settings::load_into_session(store, "/program/");
    EXPECT_TRUE(ODBCD::odbc_alloc_env());
    if (which.name == "postgres" && !odbc_sandbox::instance().has_postgres()) {
      ADD_FAILURE()
          << "no PostgreSQL to test with: set SORVANE_TEST_PG_HOST and SORVANE_TEST_PG_PORT, or run tools/test";
    } else {
      EXPECT_TRUE(log_in({which.dsn, which.user, which.password}, store))
          << diagnostic_text(session::g_con.connect_failure());
    }
  }
  ~session_scope() {
    session::reset();
    EXPECT_TRUE(ODBCD::odbc_free_env());
    EXPECT_EQ(open_driver_handles(), 0U);
  }
  session_scope(const session_scope&) = delete;
  session_scope& operator=(const session_scope&) = delete;

  static std::size_t open_driver_handles() {
    const scripted::driver& driver = scripted::control();
    return driver.open_environments() + driver.open_connections() + driver.open_statements();
  }
};
