#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/value.h"
#include "odbc/diagnostics.h"
#include "odbc/odbc_headers.h"

class odbccon;

// Objects under text keys, in the order in which they were added; owns nothing.
template <typename T>
class keyed_collection {
 public:
  void add(std::string key, T* item) { items_.emplace_back(std::move(key), item); }
  // False when there is no such key.
  bool remove(const std::string& key) {
    for (auto it = items_.begin(); it != items_.end(); ++it) {
      if (it->first != key) continue;
      items_.erase(it);
      return true;
    }
    return false;
  }
  // The item under the key, or nullptr.
  [[nodiscard]] T* find(const std::string& key) const {
    for (const auto& [name, item] : items_) {
      if (name == key) return item;
    }
    return nullptr;
  }
  [[nodiscard]] std::size_t size() const { return items_.size(); }
  [[nodiscard]] bool empty() const { return items_.empty(); }
  [[nodiscard]] T* first() const { return items_.front().second; }
  [[nodiscard]] std::vector<T*> all() const {
    std::vector<T*> items;
    for (const auto& entry : items_) items.push_back(entry.second);
    return items;
  }

 private:
  std::vector<std::pair<std::string, T*>> items_;
};

// The key of an object in a collection: its handle's decimal text.
std::string handle_key(const void* handle);

// The process's one ODBC environment and what is connected through it.
namespace ODBCD {

extern SQLHENV henv;  // nullptr while none is allocated

// Every connection object that is connected, under the key of its hdbc.
keyed_collection<odbccon>& open_connections();

// Allocates the environment, freeing one that is there first. A failure is shown ("SqlAlloc returned: ") and answers
// false.
bool odbc_alloc_env();

// Disconnects every open connection and frees the environment; true at once without one. Raises
// odbc_fault::free_environment.
bool odbc_free_env();

// Null when no data source is defined; else a matrix indexed [0..n, 0..2]: [k, 0] the name, [k, 1] the description of
// the k-th of n data sources in the driver manager's order; row n and column 2 are Empty. The first entry that does not
// come whole ends the list.
value list_data_sources();

// The display name of an ODBC SQL type code, "Unknown" for one without a name.
std::string sql_type_name(int sql_type);

}  // namespace ODBCD
