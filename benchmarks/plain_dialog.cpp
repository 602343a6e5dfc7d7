// What the start-up measurement compares with besides an empty window: a bare dialog with the login's widgets and
// nothing behind them. The first text that a program shows has its fonts looked up, which an empty window never does.
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QDialog dialog;
  QFormLayout rows(&dialog);
  auto* source = new QComboBox;
  source->setEditable(true);
  rows.addRow("Data source", source);
  rows.addRow("User", new QLineEdit);
  rows.addRow("Password", new QLineEdit);
  rows.addRow(new QRadioButton("One"), new QRadioButton("Other"));
  rows.addRow(new QPushButton("Login"), new QPushButton("Exit"));
  rows.addRow(new QPushButton("Help"));
  dialog.show();
  return QApplication::exec();
}
