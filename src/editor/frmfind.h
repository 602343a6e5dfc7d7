#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmFind;
}

class sql_text_box;

// Looks for a text in a document, after its caret. Stays open for the next search; modal to the program.
class frmFind : public QDialog {
  Q_OBJECT

 public:
  // `document` is the text box of the window that opens this one and owns it.
  frmFind(sql_text_box& document, QWidget* owner);
  ~frmFind() override;

  // Selects the next place where the text that was last looked for stands; tells when there is none.
  static void find_again(sql_text_box& document);

 private:
  void Form_Load();
  void OKButton_Click();
  void CancelButton_Click();

  std::unique_ptr<Ui::frmFind> ui_;
  sql_text_box& document_;
};
