#include "platform/qt_user_interface.h"

#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QPointer>

namespace {

constexpr const char* application_title = "Sorvane";

// The standard pointer for a scope, and then the one before it.
class ordinary_pointer {
 public:
  explicit ordinary_pointer(user_interface& interface) : interface_(interface), before_(interface.pointer()) {
    interface_.set_pointer(pointer_shape::standard);
  }
  ~ordinary_pointer() { interface_.set_pointer(before_); }
  ordinary_pointer(const ordinary_pointer&) = delete;
  ordinary_pointer& operator=(const ordinary_pointer&) = delete;

 private:
  user_interface& interface_;
  pointer_shape before_;
};

void fill(QMessageBox& box, const message& shown) {
  box.setTextFormat(Qt::PlainText);
  box.setText(
      QString::fromStdString(shown.text).replace('\r', '\n').replace(QChar('\0'), QChar(QChar::ReplacementCharacter)));
  box.setWindowTitle(shown.title.empty() ? QString(application_title) : QString::fromStdString(shown.title));
  if (shown.icon == message_icon::question) box.setIcon(QMessageBox::Question);
  if (!shown.details.empty()) box.setDetailedText(QString::fromStdString(shown.details));
  const bool can_cancel = shown.buttons == message_buttons::ok_cancel;
  box.setStandardButtons(can_cancel ? QMessageBox::Ok | QMessageBox::Cancel : QMessageBox::Ok);
  box.setDefaultButton(QMessageBox::Ok);
}

}  // namespace

message_answer qt_user_interface::show_message(const message& shown) {
  // A question asked in the middle of long work is answered with an ordinary pointer.
  const ordinary_pointer while_asked(*this);
  QMessageBox box(QApplication::activeWindow());
  fill(box, shown);
  const int pressed = box.exec();
  return shown.buttons == message_buttons::ok_cancel && pressed != QMessageBox::Ok ? message_answer::cancel
                                                                                   : message_answer::ok;
}

bool qt_user_interface::show_message_with_check(const message& shown, const std::string& check_box) {
  const ordinary_pointer while_asked(*this);
  QMessageBox box(QApplication::activeWindow());
  fill(box, shown);
  auto* check = new QCheckBox(QString::fromStdString(check_box));
  box.setCheckBox(check);  // which it then owns
  const QPointer<QCheckBox> ticked(check);
  box.exec();
  return !ticked.isNull() && ticked->isChecked();
}

pointer_shape qt_user_interface::pointer() const {
  const QCursor* over = QGuiApplication::overrideCursor();
  return over != nullptr && over->shape() == Qt::WaitCursor ? pointer_shape::hourglass : pointer_shape::standard;
}

void qt_user_interface::set_pointer(pointer_shape shape) {
  if (shape == pointer()) return;
  if (shape == pointer_shape::hourglass) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
}
