#include "platform/saved_file.h"

#include <QSaveFile>

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
  QSaveFile file(QString::fromStdString(path));
  // Unbuffered: commit() does not notice that its last flush failed, and would put half a text in the old file's place.
  const bool written =
      file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && write_all(file, bytes) && file.commit();
  if (!written) why = file.errorString().toStdString();
  return written;
}
