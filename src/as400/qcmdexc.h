#pragma once

#include <string>
#include <string_view>

// The call that sends an AS/400 command through the system program QCMDEXC: "call qsys" + separator +
// "qcmdexc('command',length)", the length in characters as a decimal of ten digits with leading zeros and five
// decimals. Apostrophes are not doubled.
std::string qcmdexc_call(std::string_view command, std::string_view separator);
