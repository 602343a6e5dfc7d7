#include "platform/saved_file.h"

#include <QSaveFile>
#include <filesystem>

namespace {

// Goes on after a write that took only a part, so that the next one says why.
bool write_all(QSaveFile& file, const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const qint64 taken = file.write(bytes.data() + done, static_cast<qint64>(bytes.size() - done));
    if (taken <= 0) return false;
    done += static_cast<std::size_t>(taken);
  }
  return true;
}

}  // namespace

bool write_whole_file(const std::string& path, const std::string& bytes, std::string& why) {
  // A device or a pipe takes no file's place, and opening a pipe would wait for its reader.
  std::error_code unknown;
  const auto kind = std::filesystem::status(path, unknown).type();
  if (kind != std::filesystem::file_type::regular && kind != std::filesystem::file_type::not_found &&
      kind != std::filesystem::file_type::none) {
    why = kind == std::filesystem::file_type::directory ? "Is a directory" : "Not a regular file";
    return false;
  }
  QSaveFile file(QString::fromStdString(path));
  // Unbuffered: commit() does not notice that its last flush failed, and would put half a text in the old file's place.
  const bool written =
      file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && write_all(file, bytes) && file.commit();
  if (!written) why = file.errorString().toStdString();
  return written;
}
