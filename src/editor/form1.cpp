#include "editor/form1.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMdiSubWindow>
#include <QMenuBar>

#include "as400/qcmdexc.h"
#include "base/user_interface.h"
#include "catalog/outview.h"
#include "datawindow/datawindow.h"
#include "editor/document_commands.h"
#include "editor/statement_text.h"
#include "params/drivenquery.h"
#include "params/fbindparms.h"
#include "params/fshowparms.h"
#include "shell/session.h"
#include "ui_form1.h"
#include "widgets/focused_text.h"
#include "widgets/twips.h"

namespace {

constexpr int width_in_twips = 8200;
constexpr int height_in_twips = 4000;

struct panel_text {
  const char* initial;
  const char* tooltip;
  int stretch;
};
constexpr panel_text panel_texts[panel_count] = {
    {"Status:", "Status of current statement", 1},
    {"0.00000", "Preperation time of last statement", 0},
    {"0.00000", "Execution time of last satement", 0},
    {"0.00000", "Fetch time of last statement, (if applies)", 0},
    {"0.00000", "Rows per second for last fetch operation(s)", 0},
    {"0", "Rows retrieved by last statement executed, (if applies)", 0},
    {"0.00000", "Render time of last statement, if applies", 0},
};

void run_command(statement_pipeline& pipeline, const std::string& text, const run_options& options) {
  pipeline.run_stmt(text, options);
}
void check_command(statement_pipeline& pipeline, const std::string& text, const run_options&) {
  pipeline.prep_stmt(text);
}
void speed_command(statement_pipeline& pipeline, const std::string& text, const run_options& options) {
  pipeline.speed_stmt(text, options);
}

}  // namespace

form1::form1(mdi_host& host)
    : ui_(std::make_unique<Ui::form1>()), host_(host), doc_stmt(std::make_shared<odbcstmt>()),
      pipeline_(std::make_shared<statement_pipeline>(doc_stmt, static_cast<pipeline_host&>(*this),
                                                     static_cast<pipeline_status&>(*this))) {
  ui_->setupUi(this);
  for (const panel_text& each : panel_texts) ui_->mSB->add_panel(each.initial, each.tooltip, each.stretch);
  // The menus stand in the frame's menu bar while the document is active.
  menuBar()->setNativeMenuBar(false);
  menuBar()->hide();
  setFocusProxy(ui_->Text1);
  commands_ = new document_commands(*this, *ui_->Text1, MyFilename, host_);

  connect(ui_->mnuMDINew, &QAction::triggered, this, &form1::mnuMDINew_Click);
  connect(ui_->load, &QAction::triggered, commands_, &document_commands::load_Click);
  connect(ui_->mnuOpenNewWindow, &QAction::triggered, commands_, &document_commands::mnuOpenNewWindow_Click);
  connect(ui_->save, &QAction::triggered, commands_, &document_commands::save_Click);
  connect(ui_->mnuSaveAs, &QAction::triggered, commands_, &document_commands::mnuSaveAs_Click);
  connect(ui_->clear_editor, &QAction::triggered, commands_, &document_commands::clear_editor_Click);
  connect(ui_->exit, &QAction::triggered, this,
          [this] { parentWidget() != nullptr ? parentWidget()->close() : close(); });
  connect(ui_->cut, &QAction::triggered, this, &focused_text::cut);
  connect(ui_->copy, &QAction::triggered, this, &focused_text::copy);
  connect(ui_->paste, &QAction::triggered, this, &focused_text::paste);
  connect(ui_->mnuDelete, &QAction::triggered, this, &focused_text::delete_selection);
  connect(ui_->mnuEditFind, &QAction::triggered, commands_, &document_commands::mnuEditFind_Click);
  connect(ui_->find_again, &QAction::triggered, commands_, &document_commands::find_again_Click);
  connect(ui_->undo, &QAction::triggered, ui_->Text1, &sql_text_box::undo);
  connect(ui_->redo, &QAction::triggered, ui_->Text1, &sql_text_box::redo);
  connect(ui_->select_all, &QAction::triggered, this, [this] { ui_->Text1->selectAll(); });
  connect(ui_->choose_font, &QAction::triggered, commands_, &document_commands::choose_font_Click);
  connect(ui_->mnuToolsDrivenQuery, &QAction::triggered, this, [this] { show_driven_query(this); });
  connect(ui_->Columns_listing, &QAction::triggered, this, [this] { show_columns_helper(host_); });
  connect(ui_->exe_current, &QAction::triggered, this, &form1::exe_current_Click);
  connect(ui_->exe_all, &QAction::triggered, this, &form1::exe_all_Click);
  connect(ui_->check_cur_stmt_syntax, &QAction::triggered, this, &form1::check_cur_stmt_syntax_Click);
  connect(ui_->check_all_stmt_syntax, &QAction::triggered, this, &form1::check_all_stmt_syntax_Click);
  connect(ui_->mnu_speed_test, &QAction::triggered, this, &form1::mnu_speed_test_Click);
  connect(ui_->m_commit, &QAction::triggered, this, &form1::m_commit_Click);
  connect(ui_->m_Rollback, &QAction::triggered, this, &form1::m_Rollback_Click);
  connect(ui_->options_panel, &QAction::triggered, this, [this] { host_.show_options(); });
  connect(ui_->mnuDisplay400JobInfo, &QAction::triggered, this, [this] { host_.show_job_settings(); });
  connect(ui_->mnuEvnironmentSendJobLogOutfile, &QAction::triggered, this,
          &form1::mnuEvnironmentSendJobLogOutfile_Click);
  connect(ui_->mnuHelpContents, &QAction::triggered, this, [this] { host_.show_help(); });
  connect(ui_->about, &QAction::triggered, this, [this] { host_.show_about(); });
  connect(ui_->mnuWindowList, &QMenu::aboutToShow, this, [this] { host_.fill_window_list(*ui_->mnuWindowList); });
  fill_context_menu();
  Form_Load();
}

