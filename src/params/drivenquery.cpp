#include "params/drivenquery.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QPointer>
#include <limits>

#include "base/user_interface.h"
#include "shell/session.h"
#include "ui_drivenquery.h"

namespace {

constexpr int shown_columns = 90;  // of a statement, before it wraps

}  // namespace

// What the run tells reaches the form as long as there is one.
class DrivenQuery::watcher final : public driven_host {
 public:
  explicit watcher(DrivenQuery* form) : form_(form) {}
  void begin(std::int64_t expected) override {
    if (form_.isNull()) return;
    const bool known = expected > 0 && expected <= std::numeric_limits<int>::max();
    form_->ui_->progress->setRange(0, known ? static_cast<int>(expected) : 0);
  }
  void show(const driven_counters& counters) override {
    if (!form_.isNull()) form_->show_counters(counters);
    QCoreApplication::processEvents();
  }
  [[nodiscard]] bool stop_wanted() const override { return form_.isNull() || form_->stopping_; }

 private:
  QPointer<DrivenQuery> form_;
};

DrivenQuery::DrivenQuery(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::DrivenQuery>()) {
  ui_->setupUi(this);
  setAttribute(Qt::WA_DeleteOnClose);
  for (QWidget* each : {static_cast<QWidget*>(ui_->progress), static_cast<QWidget*>(ui_->stop)}) {
    QSizePolicy stays = each->sizePolicy();
    stays.setRetainSizeWhenHidden(true);  // nothing jumps when a run begins
    each->setSizePolicy(stays);
  }
  for (QWidget* each : {static_cast<QWidget*>(ui_->Text1), static_cast<QWidget*>(ui_->Text2)})
    each->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  resize(shown_columns * fontMetrics().averageCharWidth(), sizeHint().height());
  show_running(false);
  connect(ui_->Command1, &QPushButton::clicked, this, &DrivenQuery::Command1_Click);
  connect(ui_->Command2, &QPushButton::clicked, this, &DrivenQuery::Command2_Click);
  connect(ui_->stop, &QPushButton::clicked, this, &DrivenQuery::stop_Click);
}

DrivenQuery::~DrivenQuery() {
  // A run may still hold them further down the stack.
  target_->Kill();
  source_->Kill();
}

bool DrivenQuery::Form_Load() {
  if (target_->Make(session::g_con) && source_->Make(session::g_con)) return true;
  session::g_con.Errd();
  return false;
}

void DrivenQuery::Command1_Click() {
  if (running_) return;
  const QPointer<DrivenQuery> here(this);
  running_ = true;
  stopping_ = false;
  show_counters({});
  ui_->state->clear();
  show_running(true);
  watcher host(this);
  const driven_result result =
      drive(target_, source_, {ui_->Text1->toPlainText().toStdString(), ui_->Text2->toPlainText().toStdString()},
            session::ext_fetch_rows, host);
  if (here.isNull()) return;
  running_ = false;
  show_running(false);
  finish(result);
}

void DrivenQuery::finish(const driven_result& result) {
  switch (result.outcome) {
    case driven_outcome::done: {
      if (!isVisible()) return;  // closed while it ran; the deletion is on its way
      const QPointer<DrivenQuery> here(this);
      message summary{
          driven_summary(result.counters.written), "Program Message", message_icon::question, message_buttons::ok, {}};
      if (result.counters.failed > 0) summary.details = QString("Errors: %1").arg(result.counters.failed).toStdString();
      show_message(summary);
      if (!here.isNull()) close();
      return;
    }
    case driven_outcome::stopped:
      ui_->state->setText("Stopped after the current row. Nothing was rolled back.");
      return;
    case driven_outcome::broken:
      ui_->state->setText("The run ended early, after an error.");
      return;
    case driven_outcome::refused:
      return;
  }
}

void DrivenQuery::Command2_Click() { reject(); }

void DrivenQuery::stop_Click() {
  stopping_ = true;
  ui_->stop->setEnabled(false);
  ui_->state->setText("Stopping after the current row...");
}

// Both buttons, Esc and the close box come along here.
void DrivenQuery::done(int result) {
  stopping_ = true;
  QDialog::done(result);
}

void DrivenQuery::closeEvent(QCloseEvent* event) {
  stopping_ = true;
  QDialog::closeEvent(event);
}

void DrivenQuery::show_running(bool running) {
  ui_->Text1->setReadOnly(running);
  ui_->Text2->setReadOnly(running);
  ui_->Command1->setEnabled(!running);
  ui_->stop->setEnabled(running);
  ui_->stop->setVisible(running);
  ui_->progress->setVisible(running);
  if (running) {
    ui_->progress->setRange(0, 0);
    ui_->stop->setFocus();
  } else {
    ui_->Text1->setFocus();
  }
}

void DrivenQuery::show_counters(const driven_counters& counters) {
  ui_->Label5->setText(QString::number(counters.read));
  ui_->Label6->setText(QString::number(counters.written));
  ui_->errors->setText(QString::number(counters.failed));
  const std::int64_t through = counters.written + counters.failed;
  if (through <= ui_->progress->maximum()) {
    ui_->progress->setValue(static_cast<int>(through));
  } else {
    ui_->progress->setRange(0, 0);  // the driver's count of the rows was none
  }
}

void show_driven_query(QWidget* parent) {
  static QPointer<DrivenQuery> open;
  if (!open.isNull()) {
    open->raise();
    open->activateWindow();
    return;
  }
  const QPointer<DrivenQuery> form = new DrivenQuery(parent == nullptr ? nullptr : parent->window());
  open = form;
  if (form->Form_Load()) {
    form->setModal(true);
    form->show();
  } else if (!form.isNull()) {
    delete form;
  }
}
