#pragma once

#include <QString>
#include <string_view>

// A cell's UTF-8 as text for a person: a zero byte and what is no UTF-8 become U+FFFD.
QString readable_text(std::string_view utf8);

// The same on one line, at most about a thousand characters: a pilcrow for each line end, a blank for a tab.
QString one_line_text(std::string_view utf8);