form1::~form1() { Form_Unload(); }

form1* form1::open_new(mdi_host& host, const QString& caption, const QString& file_name, const QString& file_to_load) {
  auto document = std::make_unique<form1>(host);
  document->setWindowTitle(caption);
  std::string why;
  if (!file_to_load.isEmpty() && !document->commands_->load_file(file_to_load, caption, file_name, why)) {
    tell_bad_file(file_to_load, why);
    return nullptr;
  }
  form1* shown = document.release();
  host.show_child(shown);
  return shown;
}

form1* form1::reopen_closed(mdi_host& host) {
  auto document = std::make_unique<form1>(host);
  if (!document->commands_->take_latest_closed()) return nullptr;
  form1* shown = document.release();
  host.show_child(shown);
  return shown;
}

form1* open_document(mdi_host& host, const QString& path) {
  return form1::open_new(host, document_caption(path), path, path);
}

QList<QAction*> form1::menu_bar_actions() const { return menuBar()->actions(); }

QString form1::insert_text(const QString& text) {
  if (ui_->Text1->insert_at_caret(text)) return {};
  return "The document is kept in ISO 8859-1, which lacks a character of the text. Nothing was inserted.";
}

void form1::Form_Load() {
  if (!doc_stmt->Make(session::g_con)) session::g_con.Errd();
  resize(twips_to_pixels(width_in_twips, *this), twips_to_pixels(height_in_twips, *this));
}

// Whatever still waits in a run of this document finds the pipeline detached and ends. Windows opened from the document
// keep the statement object, but not its handle.
void form1::Form_Unload() {
  commands_->unload();
  pipeline_->detach();
  doc_stmt->Kill();
}

void form1::closeEvent(QCloseEvent* event) {
  Form_Unload();
  event->accept();
}

