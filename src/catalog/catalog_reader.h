#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/matrix.h"
#include "odbc/odbcstmt.h"

// A table by the names that the catalog knows it by; "" for a part that the driver does not have.
struct table_key {
  std::string qualifier;
  std::string library;
  std::string table;
  // The library is a search pattern that the user typed; what is asked of one table is then told of the first that
  // fits.
  bool library_is_pattern = false;

  friend bool operator==(const table_key&, const table_key&) = default;
};

// What is shown of a catalog result: a column's title in a window, and its name on the console.
struct shown_column {
  std::string_view title;
  std::string_view name;
};
inline constexpr std::array<shown_column, 8> columns_shown{{{"Ordn", "ORDINAL"},
                                                            {"Column Name", "COLUMN_NAME"},
                                                            {"Type", "TYPE_NAME"},
                                                            {"Len", "LENGTH"},
                                                            {"Scle", "SCALE"},
                                                            {"Prec", "PRECISION"},
                                                            {"Nul?", "NULLABLE"},
                                                            {"Remarks", "REMARKS"}}};
inline constexpr std::array<shown_column, 3> primary_key_shown{
    {{"Key Seq", "KEY_SEQ"}, {"Column Name", "COLUMN_NAME"}, {"Primary Key Identifier", "PK_NAME"}}};
inline constexpr std::array<shown_column, 6> foreign_keys_shown{{{"Type", "TYPE"},
                                                                 {"Key Seq", "KEY_SEQ"},
                                                                 {"My Field", "COLUMN_NAME"},
                                                                 {"Table Name", "OTHER_TABLE_NAME"},
                                                                 {"Foreign Name", "OTHER_COLUMN_NAME"},
                                                                 {"Foreign Key Identifier", "KEY_NAME"}}};
inline constexpr std::array<shown_column, 6> indexes_shown{{{"Index Qualifier", "INDEX_QUALIFIER"},
                                                            {"Index Name", "INDEX_NAME"},
                                                            {"Uniq?", "UNIQUE"},
                                                            {"Seq", "SEQ_IN_INDEX"},
                                                            {"Column Name", "COLUMN_NAME"},
                                                            {"Order", "COLLATION"}}};

// Rows of one of the lists above, cell by cell.
using catalog_rows = std::vector<std::vector<value>>;

// Asks the catalog on behalf of one action of the user. A query that fails gives no rows; what the driver said is told
// by tell_failures, each text once, however many queries it struck. The statement can be used again at once.
//
// Where ODBC takes a search pattern for the name of one table, a wildcard in the name finds itself: it never brings in
// another table's rows, nor all of a library's.
class catalog_reader {
 public:
  explicit catalog_reader(odbcstmt& statement) : statement_(statement) {}

  // The distinct qualifiers, and the distinct libraries, that the driver reports, as an array; Null when none.
  value qualifiers();
  value libraries();

  // The tables of a qualifier and library whose names fit the pattern, row by row of a TableList result.
  void tables(const table_key& within, const std::string& name_pattern,
              const std::function<void(const matrix& found, std::size_t row)>& each);

  // Of one table; their cells are those of the lists above.
  catalog_rows columns(const table_key& of);
  catalog_rows primary_key(const table_key& of);
  // First the keys of other tables that lead to this one ("IN"), then its own that lead to others ("OUT").
  catalog_rows foreign_keys(const table_key& of);
  catalog_rows indexes(const table_key& of);

  [[nodiscard]] bool failed() const { return !failures_.empty(); }
  // Shows what failed. It waits for the user, who may close windows meanwhile: the statement is not touched.
  void tell_failures();

 private:
  value checked(value result);

  odbcstmt& statement_;
  std::vector<std::string> failures_;
};
