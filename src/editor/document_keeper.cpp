#include "editor/document_keeper.h"

#include <algorithm>

#include "editor/sql_text_box.h"

namespace {

constexpr int shortest_pause_ms = 1000;
// A text of this size waits one second longer.
constexpr std::size_t bytes_per_second_of_pause = 10'000'000;
// So many pauses after the first key a copy is begun without one.
constexpr int pauses_at_most = 10;
constexpr int retry_ms = 30'000;
constexpr std::size_t slice_bytes = 262'144;

}  // namespace

document_keeper::document_keeper(sql_text_box& text, std::shared_ptr<recovery_folder> folder,
                                 std::function<kept_heading()> heading, QObject* parent)
    : QObject(parent), text_(text), folder_(std::move(folder)), heading_(std::move(heading)), copy_(folder_) {
  idle_.setSingleShot(true);
  connect(&idle_, &QTimer::timeout, this, &document_keeper::begin_copy);
  connect(&slices_, &QTimer::timeout, this, &document_keeper::write_slice);
  connect(&text_, &sql_text_box::edited, this, &document_keeper::text_edited);
}

bool document_keeper::unsaved() const { return text_.isModified() && text_.size() > 0; }

int document_keeper::pause_ms() const {
  return shortest_pause_ms + static_cast<int>(text_.size() / bytes_per_second_of_pause) * 1000;
}

void document_keeper::text_edited() {
  if (slices_.isActive()) {
    slices_.stop();
    copy_.abandon();
  }
  if (!since_first_edit_.isValid()) since_first_edit_.start();
  const qint64 left = qint64{pauses_at_most} * pause_ms() - since_first_edit_.elapsed();
  idle_.start(static_cast<int>(std::clamp<qint64>(left, 0, pause_ms())));
}

void document_keeper::begin_copy() {
  since_first_edit_.invalidate();
  if (!unsaved()) {
    copy_.drop();
    return;
  }
  std::string why;
  const std::string_view mark = file_mark(text_.byte_order_mark());
  if (!copy_.begin(heading_(), why) || !copy_.append(mark, why)) {
    report(why);
    return;
  }
  written_ = 0;
  slices_.start(0);
  write_slice();
}

void document_keeper::write_slice() {
  std::string why;
  const std::string_view slice = text_.bytes(written_, slice_bytes);
  bool good = copy_.append(slice, why);
  written_ += slice.size();
  if (good && written_ < text_.size()) return;
  slices_.stop();
  good = good && copy_.finish(why);
  report(good ? std::string() : why);
}

void document_keeper::report(const std::string& why) {
  if (!why.empty()) idle_.start(retry_ms);
  if (folder_->failure_changed(why)) emit copied(QString::fromStdString(why));
}

void document_keeper::text_saved() {
  idle_.stop();
  slices_.stop();
  since_first_edit_.invalidate();
  copy_.drop();
}

void document_keeper::put_aside() {
  if (!unsaved()) {
    text_saved();
    return;
  }
  idle_.stop();
  slices_.stop();
  since_first_edit_.invalidate();
  std::string why;
  const bool kept = copy_.close({heading_(), file_from_document(text_.document())}, why);
  report(kept ? std::string() : why);
  idle_.stop();
}

std::optional<kept_text> document_keeper::take_latest() { return folder_->take_latest(copy_); }
