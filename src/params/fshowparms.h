#pragma once

#include <QDialog>
#include <memory>

#include "odbc/odbcstmt.h"

namespace Ui {
class fShowParms;
}

// The parameters of a call as they stand after its execution. It keeps its own copy of the values, so that it stays
// right when the statement goes on or away, and deletes itself when it is closed.
class fShowParms : public QDialog {
  Q_OBJECT

 public:
  explicit fShowParms(QWidget* parent);
  ~fShowParms() override;

  // The executed statement; set by the caller before ParmsSetup.
  std::shared_ptr<odbcstmt> Stmt;

  // Fills the lines. A type that cannot be handled is told and answers false, with no line filled; the form may be gone
  // by then, its parent closed while the message stood.
  bool ParmsSetup();
  void RePaintME();

 private:
  void Command1_Click();

  std::unique_ptr<Ui::fShowParms> ui_;
};

// Opens the view for an executed call and returns at once. It belongs to the window around `parent` (the frame), not to
// the document, and stays until the user closes it.
void show_returned_parameters(QWidget* parent, std::shared_ptr<odbcstmt> statement);
