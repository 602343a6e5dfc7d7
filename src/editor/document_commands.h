#pragma once

#include <QObject>

#include "editor/document_keeper.h"

class mdi_host;
class QFont;
class sql_text_box;

// The commands of a document that act on its text and its file. One of them for each document, beside its window.
class document_commands : public QObject {
  Q_OBJECT

 public:
  // `window` is the document's window, which owns this; `my_file_name` its file's name, "" when it has none.
  document_commands(QWidget& window, sql_text_box& text, QString& my_file_name, mdi_host& host);

  // Makes the text a file's, and the window's caption and name those given; false, with everything as it was and the
  // reason in `why`, when the file cannot be read.
  bool load_file(const QString& path, const QString& caption, const QString& name, std::string& why);
  // Makes the text the one that was closed last; false when there is none.
  bool take_latest_closed();
  // The document goes: a text that no file holds is kept for "Reopen Closed Document". Once.
  void unload();

  void load_Click();
  void save_Click();
  void mnuSaveAs_Click();
  void clear_editor_Click();
  void mnuOpenNewWindow_Click();
  void mnuEditFind_Click();
  void find_again_Click();
  void choose_font_Click();

 private:
  void save_as(const QString& name);
  void use_stored_font();
  void use_font(const QFont& font);
  void show_modified();

  QWidget& window_;
  sql_text_box& text_;
  QString& MyFilename;
  mdi_host& host_;
  document_keeper keeper_;
  bool unloaded_ = false;
};

// The caption of a document with a file, or "UnNamed" for none.
QString document_caption(const QString& path);

// A file that could not be opened, and why.
void tell_bad_file(const QString& path, const std::string& why);
