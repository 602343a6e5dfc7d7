#include "editor/form1.h"

#include <fmt/format.h>

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMdiSubWindow>
#include <QMenuBar>

#include "base/files.h"
#include "base/user_interface.h"
#include "datawindow/datawindow.h"
#include "editor/statement_text.h"
#include "params/fbindparms.h"
#include "params/fshowparms.h"
#include "platform/file_dialogs.h"
#include "platform/saved_file.h"
#include "shell/session.h"
#include "ui_form1.h"
#include "widgets/twips.h"

namespace {

constexpr int width_in_twips = 8200;
constexpr int height_in_twips = 4000;

const file_dialog sql_files{"Sorvane SQL Files", "SQL Files|*.sql", "sql"};

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

QString caption_of(const QString& path) { return "Mirelta Editor: " + path; }

void run_command(statement_pipeline& pipeline, const std::string& text, const run_options& options) {
  pipeline.run_stmt(text, options);
}
void check_command(statement_pipeline& pipeline, const std::string& text, const run_options&) {
  pipeline.prep_stmt(text);
}
void speed_command(statement_pipeline& pipeline, const std::string& text, const run_options& options) {
  pipeline.speed_stmt(text, options);
}

void tell_bad_file(const QString& path, const std::string& why) {
  show_message({"Bad File Name!\rI can not open this document: " + path.toStdString(), "User Error",
                message_icon::question, message_buttons::ok, why});
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

  connect(ui_->mnuMDINew, &QAction::triggered, this, &form1::mnuMDINew_Click);
  connect(ui_->load, &QAction::triggered, this, &form1::load_Click);
  connect(ui_->save, &QAction::triggered, this, &form1::save_Click);
  connect(ui_->mnuSaveAs, &QAction::triggered, this, &form1::mnuSaveAs_Click);
  connect(ui_->exit, &QAction::triggered, this,
          [this] { parentWidget() != nullptr ? parentWidget()->close() : close(); });
  connect(ui_->exe_current, &QAction::triggered, this, &form1::exe_current_Click);
  connect(ui_->exe_all, &QAction::triggered, this, &form1::exe_all_Click);
  connect(ui_->check_cur_stmt_syntax, &QAction::triggered, this, &form1::check_cur_stmt_syntax_Click);
  connect(ui_->check_all_stmt_syntax, &QAction::triggered, this, &form1::check_all_stmt_syntax_Click);
  connect(ui_->mnu_speed_test, &QAction::triggered, this, &form1::mnu_speed_test_Click);
  connect(ui_->m_commit, &QAction::triggered, this, &form1::m_commit_Click);
  connect(ui_->m_Rollback, &QAction::triggered, this, &form1::m_Rollback_Click);
  connect(ui_->mnuHelpContents, &QAction::triggered, this, [this] { host_.show_help(); });
  connect(ui_->about, &QAction::triggered, this, [this] { host_.show_about(); });
  connect(ui_->mnuWindowList, &QMenu::aboutToShow, this, [this] { host_.fill_window_list(*ui_->mnuWindowList); });
  Form_Load();
}

form1::~form1() { Form_Unload(); }

form1* form1::open_new(mdi_host& host, const QString& caption, const QString& file_name, const QString& file_to_load) {
  auto document = std::make_unique<form1>(host);
  if (!file_to_load.isEmpty()) {
    std::string why;
    if (!document->load_file(file_to_load, why)) {
      tell_bad_file(file_to_load, why);
      return nullptr;
    }
  }
  document->setWindowTitle(caption);
  document->MyFilename = file_name;
  form1* shown = document.release();
  host.show_child(shown);
  return shown;
}

form1* open_document(mdi_host& host, const QString& path) {
  return form1::open_new(host, caption_of(path), path, path);
}

QList<QAction*> form1::menu_bar_actions() const { return menuBar()->actions(); }

void form1::Form_Load() {
  if (!doc_stmt->Make(session::g_con)) session::g_con.Errd();
  resize(twips_to_pixels(width_in_twips, *this), twips_to_pixels(height_in_twips, *this));
}

// Whatever still waits in a run of this document finds the pipeline detached and ends. Windows opened from the document
// keep the statement object, but not its handle.
void form1::Form_Unload() {
  pipeline_->detach();
  doc_stmt->Kill();
}

void form1::closeEvent(QCloseEvent* event) {
  Form_Unload();
  event->accept();
}

bool form1::load_file(const QString& path, std::string& why) {
  file_content content = read_whole_file(path.toStdString());
  if (!content.ok()) {
    why = content.error;
    return false;
  }
  ui_->Text1->set_document(document_from_file(std::move(content.bytes)));
  return true;
}

void form1::mnuMDINew_Click() { open_new(host_, caption_of("UnNamed")); }

void form1::load_Click() {
  const QPointer<form1> here(this);
  const QString path = file_dialogs::current().open(sql_files, this);
  if (path.isEmpty() || here.isNull()) return;
  std::string why;
  if (!load_file(path, why)) {
    tell_bad_file(path, why);
    return;
  }
  setWindowTitle(caption_of(path));
  MyFilename = path;
}

void form1::save_Click() {
  if (MyFilename.isEmpty()) {
    mnuSaveAs_Click();
  } else {
    save_as(MyFilename);
  }
}

void form1::mnuSaveAs_Click() {
  const QPointer<form1> here(this);
  const QString name = file_dialogs::current().save(sql_files, MyFilename, this);
  if (!name.isEmpty() && !here.isNull()) save_as(name);
}

void form1::save_as(const QString& name) {
  std::string why;
  if (!write_whole_file(name.toStdString(), file_from_document(ui_->Text1->document()), why)) {
    show_message({fmt::format("The filename you supplied: {} is not valid.....  Try Again.", name.toStdString()),
                  "User Error", message_icon::question, message_buttons::ok, why});
    return;
  }
  ui_->Text1->setModified(false);
  setWindowTitle(caption_of(name));
  MyFilename = name;
  show_message({"Output Saved!\rFile: " + name.toStdString(), "Message", message_icon::none, message_buttons::ok, {}});
}

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
