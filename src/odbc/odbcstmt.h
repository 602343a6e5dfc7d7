#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/matrix.h"
#include "base/value.h"
#include "odbc/diagnostics.h"
#include "odbc/layer_error.h"
#include "odbc/odbccon.h"
#include "odbc/raw_buffer.h"
#include "odbc/type_tables.h"

struct catalog_operation;

// One ODBC statement on an odbccon: its handle, the description of its result columns with one bound buffer for a whole
// rowset, the description of its parameter markers with their buffer, and its diagnostics.
//
// As in odbccon, operations ending in _XX throw a layer_error, their twins answer false and store the number in
// last_err. After every failure but that of Make the statement keeps its handle. Column and marker numbers count from
// 1, rows of a rowset from 0.
//
// Buffers. Column i owns col_width[i] * rowset_size bytes of row_data from col_offset[i] on, row after row; its length
// words for the rows of a rowset are consecutive. Columns follow each other without gaps, so a cell may lie at any
// address. Cells are ODBC's C structures: zero-terminated text in the code page in force, 32-bit integer, double,
// DATE_STRUCT, TIME_STRUCT, TIMESTAMP_STRUCT. Parameter markers that are bound for many rows lie likewise in
// param_data, with param_len for their length words.
class odbcstmt {
 public:
  // last_rc after a failure that is the layer's own.
  static constexpr std::int32_t rc_no_handle = -99;
  static constexpr std::int32_t rc_column_type = -199;
  static constexpr std::int32_t rc_not_sendable = -299;

  // Error codes that GetParm and ProcParmDefault answer.
  static constexpr error_value no_such_marker{1};
  static constexpr error_value unsupported_marker{2};
  // What Getc and GetParm answer for a date or time that names no day or time of day.
  static constexpr error_value impossible_date{13};

  // What a catalog operation answers when its ODBC function failed, when result column c could not be bound (the code
  // is this plus c), and when its rows ended with anything but the end of data.
  static constexpr error_value catalog_call_failed{1};
  static constexpr error_value catalog_binding_failed{10};
  static constexpr error_value catalog_fetch_failed{100};

  odbcstmt() { reset_descriptions(); }
  // Frees the handle.
  ~odbcstmt() { Kill(); }
  odbcstmt(const odbcstmt&) = delete;
  odbcstmt& operator=(const odbcstmt&) = delete;

  // Allocates a handle on the connection, freeing an older one first.
  bool Make(odbccon& con);
  void Make_XX(odbccon& con);
  // Frees the handle and resets the object; nothing without a handle.
  bool Kill();
  void Kill_XX();

  // Prepares the text, describes and binds its columns for `rowset` rows (1 to 1000, 1 when omitted), describes its
  // markers. A statement prepared before is cancelled first; when that fails the preparation fails. A buffer beyond 1
  // MB lowers a rowset of 3 or more, to 2 at the least.
  bool Prep(std::string_view text, std::optional<std::int32_t> rowset = std::nullopt);
  void Prep_XX(std::string_view text, std::optional<std::int32_t> rowset = std::nullopt);
  // The same for a procedure call: columns bound as ProcSRS does, and every marker bound in place as input/output, NULL
  // at first.
  bool ProcPrep(std::string_view text, std::optional<std::int32_t> rowset = std::nullopt);
  void ProcPrep_XX(std::string_view text, std::optional<std::int32_t> rowset = std::nullopt);
  // Describes and binds the result set of a statement that is already executed, with the current rowset size.
  bool ProcSRS();

  bool Execute();
  void Execute_XX();
  // Prepares with rowset 1 and executes.
  bool CEX(std::string_view text);
  void CEX_XX(std::string_view text);
  // CEX, then the row count after a commit, or -1 after a rollback.
  std::int32_t CEX_RCC(std::string_view text);

  // Cancels, unbinds, resets the parameters and closes the cursor; does nothing unless the statement is in use.
  bool Cancel();
  void Cancel_XX();
  // Cancel, also of a statement that is not in use.
  bool Cancel_unc();

