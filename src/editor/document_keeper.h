#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>

#include "editor/recovery_folder.h"

class sql_text_box;

// Keeps a copy of one document's unsaved text in the recovery folder while it is typed. Writes when the user pauses,
// or after a while without a pause, and in slices between the keys; the larger the text, the rarer.
class document_keeper : public QObject {
  Q_OBJECT

 public:
  // `heading` is asked whenever a copy is written.
  document_keeper(sql_text_box& text, std::shared_ptr<recovery_folder> folder, std::function<kept_heading()> heading,
                  QObject* parent);

  // The text stands in a file now.
  void text_saved();
  // The text is about to go: what no file holds goes to the closed texts.
  void put_aside();
  // Takes the latest closed text over; its copy is this document's from now on.
  std::optional<kept_text> take_latest();

 signals:
  // Why texts can not be copied, once for all documents; "" when they can again.
  void copied(const QString& why);

 private:
  void text_edited();
  void begin_copy();
  void write_slice();
  void report(const std::string& why);
  [[nodiscard]] bool unsaved() const;
  [[nodiscard]] int pause_ms() const;

  sql_text_box& text_;
  std::shared_ptr<recovery_folder> folder_;
  std::function<kept_heading()> heading_;
  recovery_folder::copy copy_;
  QTimer idle_;
  QTimer slices_;
  QElapsedTimer since_first_edit_;
  std::size_t written_ = 0;
};
