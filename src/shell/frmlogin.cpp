#include "shell/frmlogin.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>

#include "base/matrix.h"
#include "base/user_interface.h"
#include "odbc/odbcd.h"
#include "platform/help_viewer.h"
#include "shell/login.h"
#include "shell/mainmdi.h"
#include "shell/session.h"
#include "ui_frmlogin.h"

frmLogin::frmLogin(settings_store& store, std::string command_line)
    : ui_(std::make_unique<Ui::frmLogin>()), store_(store), command_line_(std::move(command_line)) {
  ui_->setupUi(this);
  connect(ui_->Command1, &QPushButton::clicked, this, &frmLogin::Command1_Click);
  connect(ui_->Command2, &QPushButton::clicked, this, &frmLogin::Command2_Click);
  connect(ui_->Command3, &QPushButton::clicked, this, &frmLogin::Command3_Click);
  Form_Load();
}

frmLogin::~frmLogin() = default;

void frmLogin::Form_Load() {
  const QString program_dir = QDir::toNativeSeparators(QCoreApplication::applicationDirPath()) + QDir::separator();
  settings::load_into_session(store_, program_dir.toStdString());
  ODBCD::odbc_alloc_env();
  const value sources = ODBCD::list_data_sources();
  if (sources.is(value::kind::table)) {
    const matrix& list = sources.table();
    for (int k = 0; k < list.first_upper(); ++k) {
      const QString name = QString::fromStdString(to_text(list(k, 0)));
      if (ui_->dsn->findText(name, Qt::MatchExactly) < 0) ui_->dsn->addItem(name);
    }
  }
  ui_->dsn->setEditText(QString::fromStdString(settings::read_text(store_, settings::key::data_source)));
  ui_->uid->setText(QString::fromStdString(settings::read_text(store_, settings::key::user)));
}

// With data source and user remembered, only the password is to be typed.
void frmLogin::Form_Paint() { ui_->pwd->setFocus(); }

void frmLogin::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  Form_Paint();
}

void frmLogin::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  const bool uncovered = event->type() == QEvent::WindowStateChange && !isMinimized();
  if (uncovered && isVisible()) Form_Paint();
}

void frmLogin::Command1_Click() {
  setCursor(Qt::WaitCursor);
  const login_request typed{ui_->dsn->currentText().toStdString(), ui_->uid->text().toStdString(),
                            ui_->pwd->text().toStdString(), !ui_->Option1->isChecked()};
  const bool logged_in = log_in(typed, store_);
  unsetCursor();
  if (!logged_in) {
    Form_Paint();
    ui_->pwd->selectAll();
    return;
  }
  frame_ = new MainMdi(store_, command_line_);
  frame_->show();
  frame_->MDIForm_Load();
  hide();
  deleteLater();
}

void frmLogin::Command2_Click() { reject(); }

// Also Esc and the window's close box.
void frmLogin::reject() {
  try {
    ODBCD::odbc_free_env();
  } catch (const layer_error&) {
    show_message(
        {"The ODBC environment could not be freed.", "ODBC ERROR", message_icon::none, message_buttons::ok, {}});
  }
  QDialog::reject();
  QCoreApplication::quit();
}

void frmLogin::Command3_Click() { show_help_contents(this); }
