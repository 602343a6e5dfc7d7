#pragma once

#include <string>
#include <string_view>
#include <vector>

// The command-line text of a program's arguments (its own name left out): joined by blanks, those with blanks or tabs
// in double quotes.
std::string command_line_text(const std::vector<std::string>& arguments);

// Splits a command-line text into at most `most` arguments, in slots from 1 (slot 0 is never used). Blanks and tabs
// separate, double quotes group; every quote character opens a new slot, so a quoted argument is followed by an empty
// slot.
std::vector<std::string> GetCommandLine(std::string_view text, std::size_t most = 10);
