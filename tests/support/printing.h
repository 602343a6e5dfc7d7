#pragma once

#include <iosfwd>

#include "base/value.h"

// How a failed expectation shows the program's own types.
void PrintTo(const value& shown, std::ostream* out);
void PrintTo(date_time shown, std::ostream* out);
void PrintTo(error_value shown, std::ostream* out);
