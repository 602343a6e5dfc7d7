#include "shell/mainmdi.h"

#include <fmt/format.h>

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDateTime>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QPointer>
#include <QScreen>
#include <QStyle>

#include "as400/frm400settings.h"
#include "base/files.h"
#include "base/user_interface.h"
#include "editor/document_commands.h"
#include "editor/form1.h"
#include "editor/recovery_folder.h"
#include "odbc/odbcd.h"
#include "platform/help_viewer.h"
#include "platform/user_data.h"
#include "shell/about.h"
#include "shell/command_line.h"
#include "shell/frmoptions.h"
#include "shell/insert_test.h"
#include "shell/session.h"
#include "ui_mainmdi.h"
#include "widgets/twips.h"

namespace {

// What the panels of date and time take from the frame's width.
constexpr int clock_width_in_twips = 2500;
constexpr int width_in_twips = 14400;
constexpr int height_in_twips = 9600;
constexpr const char* no_note = "Program Messages";
enum frame_panel : int { messages = 1, date = 2, time_of_day = 3 };

}  // namespace

MainMdi::MainMdi(settings_store& store, std::string command_line)
    : ui_(std::make_unique<Ui::MainMdi>()), store_(store), command_line_(std::move(command_line)), recent_(store),
      recovery_(std::make_shared<recovery_folder>(user_data_folder() / "recovery")) {
  ui_->setupUi(this);
  setAttribute(Qt::WA_DeleteOnClose);
  setAcceptDrops(true);
  ui_->MDIsb->add_panel(no_note, {}, 1);
  ui_->MDIsb->add_panel({}, {}, 0);
  ui_->MDIsb->add_panel({}, {}, 0);
  own_menus_ = menuBar()->actions();
  const QSize wanted(twips_to_pixels(width_in_twips, *this), twips_to_pixels(height_in_twips, *this));
  resize(wanted.boundedTo(screen()->availableSize() * 9 / 10));

  connect(ui_->mnuMdiNew, &QAction::triggered, this, &MainMdi::mnuMdiNew_Click);
  connect(ui_->mnuMdiOpen, &QAction::triggered, this, &MainMdi::mnuMdiOpen_Click);
  connect(ui_->mnuReopenClosed, &QAction::triggered, this, &MainMdi::mnuReopenClosed_Click);
  connect(ui_->mnuTest, &QAction::triggered, this, &MainMdi::mnuTest_Click);
  connect(ui_->mnuMdiExit, &QAction::triggered, this, &MainMdi::close);
  connect(ui_->mnuEnvironmentOptionsPanel, &QAction::triggered, this, &MainMdi::show_options);
  connect(ui_->mnuEnvironmentDisplay400JobInfo, &QAction::triggered, this, &MainMdi::show_job_settings);
  connect(ui_->mnuHelpContents, &QAction::triggered, this, &MainMdi::show_help);
  connect(ui_->mnuMDIAbout, &QAction::triggered, this, &MainMdi::show_about);
  connect(ui_->mnuWindows, &QMenu::aboutToShow, this, [this] { fill_window_list(*ui_->mnuWindows); });
  connect(ui_->mdiArea, &QMdiArea::subWindowActivated, this, &MainMdi::show_menus_of_active_window);
  connect(&clock_, &QTimer::timeout, this, &MainMdi::show_date_and_time);
  // Also while a document's menus stand in the menu bar.
  addAction(ui_->mnuReopenClosed);
  show_recent_files();
  clock_.start(1000);
  show_date_and_time();
}

MainMdi::~MainMdi() = default;

void MainMdi::MDIForm_Load() {
  session::debug_on = false;
  if (!session::settings_notes.empty()) {
    QStringList notes;
    for (const std::string& note : session::settings_notes) notes += QString::fromStdString(note);
    ui_->MDIsb->set_text(messages, notes.join("  "));
    ui_->MDIsb->label(messages)->setToolTip(notes.join('\n'));
  }
  for (const std::string& argument : GetCommandLine(command_line_)) {
    if (!argument.empty() && file_exists(argument)) open_document(*this, QString::fromStdString(argument));
  }
  QTimer::singleShot(0, this, &MainMdi::offer_crashed_texts);
}

