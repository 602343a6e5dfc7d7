#pragma once

#include <QObject>
#include <QPointer>
#include <cstdint>
#include <memory>
#include <string>

#include "odbc/odbcstmt.h"

class dwf;
class mdi_host;

// A result shown in a grid window of its own: the half without a window. It owns the executed statement with its user,
// fills the window's grid with the column names and with block after block of rows, and tells which row was picked.
//
// The window and the object keep each other alive as long as the window is open. The statement may meanwhile be
// prepared anew, or killed, by the document that it belongs to: the window then keeps the rows that it has and fetches
// no more.
class DataWindow : public QObject, public std::enable_shared_from_this<DataWindow> {
  Q_OBJECT

 public:
  // How SQL NULL is shown.
  static constexpr const char* null_text = "#NULL#";

  // A data window whose empty form is shown as a document of the frame.
  static std::shared_ptr<DataWindow> open(mdi_host& host);

  // The statement's text, which is only kept, and the executed statement.
  void SetStatement(std::string text, std::shared_ptr<odbcstmt> statement);
  // An empty grid with the statement's columns, their names in row 0.
  void SetHeaders();
  // Shows the rows that the caller's first fetch left in the statement's buffer.
  void FetchFirst(std::int64_t rows);
  // Fetches the next block and shows its rows below the others. At the end of data, after a failure and once the
  // statement holds another result MoreRows becomes false, and nothing is fetched any more. The driver's error is shown
  // as soon as events are processed again.
  void FetchMore();
  // Raises RowSelected.
  void RowPicked(int row, int col);

  // Makes MoreRows false when the statement no longer holds this result, which the window's caption then says.
  void notice_lost_result();

  // The window; none once it is closed.
  [[nodiscard]] dwf* form() const;
  [[nodiscard]] const std::string& statement_text() const { return text_; }

  std::int64_t RowsFetched = 0;     // data rows in the grid
  bool IgnoreRowColChange = false;  // while the object moves the grid's cursor itself
  bool MoreRows = true;             // while the statement may have more rows

 signals:
  // The user has picked a cell, in the grid's numbers.
  void RowSelected(int& row, int& col);

 private:
  DataWindow() = default;
  void append_rows(std::int64_t rows);
  void fetch_block();

  QPointer<dwf> form_;
  std::string text_;
  std::shared_ptr<odbcstmt> statement_;
  std::uint64_t generation_ = 0;  // the statement's when this result was handed over
};
