// Result columns: binding, single rows and rowsets.
#include "convert.h"
#include "driver_state.h"

#include <fmt/format.h>

#include <algorithm>

using namespace scripted;

namespace {

SQLULEN row_total(const statement& stmt) {
  const answer& script = *stmt.script;
  const SQLULEN all = script.generated ? script.generated->count : script.rows.size();
  const SQLULEN max_rows = stmt.option(SQL_MAX_ROWS);
  return max_rows > 0 ? std::min(all, max_rows) : all;
}

bool store_cell(const answer& script, SQLULEN row, std::size_t index, const binding& place) {
  if (script.generated) return store(script.generated->cell_at(row, index), place);
  static const cell missing;  // a script row shorter than its columns reads as Null
  const auto& cells = script.rows[row];
  return store(index < cells.size() ? cells[index] : missing, place);
}

// Returns whether a cell was cut. Slot is the row's place in the bound arrays.
bool deliver(const statement& stmt, SQLULEN row, SQLULEN slot) {
  bool cut = false;
  const answer& script = *stmt.script;
  for (const auto& [number, bound] : stmt.columns) {
    if (number > script.columns.size()) break;
    const std::size_t index = number - 1U;
    const SQLSMALLINT c_type = actual_c_type(bound.c_type, script.columns[index].sql_type);
    cut = store_cell(script, row, index, at_row(bound, c_type, slot)) || cut;
  }
  return cut;
}

void start_fetching(statement& stmt, fetching mode) {
  if (!stmt.open) throw call_stopped("24000", "no cursor is open");
  if (stmt.mode != fetching::not_yet && stmt.mode != mode)
    throw call_stopped("S1010", "SQLFetch and SQLExtendedFetch on one cursor");
  stmt.mode = mode;
}

const failure* failure_at(const statement& stmt, SQLULEN row) {
  const auto found = stmt.script->fetch_failures.find(row);
  return found == stmt.script->fetch_failures.end() ? nullptr : &found->second;
}

// One rowset on its way into the bound arrays.
struct rowset {
  statement& stmt;
  SQLUSMALLINT* status;
  SQLULEN fetched = 0;
  SQLULEN bad = 0;
  bool cut = false;

  void mark(SQLUSMALLINT what) {
    if (status) status[fetched] = what;
  }

  void spoil(const failure& why) {
    stmt.warn(why);
    mark(SQL_ROW_ERROR);
    ++bad;
  }

  void take_next_row() {
    const SQLULEN row = stmt.next_row++;
    mark(SQL_ROW_SUCCESS);
    if (const failure* scripted_failure = failure_at(stmt, row)) {
      mark(SQL_ROW_ERROR);
      if (scripted_failure->rc != SQL_SUCCESS_WITH_INFO) throw call_stopped(*scripted_failure);
      spoil(*scripted_failure);
    } else {
      try {
        cut = deliver(stmt, row, fetched) || cut;
      } catch (const call_stopped& stop) {  // no conversion: the row is lost, not the rowset
        spoil(stop.what);
      }
    }
    ++fetched;
  }
};

SQLRETURN fetch_rowset(statement& stmt, SQLULEN* fetched, SQLUSMALLINT* status) {
  const SQLULEN size = stmt.option(SQL_ROWSET_SIZE);
  const SQLULEN total = row_total(stmt);
  put(fetched, 0);
  if (status) std::fill_n(status, size, SQLUSMALLINT{SQL_ROW_NOROW});
  if (stmt.next_row >= total) return SQL_NO_DATA_FOUND;
  rowset rows{stmt, status};
  try {
    while (rows.fetched < size && stmt.next_row < total) rows.take_next_row();
  } catch (...) {
    put(fetched, rows.fetched);
    throw;
  }
  put(fetched, state().rows_fetched_lie.value_or(rows.fetched));
  if (rows.cut) stmt.warn_truncated();
  return size == 1 && rows.bad == 1 ? SQLRETURN{SQL_ERROR} : SQLRETURN{SQL_SUCCESS};
}

}  // namespace

SQLRETURN SQLBindCol(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT c_type, SQLPOINTER buffer, SQLLEN buffer_length,
                     SQLLEN* length) {
  const auto shown_args = args(number, c_type, buffer, buffer_length, static_cast<void*>(length));
  return on<statement>(raw, "SQLBindCol", shown_args, [&](statement& stmt) {
    if (number == 0) throw call_stopped("S1002", "column number 0");
    const binding bound{c_type, buffer, buffer_length, length};
    require_sound(bound);
    if (buffer || length)
      stmt.columns[number] = bound;
    else
      stmt.columns.erase(number);
  });
}

SQLRETURN SQLFetch(SQLHSTMT raw) {
  return on<statement>(raw, "SQLFetch", {}, [](statement& stmt) -> SQLRETURN {
    start_fetching(stmt, fetching::single_rows);
    if (stmt.next_row >= row_total(stmt)) return SQL_NO_DATA_FOUND;
    const SQLULEN row = stmt.next_row++;
    if (const failure* scripted_failure = failure_at(stmt, row)) stmt.raise(*scripted_failure);
    if (deliver(stmt, row, 0)) stmt.warn_truncated();
    return SQL_SUCCESS;
  });
}

SQLRETURN SQLExtendedFetch(SQLHSTMT raw, SQLUSMALLINT fetch_type, SQLLEN row, SQLULEN* fetched, SQLUSMALLINT* status) {
  return on<statement>(raw, "SQLExtendedFetch", args(fetch_type, row), [&](statement& stmt) -> SQLRETURN {
    start_fetching(stmt, fetching::rowsets);
    if (fetch_type != SQL_FETCH_NEXT)
      throw call_stopped("S1106", fmt::format("fetch type {} on a forward-only cursor", fetch_type));
    return fetch_rowset(stmt, fetched, status);
  });
}
