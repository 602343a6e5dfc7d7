#include "params/fbindparms.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QPointer>

#include "base/clock.h"
#include "base/user_interface.h"
#include "params/parameter_values.h"
#include "ui_fbindparms.h"

fBindParms::fBindParms(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::fBindParms>()) {
  ui_->setupUi(this);
  ui_->lines->set_value_column("Data to Bind", parameter_lines::value_column::editable);
  if (parent != nullptr) parent->installEventFilter(this);
  connect(ui_->Command1, &QPushButton::clicked, this, &fBindParms::Command1_Click);
  connect(ui_->Command2, &QPushButton::clicked, this, &fBindParms::Command2_Click);
}

fBindParms::~fBindParms() = default;

bool fBindParms::ParmsSetup() {
  preparation_ = Stmt->generation();
  const int n = Stmt->Nparms();
  ui_->lines->set_up(n);
  setWindowTitle(QString("Statement Requires %1 bind parameters").arg(n));
  auto rows = parameter_rows(*Stmt, current_clock().now());
  if (!rows) {
    show_user_error(std::string(unhandled_type));
    return false;
  }
  ui_->lines->fill(*std::move(rows));
  Done = false;
  return true;
}

void fBindParms::RePaintME() { ui_->lines->RePaintME(); }

void fBindParms::Command1_Click() {
  const QPointer<fBindParms> here(this);
  // The statement outlives the dialog, which may go while a message stands.
  const std::shared_ptr<odbcstmt> statement = Stmt;
  const checked_values checked = values_of(ui_->lines->table());
  if (!checked.ok()) {
    show_user_error(checked.message);
    if (!here.isNull()) ui_->lines->go_to(checked.refused - 1);
    return;
  }
  if (!still_prepared()) {
    show_user_error("The statement is no longer prepared, so that its parameters can not be bound.");
    if (!here.isNull()) reject();
    return;
  }
  if (!bind_values(*statement, checked.values, IsProcCall)) return;
  BindOK = true;
  accept();
}

void fBindParms::Command2_Click() { reject(); }

// Every way out: both buttons, Esc, the window's close box.
void fBindParms::done(int result) {
  if (result != Accepted) BindOK = false;
  Done = true;
  QDialog::done(result);
}

// A document that is closed does not wait for its deletion to end the run. Whether it accepts the close is known only
// after the event.
bool fBindParms::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parent() && event->type() == QEvent::Close) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          if (parentWidget()->isHidden()) reject();
        },
        Qt::QueuedConnection);
  }
  return QDialog::eventFilter(watched, event);
}

bool wait_for_parameters(QWidget* parent, std::shared_ptr<odbcstmt> statement, bool is_call) {
  const QPointer<fBindParms> dialog = new fBindParms(parent);
  dialog->BindOK = false;
  dialog->Stmt = std::move(statement);
  dialog->IsProcCall = is_call;
  if (dialog->ParmsSetup()) {
    QEventLoop loop;
    QObject::connect(dialog, &QDialog::finished, &loop, &QEventLoop::quit);
    QObject::connect(dialog, &QObject::destroyed, &loop, &QEventLoop::quit);
    dialog->show();
    if (!dialog.isNull() && !dialog->Done) loop.exec();
  }
  if (dialog.isNull()) return false;
  const bool bound = dialog->BindOK && dialog->still_prepared();
  delete dialog;
  return bound;
}
