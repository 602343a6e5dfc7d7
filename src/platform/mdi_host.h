#pragma once

#include <memory>

class QAction;
class QMdiSubWindow;
class QMenu;
class QString;
class QWidget;
class recovery_folder;
class settings_store;
template <typename T>
class QList;

// What windows of the features ask of the frame that holds them.
class mdi_host {
 public:
  virtual ~mdi_host() = default;
  // Opens a window as a child of the frame and shows it. The frame deletes it when it is closed.
  virtual QMdiSubWindow* show_child(QWidget* window) = 0;
  // Fills a menu with the open documents; choosing one activates it.
  virtual void fill_window_list(QMenu& menu) = 0;
  virtual void show_help() = 0;
  virtual void show_about() = 0;
  // The options panel and the AS/400 job window. Both are modal and return when they are closed.
  virtual void show_options() = 0;
  virtual void show_job_settings() = 0;
  // A line for the user on the frame's status bar, until the next; "" takes it back.
  virtual void show_note(const QString& note) = 0;
  // A file that was opened or saved.
  virtual void add_recent_file(const QString& path) = 0;
  // Where preferences are kept between runs.
  virtual settings_store& store() = 0;
  // Where the texts of unsaved documents are kept.
  virtual std::shared_ptr<recovery_folder> recovery() = 0;
  // Inserts a text at the caret of the document that was active last. Gives what stands in the way, as a message for
  // the user; "" when it is done.
  virtual QString insert_into_document(const QString& text) = 0;
};

// A child of the frame with menus of its own, which stand in the frame's menu bar while it is active.
class mdi_document {
 public:
  virtual ~mdi_document() = default;
  [[nodiscard]] virtual QList<QAction*> menu_bar_actions() const = 0;
};

// A child of the frame that holds a text.
class mdi_text_document {
 public:
  virtual ~mdi_text_document() = default;
  // Inserts a text at the caret, leaving what is selected; the result as of mdi_host::insert_into_document.
  virtual QString insert_text(const QString& text) = 0;
};
