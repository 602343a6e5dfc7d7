// Catalog functions: each opens a cursor on its scripted answer.
#include "driver_state.h"

using namespace scripted;

namespace {

SQLRETURN catalog_call(const char* function, SQLHSTMT raw, std::vector<std::string> shown_args) {
  return on<statement>(raw, function, std::move(shown_args), [&](statement& stmt) {
    stmt.require_closed();
    stmt.forget_script();
    auto script = state().catalog_script(function);
    for (const auto& planned : {script->prepare_failure, script->execute_failure})
      if (planned) stmt.raise(*planned);
    stmt.script = std::move(script);
    stmt.executed = stmt.open = true;
    stmt.mode = fetching::not_yet;
    stmt.next_row = 0;
  });
}

}  // namespace

SQLRETURN SQLTables(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalog_length, SQLCHAR* schema,
                    SQLSMALLINT schema_length, SQLCHAR* table, SQLSMALLINT table_length, SQLCHAR* type,
                    SQLSMALLINT type_length) {
  return catalog_call("SQLTables", raw,
                      args(show_text(catalog, catalog_length), show_text(schema, schema_length),
                           show_text(table, table_length), show_text(type, type_length)));
}

SQLRETURN SQLTablePrivileges(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalog_length, SQLCHAR* schema,
                             SQLSMALLINT schema_length, SQLCHAR* table, SQLSMALLINT table_length) {
  return catalog_call(
      "SQLTablePrivileges", raw,
      args(show_text(catalog, catalog_length), show_text(schema, schema_length), show_text(table, table_length)));
}

SQLRETURN SQLPrimaryKeys(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalog_length, SQLCHAR* schema,
                         SQLSMALLINT schema_length, SQLCHAR* table, SQLSMALLINT table_length) {
  return catalog_call(
      "SQLPrimaryKeys", raw,
      args(show_text(catalog, catalog_length), show_text(schema, schema_length), show_text(table, table_length)));
}

SQLRETURN SQLForeignKeys(SQLHSTMT raw, SQLCHAR* pk_catalog, SQLSMALLINT pk_catalog_length, SQLCHAR* pk_schema,
                         SQLSMALLINT pk_schema_length, SQLCHAR* pk_table, SQLSMALLINT pk_table_length,
                         SQLCHAR* fk_catalog, SQLSMALLINT fk_catalog_length, SQLCHAR* fk_schema,
                         SQLSMALLINT fk_schema_length, SQLCHAR* fk_table, SQLSMALLINT fk_table_length) {
  return catalog_call("SQLForeignKeys", raw,
                      args(show_text(pk_catalog, pk_catalog_length), show_text(pk_schema, pk_schema_length),
                           show_text(pk_table, pk_table_length), show_text(fk_catalog, fk_catalog_length),
                           show_text(fk_schema, fk_schema_length), show_text(fk_table, fk_table_length)));
}

SQLRETURN SQLSpecialColumns(SQLHSTMT raw, SQLUSMALLINT identifier_type, SQLCHAR* catalog, SQLSMALLINT catalog_length,
                            SQLCHAR* schema, SQLSMALLINT schema_length, SQLCHAR* table, SQLSMALLINT table_length,
                            SQLUSMALLINT scope, SQLUSMALLINT nullable) {
  return catalog_call("SQLSpecialColumns", raw,
                      args(identifier_type, show_text(catalog, catalog_length), show_text(schema, schema_length),
                           show_text(table, table_length), scope, nullable));
}

SQLRETURN SQLStatistics(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalog_length, SQLCHAR* schema,
                        SQLSMALLINT schema_length, SQLCHAR* table, SQLSMALLINT table_length, SQLUSMALLINT unique,
                        SQLUSMALLINT accuracy) {
  return catalog_call("SQLStatistics", raw,
                      args(show_text(catalog, catalog_length), show_text(schema, schema_length),
                           show_text(table, table_length), unique, accuracy));
}

SQLRETURN SQLColumns(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalog_length, SQLCHAR* schema,
                     SQLSMALLINT schema_length, SQLCHAR* table, SQLSMALLINT table_length, SQLCHAR* name,
                     SQLSMALLINT name_length) {
  return catalog_call("SQLColumns", raw,
                      args(show_text(catalog, catalog_length), show_text(schema, schema_length),
                           show_text(table, table_length), show_text(name, name_length)));
}

SQLRETURN SQLProcedures(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalog_length, SQLCHAR* schema,
                        SQLSMALLINT schema_length, SQLCHAR* procedure, SQLSMALLINT procedure_length) {
  return catalog_call("SQLProcedures", raw,
                      args(show_text(catalog, catalog_length), show_text(schema, schema_length),
                           show_text(procedure, procedure_length)));
}

SQLRETURN SQLProcedureColumns(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalog_length, SQLCHAR* schema,
                              SQLSMALLINT schema_length, SQLCHAR* procedure, SQLSMALLINT procedure_length,
                              SQLCHAR* name, SQLSMALLINT name_length) {
  return catalog_call("SQLProcedureColumns", raw,
                      args(show_text(catalog, catalog_length), show_text(schema, schema_length),
                           show_text(procedure, procedure_length), show_text(name, name_length)));
}
