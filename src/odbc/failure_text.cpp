#include "odbc/failure_text.h"

#include <fmt/format.h>

#include "base/code_page.h"
#include "odbc/odbcd.h"

std::string layer_failure_text(const odbcstmt& statement) {
  // The number says which failure was the last; the Result may still be that of an earlier one.
  const auto failed_with = [&](odbc_fault fault) { return statement.last_error() == error_number(fault); };
  if (const int refused = statement.refused_column(); failed_with(odbc_fault::column_type) && refused > 0) {
    return fmt::format("Column {} (\"{}\") has the type {} (code {}), which can not be fetched.", refused,
                       statement.ColName(refused), ODBCD::sql_type_name(statement.ColType(refused)),
                       statement.ColType(refused));
  }
  if (failed_with(odbc_fault::text_not_sendable)) {
    return fmt::format("The text holds a zero byte or a character that the code page {} lacks, so it can not be sent.",
                       current_code_page().name());
  }
  if (failed_with(odbc_fault::rowset_range)) {
    return "The number of rows per block must be between 1 and 1000; see ExtFetch Rows on the Options Panel.";
  }
  if (statement.last_error() == exhausted_memory)
    return "The rows of the result are too wide: there is no memory to fetch them into.";
  return {};
}