  bool SetOption(std::uint16_t option, std::uint32_t setting);
  void SetOption_XX(std::uint16_t option, std::uint32_t setting);
  bool SetCursorName(std::string_view name);
  void SetCursorName_XX(std::string_view name);
  // The name, or Empty after a failure; "" without a handle.
  value GetCursorName();
  std::string GetCursorName_XX();
  bool SetScrollOptions(std::uint16_t concurrency, std::int32_t keyset_size, std::uint16_t rowset);
  void SetScrollOptions_XX(std::uint16_t concurrency, std::int32_t keyset_size, std::uint16_t rowset);

  // Rows that the last execution affected, 0 when the statement is not in use; RowCount gives -1 after a failure.
  std::int64_t Row_Count_XX();
  std::int64_t RowCount();

  [[nodiscard]] bool Free() const { return hstmt == nullptr; }
  [[nodiscard]] bool InUse() const { return in_use; }
  [[nodiscard]] SQLHSTMT Handle() const { return hstmt; }
  [[nodiscard]] odbccon* Connection() const { return connection; }
  [[nodiscard]] std::int32_t Result() const { return last_rc; }
  [[nodiscard]] bool OK() const { return sql_ok(last_rc); }
  [[nodiscard]] std::int32_t last_error() const { return last_err; }
  // Grows with every preparation, cancel and free: tells a holder of an earlier result that it is no longer here.
  [[nodiscard]] std::uint64_t generation() const { return preparation; }

  // Described columns. ColName and its kin do no range check; callers stay within 1 to NCols.
  [[nodiscard]] int NCols() const { return ncols; }
  // SQLNumResultCols asked afresh; -1 when it fails.
  int ancols();
  [[nodiscard]] const std::string& ColName(int column_number) const { return described(column_number).name; }
  [[nodiscard]] int ColType(int column_number) const { return described(column_number).sql_type; }
  [[nodiscard]] std::uint64_t ColPrecision(int column_number) const { return described(column_number).precision; }
  [[nodiscard]] int ColNullable(int column_number) const { return described(column_number).nullable; }
  [[nodiscard]] int ColScale(int column_number) const { return described(column_number).scale; }
  // The first column of that name, blanks around and case aside; 0 when none.
  [[nodiscard]] int GetColNum(std::string_view name) const;
  // After a preparation that failed with Result rc_column_type: the column whose type cannot be bound (its name and
  // type can be asked); else 0.
  [[nodiscard]] int refused_column() const;
  // The bound layout: C type, bytes per row, offset of the block in the buffer, bytes of the buffer.
  [[nodiscard]] int ColCType(int column_number) const { return described(column_number).ctype; }
  [[nodiscard]] std::size_t ColWidth(int column_number) const { return described(column_number).width; }
  [[nodiscard]] std::size_t ColOffset(int column_number) const { return described(column_number).offset; }
  [[nodiscard]] std::size_t BufferBytes() const { return row_data.size(); }

  // Fetching. One row into row 0; the end of data is a failure with Result 100.
  bool Fetch();
  void Fetch_XX();
  // One block; `rows` receives how many rows stand in the buffer, never more than the rowset. False with 0 rows and no
  // call when the statement is not in use or its rowset is 1; else false with Result 100 at the end of data.
  bool ExtFetchNext(std::int64_t& rows);
  [[nodiscard]] int RowSetSize() const { return rowset_size; }
  [[nodiscard]] int RowStatus(std::int64_t row) const;
  // A fetched cell: Null, text without leading and trailing blanks, 32-bit integer, double, date-time; Empty outside
  // the rowset and columns.
  [[nodiscard]] value Getc(int column_number, std::int64_t row = 0) const;
  // Puts to_text of the cell that Getc gives at the end of `out`, without a value in between; false for Null, which has
  // no text.
  bool append_text(int column_number, std::int64_t row, std::string& out) const;
  // Whether a fetched text was longer than its cell, so that Getc gives only its beginning.
  [[nodiscard]] bool Cut(int column_number, std::int64_t row = 0) const;
  // The cells of a row as an array from 1, and of rows first..last as a matrix [column, row]; Empty outside the rowset.
  [[nodiscard]] value GetRow(std::int64_t row = 0) const;
  [[nodiscard]] value GetRows(std::int64_t first, std::int64_t last) const;
  // Fetches to the end, or `max` rows: a matrix [column, row from 0], Null without a row, error value 1 for a max
  // below 1.
  value FetchAll(std::optional<std::int64_t> max = std::nullopt);

