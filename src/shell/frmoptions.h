#pragma once

#include <QDialog>
#include <memory>

#include "shell/settings.h"

namespace Ui {
class frmOptions;
}

// The options panel: shows the session's options, and saves them to the session and the settings store.
class frmOptions : public QDialog {
  Q_OBJECT

 public:
  frmOptions(settings_store& store, QWidget* owner);
  ~frmOptions() override;

  // Opens the panel over `owner` and returns when it is closed, or gone with its owner.
  static void show_modally(settings_store& store, QWidget* owner);

 private:
  void Form_Load();
  void Command1_Click();
  void Command2_Click();

  std::unique_ptr<Ui::frmOptions> ui_;
  settings_store& store_;
};
