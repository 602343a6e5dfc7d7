#pragma once

#include <QDialog>
#include <cstdint>
#include <memory>

#include "odbc/odbcstmt.h"

namespace Ui {
class fBindParms;
}

// Asks for a value for every parameter marker of a prepared statement and binds them in one step. Not modal: whoever
// opens it waits until it is done.
class fBindParms : public QDialog {
  Q_OBJECT

 public:
  explicit fBindParms(QWidget* parent);
  ~fBindParms() override;

  // Set by the caller before ParmsSetup.
  std::shared_ptr<odbcstmt> Stmt;
  bool IsProcCall = false;
  // True when the values were bound; false when the user gave up.
  bool BindOK = false;
  // True when the dialog has finished either way; finished() is emitted then.
  bool Done = false;

  // Fills the lines from the statement. A type that cannot be handled is told and answers false; the dialog may be gone
  // by then, its parent closed while the message stood.
  bool ParmsSetup();
  void RePaintME();
  // The statement is still prepared as it was at ParmsSetup.
  [[nodiscard]] bool still_prepared() const { return Stmt->generation() == preparation_; }

  bool eventFilter(QObject* watched, QEvent* event) override;
  void done(int result) override;

 private:
  void Command1_Click();
  void Command2_Click();

  std::unique_ptr<Ui::fBindParms> ui_;
  std::uint64_t preparation_ = 0;
};

// Shows the binding dialog for a prepared statement and processes events until it is done: true when values are bound
// to every marker, false when the statement must not be executed. Closing the dialog, closing or deleting `parent` (the
// document) or a window around it, and the program's end give up; so does a statement that was prepared anew or freed
// meanwhile.
//
// Waits of several documents nest: each runs its own event loop inside that of the wait before it. A dialog may be done
// in any order, but a wait returns only after those begun later have returned; until then its document goes on waiting,
// its values bound. Each wait ends with its own dialog's result. After the call everything that may have been closed
// must be looked at again, `parent` included.
bool wait_for_parameters(QWidget* parent, std::shared_ptr<odbcstmt> statement, bool is_call);
