#pragma once

#include <QWidget>
#include <memory>
#include <string>

#include "catalog/catalog_reader.h"
#include "odbc/odbcstmt.h"
#include "platform/mdi_host.h"

class flexgrid;
namespace Ui {
class frmTableInfo;
}

// The primary key, the foreign keys both ways and the indexes of one table. It asks the catalog once for each table, in
// four calls, however often it is activated.
class frmTableInfo : public QWidget {
  Q_OBJECT

 public:
  frmTableInfo();
  ~frmTableInfo() override;

  // The table to show; set by the caller before the window is shown or activated.
  std::string qualifier;
  std::string library;
  std::string table;

  // Shows the table if another one stands in the grids. Ends with the messages of what failed, during which the window
  // may be closed.
  void refresh();
  // Whether the window is closed, and about to be deleted.
  [[nodiscard]] bool unloaded() const { return unloaded_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void Form_Load();
  void Form_Activate();
  void Form_GotFocus();
  void Form_Unload();
  void Command1_Click();

  void share_width();

  std::unique_ptr<Ui::frmTableInfo> ui_;
  odbcstmt statement_;
  table_key shown_;
  bool grown_ = false;
  bool unloaded_ = false;
};

// Shows a table in the one table information window, opening it as a child of the frame where none is open.
void describe_table(mdi_host& host, const table_key& table);
