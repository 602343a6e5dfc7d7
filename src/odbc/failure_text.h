#pragma once

#include <string>

#include "odbc/odbcstmt.h"

// What the layer itself, rather than the driver, found wrong at the statement's last failure; "" when the driver has
// the word.
std::string layer_failure_text(const odbcstmt& statement);