// What every editor offers beside its menus.
void form1::fill_context_menu() {
  auto* separators = ui_->Text1;
  const auto separator = [separators] {
    auto* line = new QAction(separators);
    line->setSeparator(true);
    return line;
  };
  ui_->redo->setShortcuts({Qt::CTRL | Qt::Key_Y, Qt::CTRL | Qt::SHIFT | Qt::Key_Z});
  ui_->Text1->addActions({ui_->undo, ui_->redo, separator(), ui_->cut, ui_->copy, ui_->paste, ui_->mnuDelete,
                          ui_->select_all, separator(), ui_->mnuEditFind, ui_->find_again, separator(),
                          ui_->choose_font});
  ui_->Text1->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void form1::mnuMDINew_Click() { open_new(host_, document_caption("UnNamed")); }
void form1::load_Click() { commands_->load_Click(); }

void form1::set_running(bool running) {
  running_ = running;
  for (QAction* each :
       {ui_->exe_current, ui_->exe_all, ui_->check_cur_stmt_syntax, ui_->check_all_stmt_syntax, ui_->mnu_speed_test}) {
    each->setEnabled(!running);
  }
  emit running_changed(running);
}

bool form1::run_bytes(const std::string& bytes, pipeline_command command) {
  // The run outlives the document when the document is closed while it waits.
  const std::shared_ptr<statement_pipeline> run = pipeline_;
  const run_options options{.ext_fetch = session::ext_fetch,
                            .ext_fetch_rows = session::ext_fetch_rows,
                            .speed_test_rows = session::speed_test_rows,
                            .dw_rows = session::dw_rows};
  command(*run, document_to_utf8(bytes, ui_->Text1->encoding()), options);
  return !run->detached();
}

void form1::run_current(std::string_view no_statement, const char* title, pipeline_command command) {
  if (running_) return;
  const auto statement = get_sql_str(ui_->Text1->bytes(), ui_->Text1->caret());
  if (!statement) {
    show_user_error(std::string(no_statement), title);
    return;
  }
  set_running(true);
  if (run_bytes(std::string(*statement), command)) set_running(false);
}

void form1::run_all(bool highlighted, pipeline_command command) {
  if (running_) return;
  const QPointer<form1> here(this);
  const std::shared_ptr<statement_pipeline> run = pipeline_;
  const auto gone = [&] { return here.isNull() || run->detached(); };
  set_running(true);
  ui_->Text1->set_caret(1);
  for (const statement_span& span : statement_spans(ui_->Text1->bytes())) {
    if (highlighted) {
      ui_->Text1->select_bytes(span.start, span.length);
      ui_->Text1->repaint();
      ui_->Text1->setFocus();
      QCoreApplication::processEvents();
      if (gone()) return;
    }
    const std::string_view now = ui_->Text1->bytes();
    // The text may have become shorter while events were processed.
    if (span.start > now.size()) break;
    if (!run_bytes(std::string(now.substr(span.start, span.length)), command) || gone()) return;
  }
  set_running(false);
}

void form1::exe_current_Click() { run_current(no_statement_to_execute, "User Error", run_command); }
void form1::exe_all_Click() { run_all(true, run_command); }
void form1::check_cur_stmt_syntax_Click() { run_current(no_statement_to_check, "User Error!", check_command); }
void form1::check_all_stmt_syntax_Click() { run_all(false, check_command); }
void form1::mnu_speed_test_Click() { run_current(no_statement_to_speed_test, "User Error!", speed_command); }

void form1::m_commit_Click() { session::g_con.Commit(); }
void form1::m_Rollback_Click() { session::g_con.Rollback(); }

void form1::mnuEvnironmentSendJobLogOutfile_Click() {
  if (running_) return;
  const std::string call = qcmdexc_call("DSPJOBLOG OUTPUT(*OUTFILE) OUTFILE(CODE/JLTEST)", ".");
  if (!doc_stmt->Prep(call) || !doc_stmt->Execute()) doc_stmt->Errd();
}

bool form1::enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool is_call) {
  return wait_for_parameters(this, statement, is_call);
}

void form1::show_returned_parameters(const std::shared_ptr<odbcstmt>& statement) {
  ::show_returned_parameters(this, statement);
}

bool form1::data_window_wanted() const { return ui_->data_window->isChecked(); }

void form1::open_data_window(const std::string& text, const std::shared_ptr<odbcstmt>& statement, std::int64_t rows) {
  const std::shared_ptr<DataWindow> window = DataWindow::open(host_);
  window->SetStatement(text, statement);
  window->SetHeaders();
  window->FetchFirst(rows);
}

void form1::set_panel(panel which, const std::string& text) {
  ui_->mSB->set_text(static_cast<int>(which), QString::fromStdString(text));
}

void form1::refresh() { ui_->mSB->repaint(); }
