#include "editor/recovery_folder.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "base/files.h"

namespace fs = std::filesystem;

namespace {

constexpr std::string_view first_line = "Sorvane kept text 1\n";
constexpr const char* text_ending = ".text";
constexpr const char* begun_ending = ".begun";
constexpr mode_t only_the_user = 0700;

std::int64_t system_clock_ms() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

void close_descriptor(int& descriptor) {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
}

void remove_file(const fs::path& file) {
  std::error_code ignored;
  fs::remove(file, ignored);
}

bool move_file(const fs::path& from, const fs::path& to) { return std::rename(from.c_str(), to.c_str()) == 0; }

std::vector<fs::path> entries_of(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code failed;
  for (fs::directory_iterator at(folder, failed), end; !failed && at != end; at.increment(failed))
    found.push_back(at->path());
  std::sort(found.begin(), found.end());
  return found;
}

// A file that this process alone holds the lock of, or -1. The lock goes with the process, however that ends.
int lock_file(const fs::path& file) {
  int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0) close_descriptor(descriptor);
  return descriptor;
}

// Held while a session folder appears or disappears. Another program needs it for moments only; after two seconds the
// work goes on without it.
class folder_guard {
 public:
  explicit folder_guard(const fs::path& folder) {
    for (int tries = 0; tries < 100; ++tries) {
      descriptor_ = lock_file(folder / "lock");
      if (descriptor_ >= 0 || errno != EWOULDBLOCK) return;
      usleep(20'000);
    }
  }
  ~folder_guard() { close_descriptor(descriptor_); }
  folder_guard(const folder_guard&) = delete;
  folder_guard& operator=(const folder_guard&) = delete;
  [[nodiscard]] bool held() const { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
};

std::string counted(std::string_view text) { return fmt::format("{} {}\n", text.size(), text); }

// Reads what counted() wrote off the front of `from`.
std::optional<std::string> read_counted(std::string_view& from) {
  std::size_t length = 0;
  const auto [end, failed] = std::from_chars(from.data(), from.data() + from.size(), length);
  const auto digits = static_cast<std::size_t>(end - from.data());
  if (failed != std::errc() || digits >= from.size() || from[digits] != ' ') return std::nullopt;
  const std::string_view rest = from.substr(digits + 1);
  if (length >= rest.size() || rest[length] != '\n') return std::nullopt;
  from = rest.substr(length + 1);
  return std::string(rest.substr(0, length));
}

std::string head_of(const kept_heading& heading) {
  return std::string(first_line) + counted(heading.caption) + counted(heading.file_name);
}

// A file whose head is not ours is a text all the same.
kept_text text_from(std::string content) {
  std::string_view rest = content;
  if (rest.starts_with(first_line)) {
    rest.remove_prefix(first_line.size());
    const auto caption = read_counted(rest);
    const auto file_name = caption ? read_counted(rest) : std::nullopt;
    if (file_name) return {{*caption, *file_name}, std::string(rest)};
  }
  return {{"Mirelta Editor: UnNamed", ""}, std::move(content)};
}

// Milliseconds that begin a closed text's name.
std::int64_t time_of(const fs::path& file) {
  std::int64_t time = 0;
  const std::string name = file.filename().string();
  std::from_chars(name.data(), name.data() + name.size(), time);
  return time;
}

}  // namespace

recovery_folder::recovery_folder(fs::path folder, clock now)
    : folder_(std::move(folder)), now_(now ? std::move(now) : system_clock_ms) {}

recovery_folder::~recovery_folder() {
  if (lock_ < 0) return;
  remove_file(session_ / "lock");
  close_descriptor(lock_);
  remove_file(session_);  // stays when a copy is left in it
}

bool recovery_folder::open_session(std::string& why) {
  std::error_code failed;
  if (lock_ >= 0 && fs::exists(session_, failed)) return true;
  close_descriptor(lock_);
  fs::create_directories(closed_folder(), failed);
  chmod(folder_.c_str(), only_the_user);
  const folder_guard guard(folder_);
  std::string name = (folder_ / "session-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    why = failed ? failed.message() : std::strerror(errno);
    return false;
  }
  session_ = name;
  lock_ = lock_file(session_ / "lock");
  if (lock_ < 0) why = std::strerror(errno);
  return lock_ >= 0;
}

fs::path recovery_folder::next_closed_file() {
  const std::string name = fmt::format("{:013}-{:06}-{}{}", now_(), ++closed_now_, getpid(), text_ending);
  return closed_folder() / name;
}

std::vector<fs::path> recovery_folder::closed_files() const {
  std::vector<fs::path> files = entries_of(closed_folder());
  std::erase_if(files, [](const fs::path& file) { return file.extension() != text_ending; });
  return files;
}

std::size_t recovery_folder::closed_count() const { return closed_files().size() + in_memory_.size(); }

void recovery_folder::remove_old() {
  const std::vector<fs::path> files = closed_files();
  const std::int64_t oldest = now_() - longest_stay_ms;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files.size() - i > most_texts || time_of(files[i]) < oldest) remove_file(files[i]);
  }
}

