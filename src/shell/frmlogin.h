#pragma once

#include <QDialog>
#include <memory>

#include "shell/settings.h"

class MainMdi;
namespace Ui {
class frmLogin;
}

// The login. It reads the settings into the session, offers the data sources, connects, and then shows the frame and
// goes.
class frmLogin : public QDialog {
  Q_OBJECT

 public:
  // `command_line` is the text of the program's arguments, handed on to the frame.
  frmLogin(settings_store& store, std::string command_line);
  ~frmLogin() override;

  // The frame that a successful login has shown; nullptr before. It deletes itself when it is closed.
  [[nodiscard]] MainMdi* frame() const { return frame_; }

 protected:
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void reject() override;

 private:
  void Form_Load();
  void Form_Paint();
  void Command1_Click();
  void Command2_Click();
  void Command3_Click();

  std::unique_ptr<Ui::frmLogin> ui_;
  settings_store& store_;
  std::string command_line_;
  MainMdi* frame_ = nullptr;
};
