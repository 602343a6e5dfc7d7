#pragma once

#include "base/user_interface.h"

// Message boxes over the active window, and the application-wide busy pointer.
class qt_user_interface final : public user_interface {
 public:
  message_answer show_message(const message& shown) override;
  bool show_message_with_check(const message& shown, const std::string& check_box) override;
  [[nodiscard]] pointer_shape pointer() const override;
  void set_pointer(pointer_shape shape) override;
};
