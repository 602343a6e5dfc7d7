#include "odbc/odbcd.h"

#include <fmt/format.h>

#include "base/matrix.h"
#include "base/user_interface.h"
#include "odbc/layer_error.h"
#include "odbc/odbccon.h"
#include "odbc/raw_buffer.h"
#include "odbc/type_tables.h"

namespace ODBCD {

SQLHENV henv = nullptr;

namespace {

constexpr std::size_t name_bytes = SQL_MAX_DSN_LENGTH + 1;
constexpr std::size_t description_bytes = 257;
constexpr SQLSMALLINT description_offered = 256;

struct data_source {
  std::string name;
  std::string description;
};

// The next entry; false when the listing ends.
bool next_data_source(SQLUSMALLINT direction, data_source& entry) {
  byte_buffer name(name_bytes, 0);
  byte_buffer description(description_bytes, 0);
  SQLSMALLINT name_length = 0;
  SQLSMALLINT description_length = 0;
  const SQLRETURN rc = SQLDataSources(henv, direction, cfrptr(name), static_cast<SQLSMALLINT>(name_bytes), &name_length,
                                      cfrptr(description), description_offered, &description_length);
  if (rc != SQL_SUCCESS) return false;
  entry.name = bytes_to_string(name, 0, name_length);
  entry.description = bytes_to_string(description, 0, description_length);
  return true;
}

}  // namespace

keyed_collection<odbccon>& open_connections() {
  // Never destroyed: connection objects of static storage leave it when the program ends.
  static auto* connections = new keyed_collection<odbccon>;
  return *connections;
}

bool odbc_alloc_env() {
  if (henv != nullptr) odbc_free_env();
  SQLHENV allocated = nullptr;
  const SQLRETURN rc = SQLAllocEnv(&allocated);
  if (!sql_ok(rc)) {
    show_message({fmt::format("SqlAlloc returned: {}", rc), "ODBC ERROR", message_icon::none, message_buttons::ok, {}});
    return false;
  }
  henv = allocated;
  return true;
}

bool odbc_free_env() {
  if (henv == nullptr) return true;
  for (odbccon* connection : open_connections().all()) connection->Disconnect();
  if (!sql_ok(SQLFreeEnv(henv))) raise_error(odbc_fault::free_environment);
  henv = nullptr;
  return true;
}

value list_data_sources() {
  std::vector<data_source> found;
  data_source entry;
  for (SQLUSMALLINT direction = SQL_FETCH_FIRST; henv != nullptr && next_data_source(direction, entry);
       direction = SQL_FETCH_NEXT) {
    found.push_back(entry);
  }
  if (found.empty()) return null_t{};
  matrix list(static_cast<int>(found.size()) + 1, {0, 0});
  list.grow(3);
  for (std::size_t k = 0; k < found.size(); ++k) {
    list.at(static_cast<int>(k), 0) = found[k].name;
    list.at(static_cast<int>(k), 1) = found[k].description;
  }
  return list;
}

std::string sql_type_name(int sql_type) {
  const type_name* found = find_type(type_names, sql_type);
  return found == nullptr ? "Unknown" : std::string(found->name);
}

}  // namespace ODBCD

std::string handle_key(const void* handle) { return fmt::to_string(reinterpret_cast<std::uintptr_t>(handle)); }
