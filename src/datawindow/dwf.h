#pragma once

#include <QMainWindow>
#include <memory>

#include "base/value.h"
#include "platform/mdi_host.h"

class DataWindow;
class flexgrid;
class QKeyEvent;
namespace Ui {
class dwf;
}

// The visible half of a data window: a document of the frame with one grid, row 0 the column names and column 0 the row
// numbers. What is done here changes the grid only, never the database.
class dwf : public QMainWindow, public mdi_document {
  Q_OBJECT

 public:
  explicit dwf(mdi_host& host);
  ~dwf() override;

  // The object that owns this form and fills its grid.
  std::shared_ptr<DataWindow> Caller;

  [[nodiscard]] flexgrid& grid() const;
  [[nodiscard]] QList<QAction*> menu_bar_actions() const override;

  // Makes the cell current and gives it the value's text, "#NULL#" for Null; a column too narrow for it becomes wider,
  // up to 3500 twips.
  void Dadd(int row, int col, const value& shown);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Form_GotFocus();
  void dwg_DblClick();
  // True for a key that is consumed.
  bool dwg_KeyDown(const QKeyEvent& event);
  void dwg_MouseUp(const QPoint& position);
  void dwg_RowColChange();
  bool Text1_KeyDown(const QKeyEvent& event);
  void mnuClipCells_Click();
  void mnuClipCopy_Click();
  void mnuAggCol_Click();
  void mnuSortAscending_Click();
  void mnuSortDesc_Click();

  void fetch_more();
  void sort_rows(bool ascending);
  void start_editor();
  void leave_editor();

  std::unique_ptr<Ui::dwf> ui_;
  QString edited_;  // what Text1 held when the editing began
};
