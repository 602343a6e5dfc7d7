#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

// Statements in an editor's text end with ';', wherever it stands: literals and comments are not looked at. Positions
// are byte offsets from 0; ';' is one byte in every code page, and CR LF counts as two.

// The text without its leading characters of code 32 or lower; trailing ones stay.
std::string_view trima(std::string_view text);

// The statement that the first ';' at or after the caret ends, without its leading blanks; a caret after the first
// character counts as one before it. Nothing when no ';' follows. It may be empty.
std::optional<std::string_view> get_sql_str(std::string_view text, std::size_t caret);

// Every statement of the text, as it stands between two ';'. What follows the last ';' is none.
struct statement_span {
  std::size_t start = 0;
  std::size_t length = 0;
};
std::vector<statement_span> statement_spans(std::string_view text);

// What the commands say when get_sql_str finds nothing.
inline constexpr std::string_view no_statement_to_execute =
    "No statement! Ensure that you 1) have a statement, 2) the statement ends with a ';', 3) the cursor is positioned "
    "between the beginning "
    "of the statement and the ';'";
inline constexpr std::string_view no_statement_to_check =
    "No statement!  Ensure that 1) You have a ';' after each statement. 2) your cursor is positioned before the ending "
    "';' of the statement you wish to execute.";
inline constexpr std::string_view no_statement_to_speed_test =
    "No statement! Ensure that 1) Each statement ends with a ';'. 2) The cursor is within a statement, (before the "
    "';').";
