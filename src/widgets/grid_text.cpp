#include "widgets/grid_text.h"

#include "base/text.h"

namespace {

constexpr std::size_t most_characters_shown = 1000;
constexpr char16_t pilcrow = 0xB6;

}  // namespace

QString readable_text(std::string_view utf8) {
  QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
  text.replace(QChar(u'\0'), QChar(QChar::ReplacementCharacter));
  return text;
}

QString one_line_text(std::string_view utf8) {
  QString text = readable_text(first_characters(utf8, most_characters_shown));
  text.replace("\r\n", "\n");
  for (QChar& each : text) {
    if (each == '\t') each = ' ';
    if (each == '\n' || each == '\r' || each == QChar::LineSeparator || each == QChar::ParagraphSeparator) {
      each = QChar(pilcrow);
    }
  }
  return text;
}
