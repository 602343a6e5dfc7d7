#include "shell/login.h"

#include <fmt/format.h>

#include "base/text.h"
#include "base/user_interface.h"
#include "shell/session.h"

namespace {

// What goes wrong between a successful connect and a usable session is the driver's word, shown as it stands.
bool configure_connection() {
  using namespace session;
  try {
    qualifier_sep = g_con.GetInfoChar_XX(SQL_QUALIFIER_NAME_SEPARATOR);
    g_con.SetOption_XX(SQL_AUTOCOMMIT, autocommit_on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF);
    if (autocommit_on) {
      show_message(
          {"Warning... Autocommit is ON.  Any statements executed will be commited immedeatly upon completion of "
           "execution.  "
           "To turn autocommit off, go to the Environment -> Options menu.",
           "Informational Message",
           message_icon::question,
           message_buttons::ok,
           {}});
    }
    g_con.SIL_XX(isolation_level);
    g_stmt.Make_XX(g_con);
    return true;
  } catch (const layer_error&) {
    g_con.Errd();
    g_con.Disconnect();
    return false;
  }
}

void remember(settings_store& store, const std::string& data_source, const std::string& user) {
  std::string why;
  if (store.write(settings::section, {{settings::key::data_source, data_source}, {settings::key::user, user}}, why)) {
    return;
  }
  show_message({"The data source and user could not be saved for the next login.",
                {},
                message_icon::none,
                message_buttons::ok,
                why});
}

}  // namespace

std::string login_name(std::string_view typed) { return upper_case(trim_blanks(typed)); }

bool log_in(const login_request& typed, settings_store& store) {
  const std::string data_source = login_name(typed.data_source);
  const std::string user = login_name(typed.user);
  if (!session::g_con.Connect(data_source, user, login_name(typed.password))) {
    const diagnostic_record& said = session::g_con.connect_failure();
    show_message({"Invalid Data Scource, User ID  or Password!", "Error", message_icon::question, message_buttons::ok,
                  sql_ok(said.rc) ? diagnostic_text(said) : std::string()});
    return false;
  }
  if (!configure_connection()) return false;
  session::is_udb = typed.udb;
  remember(store, data_source, user);
  return true;
}