void MainMdi::MDIForm_Resize() {
  const int panel_width = twips_to_pixels(clock_width_in_twips, *this) / 2;
  for (const int number : {date, time_of_day}) {
    QLabel* label = ui_->MDIsb->label(number);
    label->setMinimumWidth(qMax(panel_width, label->sizeHint().width()));
  }
}

void MainMdi::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  MDIForm_Resize();
}

// Documents release their statements before the connection goes. A run that waits in one of them ends when it gets
// control back.
void MainMdi::MDIForm_Unload() {
  if (unloaded_) return;
  unloaded_ = true;
  ui_->mdiArea->closeAllSubWindows();
  session::g_stmt.Kill();
  if (!session::g_con.Free() && !session::g_con.Disconnect()) session::g_con.Errd();
  try {
    ODBCD::odbc_free_env();
  } catch (const layer_error&) {
    show_message(
        {"The ODBC environment could not be freed.", "ODBC ERROR", message_icon::none, message_buttons::ok, {}});
  }
}

void MainMdi::closeEvent(QCloseEvent* event) {
  MDIForm_Unload();
  event->accept();
  QCoreApplication::quit();
}

QMdiSubWindow* MainMdi::show_child(QWidget* window) {
  const QSize size = window->size();
  QMdiSubWindow* child = ui_->mdiArea->addSubWindow(window);
  child->setAttribute(Qt::WA_DeleteOnClose);
  // The documents' own entry has Ctrl+W; two of them would make neither work.
  if (dynamic_cast<mdi_document*>(window) != nullptr) {
    for (QAction* entry : child->systemMenu()->actions())
      if (entry->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_W))) entry->setShortcut(Qt::CTRL | Qt::Key_F4);
  }
  child->resize(size + (child->sizeHint() - window->sizeHint()));
  child->move(next_child_position(*child));
  child->show();
  window->setFocus();
  return child;
}

// Children cascade from the top left corner, and start there again where the next one would not fit.
QPoint MainMdi::next_child_position(const QMdiSubWindow& child) const {
  const QSize area = ui_->mdiArea->viewport()->size();
  const int step = child.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &child);
  const int fitting = qMax(1, qMin(area.width() - child.width(), area.height() - child.height()) / step + 1);
  const auto open = static_cast<int>(ui_->mdiArea->subWindowList().size()) - 1;
  return QPoint(step, step) * (open % fitting);
}

// The box may still be open when the frame goes.
void MainMdi::offer_crashed_texts() {
  const QPointer<MainMdi> here(this);
  const std::size_t crashed = recovery_->adopt_crashed();
  if (crashed == 0) return;
  const std::string text = fmt::format(
      "Sorvane did not end in order last time. {} unsaved document{} kept. Open {} again?\r"
      "Otherwise \"Reopen Closed Document\" in the File menu brings {} back, the latest first.",
      crashed, crashed == 1 ? " was" : "s were", crashed == 1 ? "it" : "them", crashed == 1 ? "it" : "them");
  if (show_message({text, "Decision", message_icon::question, message_buttons::ok_cancel, {}}) != message_answer::ok)
    return;
  for (std::size_t i = 0; i < crashed && !here.isNull() && !unloaded_; ++i) form1::reopen_closed(*this);
}

void MainMdi::mnuReopenClosed_Click() {
  if (form1::reopen_closed(*this) == nullptr) show_note("No unsaved document was closed.");
}

void MainMdi::show_note(const QString& note) {
  ui_->MDIsb->set_text(messages, note.isEmpty() ? QString(no_note) : note);
  ui_->MDIsb->label(messages)->setToolTip(note);
}

std::shared_ptr<recovery_folder> MainMdi::recovery() { return recovery_; }

void MainMdi::add_recent_file(const QString& path) {
  std::string why;
  const std::string whole = QFileInfo(path).absoluteFilePath().toStdString();
  if (!recent_.add(whole, why)) show_note("The recent files are not remembered. " + QString::fromStdString(why));
  show_recent_files();
}

