#include "shell/frmoptions.h"

#include <QPointer>

#include "shell/options.h"
#include "shell/session.h"
#include "ui_frmoptions.h"
#include "widgets/twips.h"

namespace {

constexpr int width_in_twips = 6600;

// The codes of the three isolation buttons.
enum isolation_code : std::int32_t { cursor_stability = 0, read_uncommitted = 2, read_repeatability = 3 };

}  // namespace

frmOptions::frmOptions(settings_store& store, QWidget* owner)
    : QDialog(owner), ui_(std::make_unique<Ui::frmOptions>()), store_(store) {
  ui_->setupUi(this);
  connect(ui_->Command1, &QPushButton::clicked, this, &frmOptions::Command1_Click);
  connect(ui_->Command2, &QPushButton::clicked, this, &frmOptions::Command2_Click);
  Form_Load();
  // Room for a directory's path.
  resize(sizeHint().expandedTo({twips_to_pixels(width_in_twips, *this), 0}));
}

frmOptions::~frmOptions() = default;

void frmOptions::show_modally(settings_store& store, QWidget* owner) {
  const QPointer panel = new frmOptions(store, owner);
  panel->exec();
  delete panel;
}

void frmOptions::Form_Load() {
  ui_->cs->setChecked(session::isolation_level == cursor_stability);
  ui_->chg->setChecked(session::isolation_level == read_uncommitted);
  ui_->rr->setChecked(session::isolation_level == read_repeatability);
  ui_->Check2->setChecked(session::autocommit_on);
  ui_->Check1->setChecked(session::debug_on);
  ui_->Text1->setText(QString::number(session::ext_fetch_rows));
  ui_->Text2->setText(QString::number(session::dw_rows));
  ui_->Text3->setText(QString::number(session::speed_test_rows));
  ui_->Text4->setText(QString::number(session::varchar_return_chars));
  ui_->Text5->setText(QString::fromStdString(session::database_dir));
  ui_->Text6->setText(QString::fromStdString(session::jobinfo_proc));
  ui_->Text7->setText(QString::fromStdString(session::jobinfo_lib));
  ui_->cb_extended_fetch->setChecked(session::ext_fetch);
}

void frmOptions::Command1_Click() {
  option_entries typed;
  typed.ext_fetch_rows = ui_->Text1->text().toStdString();
  typed.dw_rows = ui_->Text2->text().toStdString();
  typed.speed_test_rows = ui_->Text3->text().toStdString();
  typed.varchar_return_chars = ui_->Text4->text().toStdString();
  typed.database_dir = ui_->Text5->text().toStdString();
  typed.jobinfo_proc = ui_->Text6->text().toStdString();
  typed.jobinfo_lib = ui_->Text7->text().toStdString();
  typed.ext_fetch = ui_->cb_extended_fetch->isChecked();
  typed.debug_on = ui_->Check1->isChecked();
  typed.autocommit_on = ui_->Check2->isChecked();
  typed.isolation_level = ui_->rr->isChecked()   ? read_repeatability
                          : ui_->cs->isChecked() ? cursor_stability
                                                 : read_uncommitted;
  // The panel may be deleted with the frame while a message is shown.
  const QPointer alive(this);
  if (save_options(typed, store_) && !alive.isNull()) accept();
}

void frmOptions::Command2_Click() { reject(); }
