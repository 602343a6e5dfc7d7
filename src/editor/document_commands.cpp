#include "editor/document_commands.h"

#include <fmt/format.h>

#include <QFontDialog>
#include <QPointer>

#include "base/files.h"
#include "base/user_interface.h"
#include "editor/document_icon.h"
#include "editor/form1.h"
#include "editor/frmfind.h"
#include "editor/sql_text_box.h"
#include "platform/file_dialogs.h"
#include "platform/saved_file.h"
#include "shell/session.h"
#include "shell/settings.h"

namespace {

const file_dialog sql_files{"Sorvane SQL Files", "SQL Files|*.sql", "sql"};

constexpr std::string_view font_section = "Editor";
constexpr std::string_view font_key = "Font";

}  // namespace

QString document_caption(const QString& path) { return "Mirelta Editor: " + path; }

void tell_bad_file(const QString& path, const std::string& why) {
  show_message({"Bad File Name!\rI can not open this document: " + path.toStdString(), "User Error",
                message_icon::question, message_buttons::ok, why});
}

document_commands::document_commands(QWidget& window, sql_text_box& text, QString& my_file_name, mdi_host& host)
    : QObject(&window), window_(window), text_(text), MyFilename(my_file_name), host_(host),
      keeper_(
          text, host.recovery(),
          [this] {
            return kept_heading{window_.windowTitle().toStdString(), MyFilename.toStdString()};
          },
          this) {
  connect(&text_, &QsciScintilla::modificationChanged, this, &document_commands::show_modified);
  connect(&keeper_, &document_keeper::copied, this, [this](const QString& why) {
    host_.show_note(why.isEmpty() ? QString() : "Unsaved text is not safe from a crash, it can not be copied: " + why);
  });
  use_stored_font();
}

bool document_commands::load_file(const QString& path, const QString& caption, const QString& name, std::string& why) {
  file_content content = read_whole_file(path.toStdString());
  if (!content.ok()) {
    why = content.error;
    return false;
  }
  keeper_.put_aside();
  text_.replace_document(document_from_file(std::move(content.bytes)));
  keeper_.text_saved();
  window_.setWindowTitle(caption);
  MyFilename = name;
  host_.add_recent_file(path);
  return true;
}

bool document_commands::take_latest_closed() {
  auto kept = keeper_.take_latest();
  if (!kept) return false;
  text_.restore_document(document_from_file(std::move(kept->bytes)));
  window_.setWindowTitle(QString::fromStdString(kept->heading.caption));
  MyFilename = QString::fromStdString(kept->heading.file_name);
  return true;
}

void document_commands::unload() {
  if (!unloaded_) keeper_.put_aside();
  unloaded_ = true;
}

void document_commands::load_Click() {
  const QPointer<document_commands> here(this);
  const QString path = file_dialogs::current().open(sql_files, &window_);
  if (path.isEmpty() || here.isNull()) return;
  std::string why;
  if (!load_file(path, document_caption(path), path, why)) tell_bad_file(path, why);
}

void document_commands::mnuOpenNewWindow_Click() {
  const QPointer<document_commands> here(this);
  const QString path = file_dialogs::current().open(sql_files, &window_);
  if (!path.isEmpty() && !here.isNull()) form1::open_new(host_, "SQL Editor: " + path, {}, path);
}

void document_commands::save_Click() {
  if (MyFilename.isEmpty()) {
    mnuSaveAs_Click();
  } else {
    save_as(MyFilename);
  }
}

void document_commands::mnuSaveAs_Click() {
  const QPointer<document_commands> here(this);
  const QString name = file_dialogs::current().save(sql_files, MyFilename, &window_);
  if (!name.isEmpty() && !here.isNull()) save_as(name);
}

void document_commands::save_as(const QString& name) {
  std::string why;
  if (!write_whole_file(name.toStdString(), file_from_document(text_.document()), why)) {
    show_message({fmt::format("The filename you supplied: {} is not valid.....  Try Again.", name.toStdString()),
                  "User Error", message_icon::question, message_buttons::ok, why});
    return;
  }
  text_.setModified(false);
  keeper_.text_saved();
  window_.setWindowTitle(document_caption(name));
  MyFilename = name;
  host_.add_recent_file(name);
  show_message({"Output Saved!\rFile: " + name.toStdString(), "Message", message_icon::none, message_buttons::ok, {}});
}

void document_commands::clear_editor_Click() {
  const QPointer<document_commands> here(this);
  const message_answer answer =
      show_message({"Clear the editor?", "Decision", message_icon::question, message_buttons::ok_cancel, {}});
  if (answer == message_answer::ok && !here.isNull()) text_.clear_text();
}

void document_commands::mnuEditFind_Click() { (new frmFind(text_, &window_))->show(); }

void document_commands::find_again_Click() {
  if (session::find_text.empty()) {
    mnuEditFind_Click();
  } else {
    frmFind::find_again(text_);
  }
}

void document_commands::choose_font_Click() {
  auto* dialog = new QFontDialog(text_.text_font(), &window_);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QFontDialog::fontSelected, this, &document_commands::use_font);
  dialog->open();
}

void document_commands::use_stored_font() {
  QFont font;
  const auto stored = host_.store().read(font_section, font_key);
  if (stored && !stored->empty() && font.fromString(QString::fromStdString(*stored))) text_.apply_font(font);
}

void document_commands::use_font(const QFont& font) {
  text_.apply_font(font);
  std::string why;
  if (!host_.store().write(font_section, {{font_key, font.toString().toStdString()}}, why))
    host_.show_note("The font is not remembered. " + QString::fromStdString(why));
}

void document_commands::show_modified() {
  const QIcon icon = document_icon(text_.isModified());
  window_.setWindowIcon(icon);
  if (window_.parentWidget() != nullptr) window_.parentWidget()->setWindowIcon(icon);
}
