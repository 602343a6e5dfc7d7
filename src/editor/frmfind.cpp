#include "editor/frmfind.h"

#include "base/user_interface.h"
#include "editor/sql_text_box.h"
#include "shell/session.h"
#include "ui_frmfind.h"

frmFind::frmFind(sql_text_box& document, QWidget* owner)
    : QDialog(owner), ui_(std::make_unique<Ui::frmFind>()), document_(document) {
  ui_->setupUi(this);
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::ApplicationModal);
  connect(ui_->OKButton, &QPushButton::clicked, this, &frmFind::OKButton_Click);
  connect(ui_->CancelButton, &QPushButton::clicked, this, &frmFind::CancelButton_Click);
  connect(ui_->txtFindString, &QLineEdit::textChanged, this,
          [this](const QString& text) { ui_->OKButton->setEnabled(!text.isEmpty()); });
  Form_Load();
}

frmFind::~frmFind() = default;

void frmFind::Form_Load() {
  ui_->txtFindString->setText(QString::fromStdString(session::find_text));
  ui_->txtFindString->selectAll();
  ui_->OKButton->setEnabled(!session::find_text.empty());
}

void frmFind::OKButton_Click() {
  session::find_text = ui_->txtFindString->text().toStdString();
  find_again(document_);
}

void frmFind::CancelButton_Click() { close(); }

void frmFind::find_again(sql_text_box& document) {
  if (!document.find_next(QString::fromStdString(session::find_text)))
    show_message({"Not Found!", {}, message_icon::none, message_buttons::ok, {}});
}
