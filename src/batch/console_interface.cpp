#include "batch/console_interface.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

message_answer console_interface::show_message(const message& shown) {
  fmt::print(stderr, "{}{}{}\n", shown.title, shown.title.empty() ? "" : ": ", shown.text);
  if (!shown.details.empty()) fmt::print(stderr, "  {}\n", shown.details);
  return message_answer::ok;
}

bool console_host::enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool) {
  show_message({fmt::format("The statement has {} parameter marker{}; values for markers can not be given here yet. It "
                            "was not executed.",
                            statement->Nparms(), statement->Nparms() == 1 ? "" : "s"),
                "User Error",
                message_icon::question,
                message_buttons::ok,
                {}});
  return false;
}

std::string console_password() {
  if (const char* given = std::getenv("SORVANE_PWD")) return given;
  const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (terminal < 0) return {};
  close(terminal);
  char* typed = getpass("Password: ");
  if (typed == nullptr) return {};
  std::string password(typed);
  explicit_bzero(typed, std::strlen(typed));
  return password;
}