// The entries stand in the menu itself, before the one that ends the program.
void MainMdi::show_recent_files() {
  qDeleteAll(recent_entries_);
  recent_entries_.clear();
  for (const std::string& path : recent_.paths()) {
    const QString name = QString::fromStdString(path);
    const QString label = QString("&%1 %2").arg(recent_entries_.size() + 1).arg(QString(name).replace('&', "&&"));
    auto* entry = new QAction(label, this);
    connect(
        entry, &QAction::triggered, this, [this, name] { open_recent(name); }, Qt::QueuedConnection);
    recent_entries_ += entry;
  }
  if (!recent_entries_.isEmpty()) {
    auto* line = new QAction(this);
    line->setSeparator(true);
    recent_entries_ += line;
  }
  ui_->mnuFile->insertActions(ui_->mnuMdiExit, recent_entries_);
}

void MainMdi::open_recent(const QString& path) {
  if (open_document(*this, path) != nullptr) return;
  std::string why;
  recent_.remove(path.toStdString(), why);
  show_recent_files();
}

void MainMdi::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

// A file that cannot be opened is told; the others open all the same.
void MainMdi::dropEvent(QDropEvent* event) {
  const QPointer<MainMdi> here(this);
  const QList<QUrl> dropped = event->mimeData()->urls();
  event->acceptProposedAction();
  for (const QUrl& each : dropped) {
    if (here.isNull() || unloaded_) return;
    if (each.isLocalFile()) {
      open_document(*this, each.toLocalFile());
    } else {
      tell_bad_file(each.toString(), "Only files of this computer can be opened.");
    }
  }
}

void MainMdi::fill_window_list(QMenu& menu) {
  menu.clear();
  int number = 0;
  for (QMdiSubWindow* child : ui_->mdiArea->subWindowList()) {
    ++number;
    const QString title = child->windowTitle().replace('&', "&&");
    QAction* entry = menu.addAction(number < 10 ? QString("&%1 %2").arg(number).arg(title) : title);
    entry->setIcon(child->windowIcon());
    entry->setCheckable(true);
    entry->setChecked(child == ui_->mdiArea->currentSubWindow());
    connect(entry, &QAction::triggered, child, [this, child] { ui_->mdiArea->setActiveSubWindow(child); });
  }
  if (number == 0) menu.addAction("(no document is open)")->setEnabled(false);
}

QString MainMdi::insert_into_document(const QString& text) {
  const QList<QMdiSubWindow*> children = ui_->mdiArea->subWindowList(QMdiArea::ActivationHistoryOrder);
  for (auto child = children.crbegin(); child != children.crend(); ++child) {
    if (auto* document = dynamic_cast<mdi_text_document*>((*child)->widget())) return document->insert_text(text);
  }
  return "There is no document to insert into. Open one first.";
}

void MainMdi::show_menus_of_active_window() {
  const QMdiSubWindow* active = ui_->mdiArea->currentSubWindow();
  const auto* document = active == nullptr ? nullptr : dynamic_cast<const mdi_document*>(active->widget());
  const QList<QAction*> wanted = document == nullptr ? own_menus_ : document->menu_bar_actions();
  if (menuBar()->actions() == wanted) return;
  menuBar()->clear();
  menuBar()->addActions(wanted);
}

void MainMdi::show_date_and_time() {
  const QDateTime now = QDateTime::currentDateTime();
  ui_->MDIsb->set_text(date, QLocale().toString(now.date(), QLocale::ShortFormat));
  ui_->MDIsb->set_text(time_of_day, QLocale().toString(now.time(), QLocale::ShortFormat));
}

void MainMdi::mnuMdiNew_Click() { form1::open_new(*this, "Mirelta Editor: UnNamed"); }

void MainMdi::mnuMdiOpen_Click() { form1::open_new(*this, "Untitled")->load_Click(); }

void MainMdi::mnuTest_Click() { run_insert_test(session::g_con); }

void MainMdi::show_help() { show_help_contents(this); }

void MainMdi::show_options() { frmOptions::show_modally(store_, this); }

void MainMdi::show_job_settings() { frm400Settings::show_modally(this); }

void MainMdi::show_about() { show_about_box(this, session::g_con); }
