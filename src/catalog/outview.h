#pragma once

#include <QWidget>
#include <memory>

#include "catalog/catalog_reader.h"
#include "odbc/odbcstmt.h"
#include "platform/mdi_host.h"

class name_box;
namespace Ui {
class outview;
}

// The columns helper: finds qualifiers, libraries, tables and columns, and takes column names over into a statement.
// Opening it makes three catalog calls; choosing a table makes one. Whatever fails is told once and leaves the lists
// that it would have filled empty.
class outview : public QWidget {
  Q_OBJECT

 public:
  explicit outview(mdi_host& host);
  ~outview() override;

  // Fills the lists. Ends with the messages of what failed, during which the window may be closed.
  void Form_Load();
  // Whether the window is closed, and about to be deleted.
  [[nodiscard]] bool unloaded() const { return unloaded_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Form_Unload();
  void Command1_Click();
  void Command2_Click();
  void Command3_Click();
  void Command4_Click();
  void Command5_Click();
  void insert_into_document_Click();
  void Libs_Click();
  void tables_Click();
  void GRID_DblClick();
  void title_row_DblClick();
  void List1_DblClick();

  void load_tables(catalog_reader& catalog);
  void grid_clear(const QString& hint);
  void grid_populate();
  // What the three boxes say.
  [[nodiscard]] table_key chosen_table() const;
  // The collected names joined by commas; "" for none.
  [[nodiscard]] QString collected() const;

  std::unique_ptr<Ui::outview> ui_;
  mdi_host& host_;
  odbcstmt statement_;
  bool unloaded_ = false;
};

// Shows the columns helper as a child of the frame: the one that is open, or a new one.
void show_columns_helper(mdi_host& host);