  // Parameter markers.
  [[nodiscard]] int Nparms() const { return nparms; }
  [[nodiscard]] int Ptype(int marker) const { return parameter(marker).sql_type; }
  [[nodiscard]] std::uint64_t Pprec(int marker) const { return parameter(marker).precision; }
  [[nodiscard]] int pScale(int marker) const { return parameter(marker).scale; }
  [[nodiscard]] int PNullable(int marker) const { return parameter(marker).nullable; }
  [[nodiscard]] parameter_kind Pkind(int marker) const { return parameter(marker).kind; }

  // Binds one value per marker, each by its own kind. Empty, booleans, error values and arrays are refused.
  bool BindV(std::span<const value> values);
  void BindV_XX(std::span<const value> values);
  // The same from an array value.
  bool BindA(const array& values);
  void BindA_XX(const array& values);
  // Sets a marker of a procedure call; false, leaving its cell as it was, when the value does not fit.
  bool BindProcParm(const value& given, int marker);
  // What a marker of a procedure call holds after execution; no_such_marker or unsupported_marker otherwise.
  [[nodiscard]] value GetParm(int marker) const;
  // A default input value: 0, blanks as many as the precision, the current date and time; or an error value as GetParm.
  [[nodiscard]] value ProcParmDefault(int marker) const;

  // Parameter arrays: one statement executed for many rows at once. MrPrep prepares it for blocks of `rows` rows (1 to
  // 1000), describes and binds its markers, every cell NULL at first; result columns are left alone.
  //
  // Cells are as the markers are described, dates and timestamps as text. Where that would take more than 16 MB, long
  // texts begin with narrow cells that widen as texts come.
  bool MrPrep(std::string_view text, int rows);
  void MrPrep_XX(std::string_view text, int rows);
  [[nodiscard]] int MrPrepRows() const { return param_rows; }
  // Stores one cell (marker from 1, row from 0); false, the cell as it was, when the value cannot be converted or is
  // too long. A cell keeps its value from block to block.
  bool MrBindParm(const value& given, int marker, int row);
  // Sends rows 0 to rows - 1 in one execution. After a failure Errd tells the driver's reason and ParamOptionValue the
  // row. What becomes of the rows of a failed block is the driver's affair: SQLite keeps those before the bad one,
  // PostgreSQL none of them within a transaction.
  bool MrExecute(int rows);
  // The driver's row counter of the last execution with arrays: after a success the rows sent, after a failure where it
  // stopped, counted by some drivers from 1 (the bad row), by some from 0 (the rows before it).
  [[nodiscard]] std::int64_t ParamOptionValue() const { return static_cast<std::int64_t>(param_row); }
  // Binds a whole matrix [marker, row] to a statement prepared with Prep; the next Execute sends all its rows. Texts go
  // to text markers only.
  bool BindVM(const matrix& values);
  void BindVM_XX(const matrix& values);
  // Stores one value of such a matrix (row and marker from 1) at this offset of the parameter buffer, by the marker's
  // single-row description.
  void PutBD(int row, int marker, const value& given, std::size_t offset);
  // The bound parameter buffer, and where a marker's block of cells lies in it.
  [[nodiscard]] std::size_t ParamWidth(int marker) const { return parameter(marker).width; }
  [[nodiscard]] std::size_t ParamOffset(int marker) const { return parameter(marker).offset; }

