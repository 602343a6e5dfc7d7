#include "shell/command_line.h"

std::string command_line_text(const std::vector<std::string>& arguments) {
  std::string text;
  for (const std::string& argument : arguments) {
    if (!text.empty()) text += ' ';
    const bool quoted = argument.find_first_of(" \t") != std::string::npos;
    text += quoted ? '"' + argument + '"' : argument;
  }
  return text;
}

std::vector<std::string> GetCommandLine(std::string_view text, std::size_t most) {
  std::vector<std::string> slots(1);
  std::size_t current = 0;
  bool in_argument = false;
  bool in_quote = false;
  const auto open_slot = [&] {
    ++current;
    if (current <= most) slots.resize(current + 1);
  };
  for (const char c : text) {
    if (c == '"') {
      open_slot();
      in_quote = !in_quote;
      in_argument = in_quote;
    } else if ((c == ' ' || c == '\t') && !in_quote) {
      in_argument = false;
    } else {
      if (!in_argument) {
        if (current >= most) break;
        open_slot();
        in_argument = true;
      }
      if (current <= most) slots[current] += c;
    }
  }
  return slots;
}
