#include "platform/qt_user_interface.h"

#include <QApplication>
#include <QMessageBox>

namespace {

constexpr const char* application_title = "Sorvane";

}  // namespace

message_answer qt_user_interface::show_message(const message& shown) {
  // A question asked in the middle of long work is answered with an ordinary pointer.
  const pointer_shape before = pointer();
  set_pointer(pointer_shape::standard);
  QMessageBox box(QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  box.setText(
      QString::fromStdString(shown.text).replace('\r', '\n').replace(QChar('\0'), QChar(QChar::ReplacementCharacter)));
  box.setWindowTitle(shown.title.empty() ? QString(application_title) : QString::fromStdString(shown.title));
  if (shown.icon == message_icon::question) box.setIcon(QMessageBox::Question);
  if (!shown.details.empty()) box.setDetailedText(QString::fromStdString(shown.details));
  const bool can_cancel = shown.buttons == message_buttons::ok_cancel;
  box.setStandardButtons(can_cancel ? QMessageBox::Ok | QMessageBox::Cancel : QMessageBox::Ok);
  box.setDefaultButton(QMessageBox::Ok);
  const int pressed = box.exec();
  set_pointer(before);
  return can_cancel && pressed != QMessageBox::Ok ? message_answer::cancel : message_answer::ok;
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
