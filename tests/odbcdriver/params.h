#pragma once

#include "driver_state.h"

namespace scripted {

// All rows of the bound parameters as they stand now; 07001 when one of the script is not bound, S1090
// when a length word points outside its buffer.
execution read_parameters(const statement& stmt);

// The script's output cells into the first row of the bound output and in/out buffers.
void write_outputs(statement& stmt);

}  // namespace scripted
