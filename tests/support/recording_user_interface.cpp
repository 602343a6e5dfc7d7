#include "support/recording_user_interface.h"

message_answer recording_user_interface::show_message(const message& shown) {
  messages.push_back(shown);
  if (while_open) while_open(shown);
  if (answers.empty()) return message_answer::ok;
  const message_answer answer = answers.front();
  answers.pop_front();
  return answer;
}

bool recording_user_interface::show_message_with_check(const message& shown, const std::string& check_box) {
  check_boxes.push_back(check_box);
  show_message(shown);
  if (ticks.empty()) return false;
  const bool ticked = ticks.front();
  ticks.pop_front();
  return ticked;
}

void recording_user_interface::set_pointer(pointer_shape chosen) {
  shape = chosen;
  pointers.push_back(chosen);
}

std::vector<std::string> recording_user_interface::take_texts() {
  std::vector<std::string> texts;
  for (const message& each : messages) texts.push_back(each.text);
  messages.clear();
  return texts;
}
