#include "batch/batch_login.h"

#include "odbc/odbcd.h"
#include "shell/login.h"
#include "shell/session.h"
#include "shell/settings.h"

batch_login::batch_login(const batch_options& options, const std::string& password) {
  settings::no_store store;
  settings::load_into_session(store, {});
  session::ext_fetch = options.ext_fetch;
  session::ext_fetch_rows = options.rowset;
  session::autocommit_on = options.autocommit;
  session::isolation_level = options.isolation;
  ok_ = ODBCD::odbc_alloc_env() && log_in({options.data_source, options.user, password, options.udb}, store);
}

batch_login::~batch_login() {
  session::reset();
  try {
    ODBCD::odbc_free_env();
  } catch (const layer_error&) {
    // The process is about to end; whatever the driver manager still holds goes with it.
  }
}
