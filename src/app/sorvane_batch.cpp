// sorvane-batch: the bench's pipeline on a console.
#include <unistd.h>

#include <clocale>
#include <iostream>

#include "base/user_interface.h"
#include "batch/batch_options.h"
#include "batch/batch_run.h"
#include "batch/console_interface.h"
#include "batch/drive_run.h"

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  std::setlocale(LC_NUMERIC, "C");  // drivers read and write numbers through the C library
  int exit_status = batch_all_ran;
  const auto options = parse_batch_options(argc, argv, exit_status);
  if (!options) return exit_status;
  console_interface console;
  const scoped_user_interface installed(console);
  if (options->mode == batch_mode::drive) {
    std::ostream* live = isatty(STDERR_FILENO) != 0 ? &std::cerr : nullptr;
    return run_drive(*options, console_password(), std::cout, std::cerr, live);
  }
  return run_batch(*options, console_password(), std::cout, std::cerr);
}
