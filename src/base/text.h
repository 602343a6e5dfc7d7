#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The text without its leading and trailing blanks (the blank alone; tabs and line ends stay).
std::string_view trim_blanks(std::string_view text);

// UTF-8 in, UTF-8 out; letters are raised one by one, so the length in characters stays. Bytes that are not UTF-8 stay
// as they are.
std::string upper_case(std::string_view text);

// Characters (code points) of a UTF-8 text; a byte that starts no character counts as one.
std::size_t count_characters(std::string_view utf8);

// No byte but whole characters: no surrogates, no overlong forms, nothing beyond U+10FFFF.
bool is_valid_utf8(std::string_view text);

// The longest prefix of at most `characters` characters.
std::string_view first_characters(std::string_view utf8, std::size_t characters);

// The text without an incomplete UTF-8 character at its end, as a cut buffer leaves it.
std::string_view without_cut_character(std::string_view utf8);

// Upper-cased ASCII prefix test: does the text begin with `upper_prefix`, whatever the case of its letters?
bool begins_with(std::string_view text, std::string_view upper_prefix);
