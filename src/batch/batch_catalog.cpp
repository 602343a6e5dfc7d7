#include "batch/batch_catalog.h"

#include <algorithm>
#include <ostream>
#include <span>

#include "batch/batch_run.h"
#include "batch/json_value.h"
#include "catalog/catalog_reader.h"
#include "odbc/catalog_tables.h"

namespace {

// Prints rows under the names of their columns.
class row_printer {
 public:
  row_printer(std::ostream& out, bool json) : out_(out), json_(json) {}

  void set_names(std::vector<std::string> names) {
    names_ = std::move(names);
    if (!json_) print_line(names_);
  }
  void set_names(std::span<const shown_column> columns) {
    std::vector<std::string> names;
    names.reserve(columns.size());
    for (const shown_column& each : columns) names.emplace_back(each.name);
    set_names(std::move(names));
  }
  // A row may be shorter than the names.
  void print(const std::vector<value>& cells) {
    ++rows_;
    if (json_) {
      nlohmann::ordered_json object;
      for (std::size_t i = 0; i < names_.size(); ++i)
        object[names_[i]] = i < cells.size() ? json_of(cells[i]) : nlohmann::ordered_json();
      out_ << json_text(object) << '\n';
      return;
    }
    std::vector<std::string> texts;
    texts.reserve(names_.size());
    for (const value& each : cells) texts.push_back(to_text(each));
    texts.resize(names_.size());
    print_line(std::move(texts));
  }
  [[nodiscard]] std::size_t rows() const { return rows_; }

 private:
  void print_line(std::vector<std::string> cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      std::replace_if(
          cells[i].begin(), cells[i].end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
      out_ << (i == 0 ? "" : "\t") << cells[i];
    }
    out_ << '\n';
  }

  std::ostream& out_;
  bool json_;
  std::vector<std::string> names_;
  std::size_t rows_ = 0;
};

void print_tables(catalog_reader& catalog, const table_key& wanted, row_printer& printer) {
  std::vector<std::string> names;
  for (const catalog_column& each : catalog_operations::tables.columns) names.emplace_back(each.name);
  printer.set_names(names);
  catalog.tables(wanted, wanted.table.empty() ? "%" : wanted.table, [&](const matrix& found, std::size_t row) {
    std::vector<value> cells;
    for (int column = 1; column <= found.first_upper(); ++column) cells.push_back(found(column, row));
    printer.print(cells);
  });
}

// The primary key first, its rows of the type "PK", in the columns of the foreign keys.
void print_keys(catalog_reader& catalog, const table_key& of, row_printer& printer) {
  printer.set_names(foreign_keys_shown);
  for (const auto& key : catalog.primary_key(of)) printer.print({"PK", key[0], key[1], null_t{}, null_t{}, key[2]});
  for (const auto& key : catalog.foreign_keys(of)) printer.print(key);
}

void print_rows(const catalog_rows& rows, std::span<const shown_column> columns, row_printer& printer) {
  printer.set_names(columns);
  for (const auto& row : rows) printer.print(row);
}

}  // namespace

int print_catalog(odbccon& connection, const batch_options& options, std::ostream& out, std::ostream& remarks) {
  odbcstmt statement;
  if (!statement.Make(connection)) {
    connection.Errd();
    return batch_statement_failed;
  }
  catalog_reader catalog(statement);
  row_printer printer(out, options.json);
  // Where a pattern may stand, an option that was not given stands for any library; keys and indexes know no patterns.
  const bool any_library =
      options.library.empty() && (options.catalog == catalog_list::tables || options.catalog == catalog_list::columns);
  const table_key of{.qualifier = {},
                     .library = any_library ? "%" : options.library,
                     .table = options.table,
                     .library_is_pattern = any_library || options.catalog == catalog_list::tables};
  switch (options.catalog) {
    case catalog_list::tables:
      print_tables(catalog, of, printer);
      break;
    case catalog_list::columns:
      print_rows(catalog.columns(of), columns_shown, printer);
      break;
    case catalog_list::keys:
      print_keys(catalog, of, printer);
      break;
    case catalog_list::indexes:
      print_rows(catalog.indexes(of), indexes_shown, printer);
      break;
  }
  out.flush();
  if (catalog.failed()) {
    catalog.tell_failures();
    return batch_statement_failed;
  }
  if (printer.rows() == 0) remarks << "sorvane-batch: nothing was found\n";
  return batch_all_ran;
}