  // Catalog queries. Each runs one ODBC catalog function and gives its whole result, its rows in the driver's order: a
  // matrix [column from 1, row from 0] whose columns catalog_tables.h lists, Null without a row, or one of the error
  // values above; Errd then tells what the driver said. Texts, in full length; 16-bit and 32-bit numbers as 32-bit
  // integers; NULL as Null. A text longer than its cell (128 characters of a name) is cut.
  //
  // An open cursor is cancelled first, and afterwards the cursor is closed and nothing is bound, also after
  // catalog_fetch_failed. After the other error values the statement is as the failure left it: call Cancel_unc before
  // the next query. "%" and "_" are wildcards where ODBC says so; nothing is escaped here.
  //
  // Null arguments of TableList and ColumnList are not given to the driver, nor are empty ones of ForeignKeyList and
  // SpecialColumns; the others are passed as they are.
  value TableList(const value& qualifier, const value& owner, const value& table, const value& type = null_t{});
  value TablePrivilegeList(std::string_view qualifier, std::string_view owner, std::string_view table);
  value PrimaryKeyList(std::string_view qualifier, std::string_view owner, std::string_view table);
  struct table_name {
    std::string_view qualifier;
    std::string_view owner;
    std::string_view table;
  };
  // The foreign keys of `foreign` that refer to `primary`; an empty one of the two stands for any table.
  value ForeignKeyList(const table_name& primary, const table_name& foreign);
  value SpecialColumns(std::uint16_t column_type, std::string_view qualifier, std::string_view owner,
                       std::string_view table, std::uint16_t scope, std::uint16_t nullable);
  value Statistics(std::string_view qualifier, std::string_view owner, std::string_view table,
                   std::uint16_t unique = SQL_INDEX_ALL, std::uint16_t accuracy = SQL_QUICK);
  value ColumnList(const value& qualifier, const value& owner, const value& table, const value& column = null_t{});
  // Five of the eight columns: qualifier, owner, name, remarks, type.
  value ProcedureList(std::string_view qualifier, std::string_view owner, std::string_view procedure);
  value ProcColumns(std::string_view qualifier, std::string_view owner, std::string_view procedure,
                    std::string_view column);

  // The first pending record; a failed execution with arrays or catalog query may have read it already, and holds it
  // until the next call.
  diagnostic_record ErrData();
  std::int32_t Errd();
  std::int32_t Errnum();

 private:
  static constexpr std::size_t most_catalog_columns = 13;

  struct column_info {
    std::string name;
    SQLSMALLINT sql_type = 0;
    SQLULEN precision = 0;
    SQLSMALLINT scale = 0;
    SQLSMALLINT nullable = 0;
    SQLSMALLINT ctype = 0;
    std::size_t width = 0;
    std::size_t offset = 0;
  };
  struct marker_layout {
    SQLSMALLINT sql_type = 0;
    SQLULEN precision = 0;
    SQLSMALLINT scale = 0;
    SQLSMALLINT nullable = 0;
    parameter_kind kind = parameter_kind::unsupported;
    SQLSMALLINT ctype = 0;
    std::size_t width = 0;
    std::size_t max_chars = 0;
    std::size_t offset = 0;
  };
  // How the markers' cells are laid out at the moment.
  enum class cell_layout { by_value, procedure, rows, matrix };

  // Records the code of a call; a diagnostic kept from an earlier one is forgotten.
  SQLRETURN record(SQLRETURN rc);
  // Records the code of a call and raises `fault` when it failed.
  void check(SQLRETURN rc, odbc_fault fault);

