#pragma once

#include <QMainWindow>
#include <QTimer>
#include <memory>
#include <string>

#include "platform/mdi_host.h"
#include "shell/recent_files.h"
#include "shell/settings.h"

namespace Ui {
class MainMdi;
}

// The frame: holds the documents, shows its own menus while no document is active, and ends the program when it is
// closed.
class MainMdi : public QMainWindow, public mdi_host {
  Q_OBJECT

 public:
  // `store` takes what the options panel saves and must outlive the frame; `command_line` is the text of the program's
  // arguments.
  MainMdi(settings_store& store, std::string command_line);
  ~MainMdi() override;

  // Opens the documents that the command line names.
  void MDIForm_Load();

  QMdiSubWindow* show_child(QWidget* window) override;
  void fill_window_list(QMenu& menu) override;
  void show_help() override;
  void show_about() override;
  void show_options() override;
  void show_job_settings() override;
  void show_note(const QString& note) override;
  void add_recent_file(const QString& path) override;
  settings_store& store() override { return store_; }
  std::shared_ptr<recovery_folder> recovery() override;
  QString insert_into_document(const QString& text) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MDIForm_Resize();
  void MDIForm_Unload();
  void mnuMdiNew_Click();
  void mnuMdiOpen_Click();
  void mnuReopenClosed_Click();
  void mnuTest_Click();
  void offer_crashed_texts();
  void show_recent_files();
  void open_recent(const QString& path);
  [[nodiscard]] QPoint next_child_position(const QMdiSubWindow& child) const;
  void show_menus_of_active_window();
  void show_date_and_time();

  std::unique_ptr<Ui::MainMdi> ui_;
  settings_store& store_;
  std::string command_line_;
  recent_files recent_;
  QList<QAction*> recent_entries_;
  std::shared_ptr<recovery_folder> recovery_;
  QList<QAction*> own_menus_;
  QTimer clock_;
  bool unloaded_ = false;
};
