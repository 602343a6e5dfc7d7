#pragma once

#include <iosfwd>

#include "batch/batch_options.h"
#include "odbc/odbccon.h"

// Prints what the catalog says, as options.catalog asks: one line for each row, its cells separated by tabs under a
// line of names, or one JSON object each. A driver's failure goes to the user interface in force. Gives the exit
// status: batch_all_ran, also when nothing was found (a remark says so), or batch_statement_failed.
int print_catalog(odbccon& connection, const batch_options& options, std::ostream& out, std::ostream& remarks);
