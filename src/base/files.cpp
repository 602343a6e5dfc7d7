#include "base/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

// A file descriptor open for reading, or -1 with errno set.
class open_file {
 public:
  explicit open_file(const std::string& path) : descriptor_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    struct stat status {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) return;
    size_ = static_cast<std::size_t>(status.st_size);
    if (S_ISREG(status.st_mode)) return;
    close(descriptor_);
    descriptor_ = -1;
    errno = S_ISDIR(status.st_mode) ? EISDIR : ENODEV;
  }
  ~open_file() {
    if (valid()) close(descriptor_);
  }
  open_file(const open_file&) = delete;
  open_file& operator=(const open_file&) = delete;

  [[nodiscard]] bool valid() const { return descriptor_ >= 0; }
  [[nodiscard]] std::size_t size() const { return size_; }
  ssize_t read_into(char* target, std::size_t most) const {
    ssize_t got = 0;
    do {
      got = read(descriptor_, target, most);
    } while (got < 0 && errno == EINTR);
    return got;
  }

 private:
  int descriptor_;
  std::size_t size_ = 0;
};

}  // namespace

bool file_exists(const std::string& path) { return open_file(path).valid(); }

file_content read_whole_file(const std::string& path) {
  const open_file file(path);
  if (!file.valid()) return {{}, errno == ENODEV ? "Not a regular file" : std::strerror(errno)};
  static const file_content too_large{{}, "The file is larger than 1 GB"};
  if (file.size() > most_file_bytes) return too_large;
  file_content content;
  content.bytes.resize(file.size());
  std::size_t filled = 0;
  for (;;) {
    // The file may have grown or shrunk since its size was asked.
    if (filled == content.bytes.size()) content.bytes.resize(filled + 65536);
    const ssize_t got = file.read_into(content.bytes.data() + filled, content.bytes.size() - filled);
    if (got < 0) return {{}, std::strerror(errno)};
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
    if (filled > most_file_bytes) return too_large;
  }
  content.bytes.resize(filled);
  return content;
}
