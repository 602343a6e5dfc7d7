#include "platform/file_dialogs.h"

#include <QFileDialog>
#include <QStringList>

namespace {

class desktop_dialogs final : public file_dialogs {
 public:
  QString open(const file_dialog& dialog, QWidget* owner) override {
    return QFileDialog::getOpenFileName(owner, dialog.title, {}, qt_filter(dialog.filter));
  }
  QString save(const file_dialog& dialog, const QString& suggested, QWidget* owner) override {
    QFileDialog box(owner, dialog.title, suggested, qt_filter(dialog.filter));
    box.setAcceptMode(QFileDialog::AcceptSave);
    box.setDefaultSuffix(dialog.default_extension);
    return box.exec() == QDialog::Accepted ? box.selectedFiles().value(0) : QString();
  }
};

file_dialogs*& installed() {
  static desktop_dialogs desktop;
  static file_dialogs* current = &desktop;
  return current;
}

}  // namespace

file_dialogs& file_dialogs::current() { return *installed(); }

void file_dialogs::install(file_dialogs* other) {
  static file_dialogs* const desktop = installed();
  installed() = other == nullptr ? desktop : other;
}

QString qt_filter(const QString& filter) {
  const QStringList pieces = filter.split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < pieces.size(); i += 2)
    filters += QString("%1 (%2)").arg(pieces[i], QString(pieces[i + 1]).replace(';', ' '));
  filters += "All Files (*)";
  return filters.join(";;");
}
