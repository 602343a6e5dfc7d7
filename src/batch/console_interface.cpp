#include "batch/console_interface.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "base/clock.h"
#include "params/parameter_values.h"

message_answer console_interface::show_message(const message& shown) {
  fmt::print(stderr, "{}{}{}\n", shown.title, shown.title.empty() ? "" : ": ", shown.text);
  if (!shown.details.empty()) fmt::print(stderr, "  {}\n", shown.details);
  return message_answer::ok;
}

bool console_host::enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool is_call) {
  const auto wanted = static_cast<std::size_t>(statement->Nparms());
  if (unused() < wanted) {
    show_user_error(
        fmt::format("The statement has {} parameter marker{}, and {} of the values given with --param {} "
                    "left. It was not executed.",
                    wanted, wanted == 1 ? "" : "s", unused(), unused() == 1 ? "is" : "are"));
    next_ = parameters_.size();
    return false;
  }
  const std::size_t first = std::exchange(next_, next_ + wanted);
  auto rows = parameter_rows(*statement, current_clock().now());
  if (!rows) {
    show_user_error(std::string(unhandled_type));
    return false;
  }
  for (std::size_t i = 0; i < wanted; ++i) (*rows)[i].text = parameters_[first + i];
  const checked_values checked = values_of(*rows);
  if (!checked.ok()) {
    show_user_error(checked.message);
    return false;
  }
  return bind_values(*statement, checked.values, is_call);
}

void console_host::show_returned_parameters(const std::shared_ptr<odbcstmt>& statement) {
  returned_.emplace();
  for (int marker = 1; marker <= statement->Nparms(); ++marker) returned_->push_back(statement->GetParm(marker));
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
