#include "base/user_interface.h"

#include <gtest/gtest.h>

#include "support/recording_user_interface.h"

namespace {

using shapes = std::vector<pointer_shape>;
constexpr auto standard = pointer_shape::standard;
constexpr auto hourglass = pointer_shape::hourglass;

TEST(user_interface, only_the_outermost_busy_pair_changes_the_pointer) {
  recording_user_interface ui;
  begin_busy();
  begin_busy();
  EXPECT_EQ(busy().busy_depth, 2);
  end_busy();
  EXPECT_EQ(ui.pointers, shapes{hourglass});
  end_busy();
  EXPECT_EQ(ui.pointers, (shapes{hourglass, standard}));
  end_busy();  // unmatched: nothing at all
  EXPECT_EQ(busy().busy_depth, 0);
  EXPECT_EQ(ui.pointers, (shapes{hourglass, standard}));
}

TEST(user_interface, the_pointer_before_comes_back_whatever_leaves_the_section) {
  recording_user_interface ui;
  ui.shape = hourglass;  // somebody else's
  try {
    const busy_section section;
    ui.set_pointer(standard);
    throw 1;
  } catch (int) {
  }
  EXPECT_EQ(ui.shape, hourglass);
  EXPECT_EQ(busy().busy_depth, 0);
}

TEST(user_interface, messages_go_to_the_one_installed_last) {
  recording_user_interface outer;
  {
    recording_user_interface inner;
    inner.answers = {message_answer::cancel};
    int seen = 0;
    inner.while_open = [&](const message&) { seen = busy().busy_depth; };
    begin_busy();
    const message asked{"Really?", "Decision", message_icon::question, message_buttons::ok_cancel, {}};
    EXPECT_EQ(show_message(asked), message_answer::cancel);
    EXPECT_EQ(show_message(asked), message_answer::ok);
    end_busy();
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(inner.take_texts(), (std::vector<std::string>{"Really?", "Really?"}));
  }
  show_user_error("No statement!");
  ASSERT_EQ(outer.messages.size(), 1U);
  EXPECT_EQ(outer.messages[0].text, "No statement!");
  EXPECT_EQ(outer.messages[0].title, "User Error");
  EXPECT_EQ(outer.messages[0].icon, message_icon::question);
  EXPECT_EQ(outer.messages[0].buttons, message_buttons::ok);
}

}  // namespace
