// Parameter markers: description, binding, reading of values and writing of outputs.
#include "params.h"

#include "convert.h"

#include <fmt/format.h>

#include <cstring>

using namespace scripted;

namespace {

// Bytes the length word gives a character or binary value. A buffer length of 0 is legal for input and
// then bounds nothing.
std::size_t text_length(SQLUSMALLINT number, const binding& bound, const char* value, SQLLEN word) {
  if (word == SQL_NTS)
    return bound.buffer_length > 0 ? strnlen(value, static_cast<std::size_t>(bound.buffer_length)) : std::strlen(value);
  if (word < 0 || (bound.buffer_length > 0 && word > bound.buffer_length))
    throw call_stopped("S1090", fmt::format("length word {} of parameter {}, a buffer of {} bytes", word, number,
                                            bound.buffer_length));
  return static_cast<std::size_t>(word);
}

std::string value_bytes(SQLUSMALLINT number, const parameter_binding& bound, SQLSMALLINT c_type, const binding& place) {
  const SQLLEN word = place.length ? *place.length : SQLLEN{SQL_NTS};
  if (word == SQL_NULL_DATA || bound.io_type == SQL_PARAM_OUTPUT) return {};
  if (word == SQL_DATA_AT_EXEC || word <= SQL_LEN_DATA_AT_EXEC_OFFSET)
    throw call_stopped("S1C00", fmt::format("parameter {} wants its data at execution", number));
  if (!place.buffer) throw call_stopped("S1009", fmt::format("parameter {} has no value buffer", number));
  const auto* value = static_cast<const char*>(place.buffer);
  const std::size_t fixed = fixed_size(c_type);
  return {value, fixed > 0 ? fixed : text_length(number, bound, value, word)};
}

bound_parameter read_one(SQLUSMALLINT number, const parameter_binding& bound, SQLULEN row) {
  const SQLSMALLINT c_type = actual_c_type(bound.c_type, bound.sql_type);
  const binding place = at_row(bound, c_type, row);
  const auto word = place.length ? std::optional(*place.length) : std::nullopt;
  return {number,
          bound.io_type,
          bound.c_type,
          bound.sql_type,
          bound.column_size,
          bound.scale,
          bound.buffer_length,
          word,
          value_bytes(number, bound, c_type, place)};
}

// ODBC ignores the buffer length of a parameter whose C type has a size of its own: a Null may be bound with a byte,
// and what is written back comes whole all the same.
binding of_own_size(const binding& described, SQLSMALLINT c_type) {
  binding bound = described;
  if (fixed_size(c_type) > 0 && bound.buffer_length > 0) bound.buffer_length = 0;
  return bound;
}

void check_binding(SQLUSMALLINT number, const parameter_binding& bound) {
  if (number == 0) throw call_stopped("S1093", "parameter number 0");
  if (bound.io_type != SQL_PARAM_INPUT && bound.io_type != SQL_PARAM_INPUT_OUTPUT && bound.io_type != SQL_PARAM_OUTPUT)
    throw call_stopped("S1105", fmt::format("parameter type {}", bound.io_type));
  require_sound(of_own_size(bound, bound.c_type));
  if (!bound.buffer && !bound.length) throw call_stopped("S1009", "neither value nor length pointer");
}

const answer& script_with_parameters(const statement& stmt) {
  if (!stmt.script) throw call_stopped("S1010", "parameters without preparation");
  return *stmt.script;
}

}  // namespace

namespace scripted {

execution read_parameters(const statement& stmt) {
  for (std::size_t number = 1; number <= stmt.script->parameters.size(); ++number)
    if (!stmt.parameters.contains(static_cast<SQLUSMALLINT>(number)))
      throw call_stopped("07001", fmt::format("parameter {} is not bound", number));
  execution seen{stmt.text, {}};
  for (SQLULEN row = 0; row < stmt.parameter_rows; ++row) {
    auto& values = seen.rows.emplace_back();
    for (const auto& [number, bound] : stmt.parameters) {
      if (stmt.parameter_rows > 1 && bound.buffer_length == 0 &&
          fixed_size(actual_c_type(bound.c_type, bound.sql_type)) == 0)
        throw call_stopped("S1090", fmt::format("parameter {}: an array of buffers without length", number));
      values.push_back(read_one(number, bound, row));
    }
  }
  return seen;
}

void write_outputs(statement& stmt) {
  for (const auto& [number, value] : stmt.script->outputs) {
    const auto found = stmt.parameters.find(number);
    if (found == stmt.parameters.end() || found->second.io_type == SQL_PARAM_INPUT) continue;
    const SQLSMALLINT c_type = actual_c_type(found->second.c_type, found->second.sql_type);
    if (store(value, at_row(of_own_size(found->second, c_type), c_type, 0))) stmt.warn_truncated();
  }
}

}  // namespace scripted

SQLRETURN SQLNumParams(SQLHSTMT raw, SQLSMALLINT* count) {
  return on<statement>(raw, "SQLNumParams", {},
                       [&](statement& stmt) { put(count, script_with_parameters(stmt).parameters.size()); });
}

SQLRETURN SQLDescribeParam(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT* type, SQLULEN* precision, SQLSMALLINT* scale,
                           SQLSMALLINT* nullable) {
  return on<statement>(raw, "SQLDescribeParam", args(number), [&](statement& stmt) {
    const auto& parameters = script_with_parameters(stmt).parameters;
    if (number == 0 || number > parameters.size())
      throw call_stopped("S1093", fmt::format("parameter number {} of {}", number, parameters.size()));
    const parameter& described = parameters[number - 1U];
    put(type, described.sql_type);
    put(precision, described.precision);
    put(scale, described.scale);
    put(nullable, described.nullable);
  });
}

SQLRETURN SQLBindParameter(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT io_type, SQLSMALLINT c_type,
                           SQLSMALLINT sql_type, SQLULEN column_size, SQLSMALLINT scale, SQLPOINTER value,
                           SQLLEN buffer_length, SQLLEN* length) {
  const auto shown_args =
      args(number, io_type, c_type, sql_type, column_size, scale, value, buffer_length, static_cast<void*>(length));
  return on<statement>(raw, "SQLBindParameter", shown_args, [&](statement& stmt) {
    const parameter_binding bound{{c_type, value, buffer_length, length}, io_type, sql_type, column_size, scale};
    check_binding(number, bound);
    stmt.parameters[number] = bound;
  });
}

SQLRETURN SQLParamOptions(SQLHSTMT raw, SQLULEN rows, SQLULEN* row) {
  const auto shown_args = args(rows, static_cast<void*>(row));
  return on<statement>(raw, "SQLParamOptions", shown_args, [&](statement& stmt) {
    if (rows == 0) throw call_stopped("S1107", "a parameter array has at least one row");
    stmt.parameter_rows = rows;
    stmt.parameter_row = row;
  });
}
