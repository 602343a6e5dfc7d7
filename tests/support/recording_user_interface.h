#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "base/user_interface.h"

// Records what code shows instead of showing it, and answers every box at once. Installed for its own lifetime.
class recording_user_interface final : public user_interface {
 public:
  message_answer show_message(const message& shown) override;
  bool show_message_with_check(const message& shown, const std::string& check_box) override;
  [[nodiscard]] pointer_shape pointer() const override { return shape; }
  void set_pointer(pointer_shape chosen) override;

  // The texts of the recorded messages, which are forgotten.
  std::vector<std::string> take_texts();

  std::vector<message> messages;
  std::deque<message_answer> answers;                // given out in order; afterwards every answer is ok
  std::function<void(const message&)> while_open{};  // runs while a message is "open", before its answer
  std::vector<std::string> check_boxes;              // the captions of those shown
  std::deque<bool> ticks;                            // given out in order; afterwards none is ticked
  std::vector<pointer_shape> pointers;               // every change of the pointer
  pointer_shape shape = pointer_shape::standard;

 private:
  scoped_user_interface installed_{*this};
};
