#include "base/user_interface.h"

#include <fmt/format.h>

#include <cstdio>

namespace {

class bare_user_interface final : public user_interface {
 public:
  message_answer show_message(const message& shown) override {
    fmt::print(stderr, "{}{}{}\n", shown.title, shown.title.empty() ? "" : ": ", shown.text);
    return message_answer::ok;
  }
  [[nodiscard]] pointer_shape pointer() const override { return pointer_shape::standard; }
  void set_pointer(pointer_shape) override {}
};

user_interface*& installed() {
  static bare_user_interface bare;
  static user_interface* current = &bare;
  return current;
}

}  // namespace

bool user_interface::show_message_with_check(const message& shown, const std::string&) {
  show_message(shown);
  return false;
}

user_interface& current_user_interface() { return *installed(); }

scoped_user_interface::scoped_user_interface(user_interface& chosen) : previous_(installed()) { installed() = &chosen; }
scoped_user_interface::~scoped_user_interface() { installed() = previous_; }

message_answer show_message(const message& shown) { return current_user_interface().show_message(shown); }

bool show_message_with_check(const message& shown, const std::string& check_box) {
  return current_user_interface().show_message_with_check(shown, check_box);
}

void show_user_error(const std::string& text, const std::string& title) {
  show_message({text, title, message_icon::question, message_buttons::ok, {}});
}

busy_state& busy() {
  static busy_state state;
  return state;
}

void begin_busy() {
  busy_state& state = busy();
  if (state.busy_depth == 0) {
    state.saved_pointer = current_user_interface().pointer();
    current_user_interface().set_pointer(pointer_shape::hourglass);
  }
  ++state.busy_depth;
}

void end_busy() {
  busy_state& state = busy();
  if (state.busy_depth < 1) return;
  if (state.busy_depth == 1) current_user_interface().set_pointer(state.saved_pointer);
  --state.busy_depth;
}
