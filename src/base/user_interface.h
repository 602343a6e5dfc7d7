#pragma once

#include <cstdint>
#include <string>

enum class message_icon { none, question };
enum class message_buttons { ok, ok_cancel };
enum class message_answer { ok, cancel };

enum class pointer_shape : std::int16_t { standard = 0, hourglass = 11 };

// One message box. An empty title stands for the application's own. `details` is what the driver said beyond the
// text; the window shows it on demand, the console below the text.
struct message {
  std::string text;
  std::string title;
  message_icon icon = message_icon::none;
  message_buttons buttons = message_buttons::ok;
  std::string details;
};

// What code below the windows asks of whoever shows things: the desktop program, the console program, a test.
class user_interface {
 public:
  virtual ~user_interface() = default;
  // Shows the box and waits for its answer. Closing the box answers cancel where there is a Cancel button.
  virtual message_answer show_message(const message& shown) = 0;
  // The same with a check box of this caption; whether it was ticked. Where nothing can be ticked it is the message
  // alone.
  virtual bool show_message_with_check(const message& shown, const std::string& check_box);
  // The mouse pointer of the whole program.
  [[nodiscard]] virtual pointer_shape pointer() const = 0;
  virtual void set_pointer(pointer_shape shape) = 0;
};

// The user interface in force. Before one is installed, messages go to standard error and are answered ok.
user_interface& current_user_interface();

// Installs a user interface for its own lifetime and puts the previous one back.
class scoped_user_interface {
 public:
  explicit scoped_user_interface(user_interface& installed);
  ~scoped_user_interface();
  scoped_user_interface(const scoped_user_interface&) = delete;
  scoped_user_interface& operator=(const scoped_user_interface&) = delete;

 private:
  user_interface* previous_;
};

message_answer show_message(const message& shown);
bool show_message_with_check(const message& shown, const std::string& check_box);

// A box with the question icon and an OK button, as the program tells of a user's mistake.
void show_user_error(const std::string& text, const std::string& title = "User Error");

// The busy pointer's nesting depth, and the pointer that the outermost end_busy puts back.
struct busy_state {
  std::int16_t busy_depth = 0;
  pointer_shape saved_pointer = pointer_shape::standard;
};
busy_state& busy();

// Nestable busy pointer: only the outermost pair changes the pointer; end_busy at depth 0 does nothing at all.
void begin_busy();
void end_busy();

// begin_busy and end_busy around a scope, whatever leaves it.
class busy_section {
 public:
  busy_section() { begin_busy(); }
  ~busy_section() { end_busy(); }
  busy_section(const busy_section&) = delete;
  busy_section& operator=(const busy_section&) = delete;
};