  void reset_descriptions();
  void prepare(std::string_view text, std::optional<std::int32_t> rowset, column_rule rule);
  void prepare_with(const std::string& bytes, int rowset, column_rule rule);
  void cancel_previous();
  void set_rowset_option(int rowset);
  // Describes `count` columns and lays out their buffer; false when a rowset that may be lowered makes it exceed 1 MB.
  bool describe_columns(int count, column_rule rule, bool may_lower);
  void describe_column(int number);
  std::size_t lay_out_columns(column_rule rule);
  void bind_columns();
  void describe_parameters(int count);
  // Lays out the cells of every marker as described, for `rows` rows; gives the bytes of all.
  std::size_t lay_out_markers(marker_cell parameter_layout::*which, std::size_t rows);
  void bind_procedure_parameters();
  void send_text(const std::string& bytes);
  // Arrays of rows. Cells that are to hold texts of any length take `text_bytes` at first where all would take too
  // much.
  void lay_out_blocks(marker_cell parameter_layout::*which, std::size_t rows, std::size_t text_bytes);
  void place_blocks();
  void widen_text_cells(std::size_t index, std::size_t wanted);
  bool place_row_value(const value& given, std::size_t index, std::size_t row);
  bool place_row_text(std::string_view text, std::size_t index, std::size_t row);
  void put_fixed(const value& given, parameter_kind kind, unsigned char* cell_start);
  void forget_blocks();
  void set_block(SQLULEN rows);
  void bind_blocks(odbc_fault fault);
  // Whether the last call failed because the driver takes no input/output arrays; its record is held otherwise.
  bool refused_in_out();
  bool execute_as_input();
  // Lay out the markers, or one, by the values' own kinds; give the bytes taken. After a refused value every marker is
  // Null.
  std::size_t lay_out_values(std::span<const value> values);
  std::size_t lay_out_value(const value& given, std::size_t index);
  void place_value(const value& given, std::size_t index);
  bool place_procedure_value(const value& given, std::size_t index);
  void bind_marker(std::size_t index, std::size_t buffer_length, odbc_fault fault);
  std::string sendable(std::string_view text);
  // Cancels, makes the call with the arguments that are given, and takes its rows.
  template <typename Call>
  value catalog(const catalog_operation& operation, std::initializer_list<value> arguments, Call call);
  value catalog_rows(const catalog_operation& operation);

  [[nodiscard]] const column_info& described(int number) const { return columns[static_cast<std::size_t>(number - 1)]; }
  [[nodiscard]] const marker_layout& parameter(int number) const {
    return markers[static_cast<std::size_t>(number - 1)];
  }
  [[nodiscard]] value cell(std::size_t column_index, std::size_t row) const;
  [[nodiscard]] SQLLEN length_word(std::size_t column_index, std::size_t row) const {
    return row_len[column_index * static_cast<std::size_t>(rowset_size) + row];
  }

  SQLHSTMT hstmt = nullptr;
  std::int32_t last_rc = 0;
  std::int32_t last_err = 0;
  bool in_use = false;
  odbccon* connection = nullptr;
  std::uint64_t preparation = 0;

  int ncols = 0;
  int nparms = 0;
  int rowset_size = 1;
  int param_rows = 1;
  std::uint32_t handle_rowset = 1;  // SQL_ROWSET_SIZE as last set on the handle, which keeps it over preparations
  std::vector<column_info> columns;
  byte_buffer row_data;
  std::vector<SQLLEN> row_len;
  std::vector<SQLUSMALLINT> row_status;

  std::vector<marker_layout> markers;
  cell_layout layout = cell_layout::by_value;
  zeroed_buffer param_data{1};
  std::vector<SQLLEN> param_len;  // cell_rows words of each marker after those of the one before it

  std::size_t cell_rows = 1;  // rows of a marker's block of cells
  SQLULEN block_rows = 1;     // rows that the next execution sends
  SQLULEN handle_block = 1;   // what SQLParamOptions last set on the handle, which keeps it over preparations
  SQLULEN param_row = 0;      // the driver counts here
  bool blocks_moved = false;  // the cells are no longer where the markers are bound
  SQLSMALLINT block_io = SQL_PARAM_INPUT_OUTPUT;

  byte_buffer catalog_row;  // one row of a catalog query; of one size, so that what is still bound to it stays valid
  std::array<SQLLEN, most_catalog_columns> catalog_len{};
  std::optional<diagnostic_record> held_diagnostic;  // read before later calls could wipe the driver's own
};
