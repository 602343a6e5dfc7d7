#pragma once

#include <QString>

class QWidget;

// The common file dialog of a form: its title, its filters as "description|pattern" pairs joined by '|', and the
// extension that a name without one gets.
struct file_dialog {
  QString title;
  QString filter;
  QString default_extension;
};

// Who asks for file names; the desktop's own dialogs unless a test answers instead. An empty name means that the user
// cancelled.
class file_dialogs {
 public:
  virtual ~file_dialogs() = default;
  virtual QString open(const file_dialog& dialog, QWidget* owner) = 0;
  virtual QString save(const file_dialog& dialog, const QString& suggested, QWidget* owner) = 0;

  static file_dialogs& current();
  // Installs another; nullptr puts the desktop's back.
  static void install(file_dialogs* other);
};

// The filter in Qt's notation: "SQL Files (*.sql)".
QString qt_filter(const QString& filter);
