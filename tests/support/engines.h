#pragma once

#include <string>
#include <vector>

#include "odbc/odbccon.h"

// A real database that tests run on; what differs from engine to engine is data.
struct engine {
  std::string name;  // "sqlite", "postgres": what the names of its tests begin with
  std::string dsn;
  std::string user;
  std::string password;
};

const engine& sqlite();
const engine& postgres();

// How test names show an engine.
void PrintTo(const engine& shown, std::ostream* out);

// Connects, failing the test with what the driver says (or says that there is no server) when it cannot.
void connect_to(odbccon& con, const engine& which);
