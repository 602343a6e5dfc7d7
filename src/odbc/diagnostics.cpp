#include "odbc/diagnostics.h"

#include <fmt/format.h>

#include "base/user_interface.h"
#include "odbc/raw_buffer.h"
#include "odbc/struct_cells.h"

namespace {

constexpr std::size_t state_bytes = 256;
constexpr std::size_t message_bytes = 513;
constexpr SQLSMALLINT message_offered = 512;

}  // namespace

diagnostic_record disconnected_record() { return {0, 0, "Disconnected", "Inactive connection"}; }

diagnostic_record read_diagnostic(SQLHENV environment, SQLHDBC connection, SQLHSTMT statement) {
  byte_buffer state(state_bytes, 0);
  byte_buffer message(message_bytes, 0);
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  diagnostic_record record;
  record.rc =
      SQLError(environment, connection, statement, cfrptr(state), &native, cfrptr(message), message_offered, &length);
  if (!sql_ok(record.rc)) {
    record.native = -1;
    return record;
  }
  record.native = native;
  record.state = bytes_to_string(state, 0, static_cast<std::ptrdiff_t>(cflocc(0, state.data(), state_bytes - 1)));
  // A driver reports the full length of a message that it had to cut.
  record.text = cell_text(message.data(), message_offered, length);
  return record;
}

std::string diagnostic_text(const diagnostic_record& record) {
  if (!sql_ok(record.rc)) return fmt::format("Error return {} during call to SQLERROR.", record.rc);
  return fmt::format("SQL error. Code = {}. State = {}. Message = {}.", record.native, record.state, record.text);
}

std::int32_t show_diagnostic(const diagnostic_record& record) {
  show_message({diagnostic_text(record), {}, message_icon::none, message_buttons::ok, {}});
  return record.native;
}
