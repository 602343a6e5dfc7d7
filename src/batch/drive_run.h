#pragma once

#include <iosfwd>
#include <string>

#include "batch/batch_options.h"

// Logs in, runs the target once for every row of the source, prints the counters at the end, logs out. A failing row's
// message goes to the user interface in force, remarks to `remarks`, and the counters of the run under way to `live`
// where there is one. Gives the exit status: 0 when every row was written.
int run_drive(const batch_options& options, const std::string& password, std::ostream& out, std::ostream& remarks,
              std::ostream* live = nullptr);
