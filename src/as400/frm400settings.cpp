#include "as400/frm400settings.h"

#include <QFontDatabase>
#include <QPointer>

#include "base/user_interface.h"
#include "shell/session.h"
#include "ui_frm400settings.h"

namespace {

// The box of every attribute that stands on one line.
struct line_box {
  job_field field;
  QLineEdit* Ui::frm400Settings::*box;
};
using form = Ui::frm400Settings;
constexpr std::array line_boxes{
    line_box{job_field::job, &form::JOB},       line_box{job_field::user, &form::USER},
    line_box{job_field::nbr, &form::NBR},       line_box{job_field::loglvl, &form::LOGLVL},
    line_box{job_field::logsev, &form::LOGSEV}, line_box{job_field::logtype, &form::LOGTYPE},
    line_box{job_field::outq, &form::OUTQ},     line_box{job_field::outqlib, &form::OUTQLIB},
    line_box{job_field::runpty, &form::RUNPTY}, line_box{job_field::timeslice, &form::TIMESLICE},
    line_box{job_field::curlib, &form::CURLIB}, line_box{job_field::curuser, &form::CURUSER},
};

}  // namespace

frm400Settings::frm400Settings(QWidget* owner) : QDialog(owner), ui_(std::make_unique<Ui::frm400Settings>()) {
  ui_->setupUi(this);
  // Library names come as columns of equal width.
  for (QPlainTextEdit* list : {ui_->USRLIBL, ui_->SYSLIBL}) {
    list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  }
  connect(ui_->Command1, &QPushButton::clicked, this, &frm400Settings::Command1_Click);
  connect(ui_->Command2, &QPushButton::clicked, this, &frm400Settings::Command2_Click);
}

frm400Settings::~frm400Settings() = default;

void frm400Settings::show_modally(QWidget* owner) {
  const QPointer window = new frm400Settings(owner);
  window->Form_Load();
  if (!window.isNull()) window->exec();
  delete window;
}

void frm400Settings::Form_Load() {
  const QPointer alive(this);
  const job_reading reading =
      read_job(session::g_stmt, session::jobinfo_lib, session::jobinfo_proc, session::qualifier_sep);
  if (!alive.isNull()) show_reading(reading);
}

void frm400Settings::show_reading(const job_reading& reading) {
  for (const line_box& each : line_boxes) {
    QLineEdit* box = (*ui_).*each.box;
    box->setText(QString::fromStdString(reading.texts[each.field]));
    box->setCursorPosition(0);
  }
  ui_->USRLIBL->setPlainText(QString::fromStdString(reading.texts[job_field::usrlibl]));
  ui_->SYSLIBL->setPlainText(QString::fromStdString(reading.texts[job_field::syslibl]));
  ui_->Command1->setEnabled(reading.can_change);
}

job_texts frm400Settings::typed() const {
  job_texts texts;
  for (const line_box& each : line_boxes) texts[each.field] = ((*ui_).*each.box)->text().toStdString();
  return texts;
}

void frm400Settings::Command1_Click() {
  const job_texts wanted = typed();
  const std::string wrong = wrong_job_attribute(wanted);
  if (!wrong.empty()) {
    show_user_error(wrong);
    return;
  }
  change_job(session::g_stmt, wanted, session::qualifier_sep);
  accept();
}

void frm400Settings::Command2_Click() { reject(); }
