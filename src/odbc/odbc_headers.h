#pragma once

// The driver manager's declarations, ODBC 2.x.
#include <sql.h>
#include <sqlext.h>
