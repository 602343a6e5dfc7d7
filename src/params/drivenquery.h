#pragma once

#include <QDialog>
#include <memory>

#include "odbc/odbcstmt.h"
#include "params/driven_run.h"

namespace Ui {
class DrivenQuery;
}

// Runs a statement with markers once for every row of a source query, on statements of its own on the session's
// connection. Closing it in mid-run ends the run after the current row.
class DrivenQuery : public QDialog {
  Q_OBJECT

 public:
  explicit DrivenQuery(QWidget* parent);
  // Frees both statements.
  ~DrivenQuery() override;

  // Makes the statements; false, after telling why, when the connection gives none. The form may be gone by then.
  bool Form_Load();
  [[nodiscard]] bool running() const { return running_; }

  void done(int result) override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  class watcher;

  void Command1_Click();
  void Command2_Click();
  void stop_Click();
  void show_running(bool running);
  void show_counters(const driven_counters& counters);
  void finish(const driven_result& result);

  std::unique_ptr<Ui::DrivenQuery> ui_;
  std::shared_ptr<odbcstmt> target_ = std::make_shared<odbcstmt>();
  std::shared_ptr<odbcstmt> source_ = std::make_shared<odbcstmt>();
  bool running_ = false;
  bool stopping_ = false;
};

// Opens the form over the window around `parent` (the frame) and returns at once; the other windows wait until it is
// closed. While one is open it is brought to the front instead.
void show_driven_query(QWidget* parent);
