#pragma once

#include <QDialog>
#include <memory>

#include "as400/job_information.h"

namespace Ui {
class frm400Settings;
}

// Shows the attributes of the server job behind the connection and lets the user change some of them. It works on the
// session's general statement, which nothing else uses meanwhile.
class frm400Settings : public QDialog {
  Q_OBJECT

 public:
  explicit frm400Settings(QWidget* owner);
  ~frm400Settings() override;

  // Opens the window over `owner` and returns when it is closed, or gone with its owner.
  static void show_modally(QWidget* owner);

  // Reads the job and fills the fields. Messages may come up, during which the window may be deleted.
  void Form_Load();

 private:
  void Command1_Click();
  void Command2_Click();
  void show_reading(const job_reading& reading);
  [[nodiscard]] job_texts typed() const;

  std::unique_ptr<Ui::frm400Settings> ui_;
};
