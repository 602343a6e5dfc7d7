#pragma once

#include <QMainWindow>
#include <QPointer>
#include <memory>
#include <optional>

#include "editor/statement_pipeline.h"
#include "platform/mdi_host.h"

namespace Ui {
class form1;
}
class document_commands;

// An editor document: a text, a statement object of its own on the session's connection, and the panels of its runs. It
// shows and forwards; the pipeline does the work.
class form1 : public QMainWindow,
              public mdi_document,
              public mdi_text_document,
              private pipeline_host,
              private pipeline_status {
  Q_OBJECT

 public:
  // A document of the frame `host`, not shown yet.
  explicit form1(mdi_host& host);
  ~form1() override;

  // Opens a new document in the frame, with a caption, a file name ("" for none) and a text.
  static form1* open_new(mdi_host& host, const QString& caption, const QString& file_name = {},
                         const QString& file_to_load = {});

  // Opens the unsaved text that was closed last in a new document; nullptr when there is none.
  static form1* reopen_closed(mdi_host& host);

  [[nodiscard]] QList<QAction*> menu_bar_actions() const override;
  QString insert_text(const QString& text) override;
  [[nodiscard]] const QString& file_name() const { return MyFilename; }
  [[nodiscard]] const std::shared_ptr<odbcstmt>& statement() const { return doc_stmt; }
  [[nodiscard]] bool running() const { return running_; }

  void load_Click();

 signals:
  // A run has begun or ended.
  void running_changed(bool running);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void Form_Load();
  void Form_Unload();
  void mnuMDINew_Click();
  void exe_current_Click();
  void exe_all_Click();
  void check_cur_stmt_syntax_Click();
  void check_all_stmt_syntax_Click();
  void mnu_speed_test_Click();
  void m_commit_Click();
  void m_Rollback_Click();
  void mnuEvnironmentSendJobLogOutfile_Click();

  void fill_context_menu();
  void set_running(bool running);
  // What is done with a statement: a run, a check or a speed test.
  using pipeline_command = void (*)(statement_pipeline& pipeline, const std::string& text, const run_options& options);
  // Does it with one statement's bytes; false when the document was closed meanwhile.
  bool run_bytes(const std::string& bytes, pipeline_command command);
  // With the statement under the caret; tells when there is none.
  void run_current(std::string_view no_statement, const char* title, pipeline_command command);
  // With every statement in turn, selecting each on the way where the user is to see it.
  void run_all(bool highlighted, pipeline_command command);

  bool enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool is_call) override;
  void show_returned_parameters(const std::shared_ptr<odbcstmt>& statement) override;
  [[nodiscard]] bool data_window_wanted() const override;
  void open_data_window(const std::string& text, const std::shared_ptr<odbcstmt>& statement,
                        std::int64_t rows) override;
  void set_panel(panel which, const std::string& text) override;
  void refresh() override;

  std::unique_ptr<Ui::form1> ui_;
  mdi_host& host_;
  QString MyFilename;
  document_commands* commands_ = nullptr;
  std::shared_ptr<odbcstmt> doc_stmt;
  std::shared_ptr<statement_pipeline> pipeline_;
  bool running_ = false;
};

// Reads a file into a new document of the frame. A file that cannot be read is told, and no document is made.
form1* open_document(mdi_host& host, const QString& path);
