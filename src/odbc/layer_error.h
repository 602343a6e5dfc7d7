#pragma once

#include <cstdint>
#include <exception>

// The layer's error numbers, each used where it is raised.
enum class odbc_fault : std::int32_t {
  free_environment = 11001,
  free_statement = 11002,
  allocate_statement = 11003,
  free_connection = 11004,
  allocate_connection = 11005,
  disconnect = 11006,
  connect = 11007,
  unexpected_ctype = 11010,
  commit = 11021,
  connect_option = 11022,
  rollback = 11024,
  allocate_driver_connection = 11027,
  driver_connect = 11028,
  bind_without_handle = 11031,
  value_count = 11032,
  no_values = 11034,
  value_type = 11035,
  bind_parameter = 11036,
  cancel = 11040,
  close_cursor = 11041,
  execute = 11043,
  fetch = 11046,
  prepare_without_handle = 11047,
  prepare = 11050,
  count_columns = 11051,
  count_parameters = 11052,
  describe_column = 11053,
  column_type = 11055,
  bind_column = 11056,
  describe_parameter = 11058,
  bind_procedure_parameter = 11059,
  statement_option = 11060,
  scroll_options = 11061,
  no_array_values = 11063,
  row_count = 11068,
  rowset_range = 11070,
  parameter_options = 11074,
  parameter_block = 11075,
  cursor_name = 11091,
  cursor_name_length = 11092,
  set_cursor_name = 11093,
  not_connected = 11095,
  get_info = 11096,
  bind_on_rows = 11201,
  bind_rows = 11203,
  get_functions = 11281,
  put_error_value = 11300,
  put_unsupported = 11301,
  // A statement or name that cannot be sent as it is: it holds a zero byte, or a character that the code page lacks.
  text_not_sendable = 11302,
  put_no_text = 11303,
  matrix_without_handle = 11310,
  matrix_without_markers = 11311,
  matrix_markers = 11312,
  matrix_unsupported = 11314,
  bind_matrix = 11315,
};

// Layer errors carry the object-error base (hexadecimal 80040000) plus their number.
inline constexpr std::int32_t object_error_base = -2147221504;

constexpr std::int32_t error_number(odbc_fault fault) { return object_error_base + static_cast<std::int32_t>(fault); }

// What every operation whose name ends in _XX throws when a call fails.
class layer_error : public std::exception {
 public:
  explicit layer_error(std::int32_t number) : number_(number) {}
  [[nodiscard]] std::int32_t number() const { return number_; }
  [[nodiscard]] const char* what() const noexcept override { return "error of the ODBC layer"; }

 private:
  std::int32_t number_;
};

// Throws a layer_error: 0 counts as 65001, a negative number is thrown as it is, any other is added to
// object_error_base.
[[noreturn]] void raise_error(std::int32_t number);
[[noreturn]] inline void raise_error(odbc_fault fault) { raise_error(static_cast<std::int32_t>(fault)); }

inline constexpr std::int32_t exhausted_memory = 7;
inline constexpr std::int32_t type_mismatch = 13;  // a value that cannot be converted to what a cell holds
inline constexpr std::int32_t internal_error = 51;

// The number of the exception being handled: a layer_error's own, exhausted_memory, or internal_error for any other.
std::int32_t number_of_current_exception();

// Runs an operation that may raise: true when it returned, false after storing the error's number in `last_err`.
template <typename Operation>
bool trap(std::int32_t& last_err, Operation operation) {
  try {
    operation();
    return true;
  } catch (...) {
    last_err = number_of_current_exception();
    return false;
  }
}