void recovery_folder::adopt_session(const fs::path& session, std::size_t& adopted) {
  int lock = lock_file(session / "lock");
  if (lock < 0) return;
  for (const fs::path& file : entries_of(session)) {
    if (file.extension() == begun_ending) remove_file(file);
    if (file.extension() == text_ending && move_file(file, next_closed_file())) ++adopted;
  }
  remove_file(session / "lock");
  close_descriptor(lock);
  remove_file(session);
}

std::size_t recovery_folder::adopt_crashed() {
  std::error_code ignored;
  if (!fs::is_directory(folder_, ignored)) return 0;
  fs::create_directories(closed_folder(), ignored);
  std::size_t adopted = 0;
  const folder_guard guard(folder_);
  if (guard.held()) {
    for (const fs::path& entry : entries_of(folder_)) {
      if (entry.filename().string().starts_with("session-") && entry != session_) adopt_session(entry, adopted);
    }
  }
  remove_old();
  return std::min(adopted, most_texts);
}

std::optional<kept_text> recovery_folder::take_latest(copy& into) {
  if (!in_memory_.empty()) {
    kept_text latest = std::move(in_memory_.back());
    in_memory_.pop_back();
    return latest;
  }
  std::string ignored;
  std::vector<fs::path> files = closed_files();
  for (; !files.empty(); files.pop_back()) {
    file_content content = read_whole_file(files.back().string());
    if (!content.ok()) continue;
    if (open_session(ignored)) {
      into.drop();
      into.file_ = session_ / fmt::format("{:06}{}", ++documents_, text_ending);
      if (!move_file(files.back(), into.file_)) into.file_.clear();
    }
    return text_from(std::move(content.bytes));
  }
  return std::nullopt;
}

recovery_folder::copy::copy(std::shared_ptr<recovery_folder> folder) : folder_(std::move(folder)) {}

recovery_folder::copy::~copy() { drop(); }

bool recovery_folder::copy::begin(const kept_heading& heading, std::string& why) {
  abandon();
  if (!folder_->open_session(why)) return false;
  if (file_.empty() || file_.parent_path() != folder_->session_)
    file_ = folder_->session_ / fmt::format("{:06}{}", ++folder_->documents_, text_ending);
  const fs::path begun = fs::path(file_).replace_extension(begun_ending);
  descriptor_ = open(begun.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (descriptor_ < 0) {
    why = std::strerror(errno);
    return false;
  }
  return append(head_of(heading), why);
}

bool recovery_folder::copy::append(std::string_view bytes, std::string& why) {
  while (!bytes.empty()) {
    const ssize_t taken = write(descriptor_, bytes.data(), bytes.size());
    if (taken < 0 && errno == EINTR) continue;
    if (taken <= 0) {
      why = std::strerror(errno);
      abandon();
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(taken));
  }
  return true;
}

bool recovery_folder::copy::finish(std::string& why) {
  // The last of a full disk's failures comes with the close.
  const bool closed = ::close(descriptor_) == 0;
  descriptor_ = -1;
  if (closed && move_file(fs::path(file_).replace_extension(begun_ending), file_)) return true;
  why = std::strerror(errno);
  abandon();
  return false;
}

void recovery_folder::copy::abandon() {
  close_descriptor(descriptor_);
  if (!file_.empty()) remove_file(fs::path(file_).replace_extension(begun_ending));
}

void recovery_folder::copy::drop() {
  abandon();
  if (!file_.empty()) remove_file(file_);
  file_.clear();
}

bool recovery_folder::copy::close(kept_text text, std::string& why) {
  if (begin(text.heading, why) && append(text.bytes, why) && finish(why)) {
    if (move_file(file_, folder_->next_closed_file())) {
      file_.clear();
      folder_->remove_old();
      return true;
    }
    why = std::strerror(errno);
  }
  drop();
  folder_->in_memory_.push_back(std::move(text));
  if (folder_->in_memory_.size() > most_texts) folder_->in_memory_.pop_front();
  return false;
}
