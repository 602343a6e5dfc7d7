#include "params/fshowparms.h"

#include <QPointer>

#include "base/user_interface.h"
#include "params/parameter_values.h"
#include "ui_fshowparms.h"

fShowParms::fShowParms(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::fShowParms>()) {
  ui_->setupUi(this);
  setAttribute(Qt::WA_DeleteOnClose);
  ui_->lines->set_value_column("Parameter Data", parameter_lines::value_column::read_only);
  connect(ui_->Command1, &QPushButton::clicked, this, &fShowParms::Command1_Click);
}

fShowParms::~fShowParms() = default;

bool fShowParms::ParmsSetup() {
  ui_->lines->set_up(Stmt->Nparms());
  auto rows = returned_parameter_rows(*Stmt);
  if (!rows) {
    show_user_error(std::string(unhandled_type));
    return false;
  }
  ui_->lines->fill(*std::move(rows));
  return true;
}

void fShowParms::RePaintME() { ui_->lines->RePaintME(); }

void fShowParms::Command1_Click() { close(); }

void show_returned_parameters(QWidget* parent, std::shared_ptr<odbcstmt> statement) {
  const QPointer<fShowParms> view = new fShowParms(parent == nullptr ? nullptr : parent->window());
  view->Stmt = std::move(statement);
  view->ParmsSetup();
  if (!view.isNull()) view->show();
}
