#include "editor/sql_text_box.h"

#include <Qsci/qscilexersql.h>

#include <Qsci/qscicommandset.h>

#include <QAccessibleWidget>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QShortcut>
#include <algorithm>
#include <array>
#include <optional>

#include "editor/text_search.h"

namespace {

constexpr int line_number_margin = 0;
// Up to this size the box looks for the partner of a bracket, which takes a walk through the text for one that has
// none.
constexpr std::size_t most_bytes_to_match_brackets = 1'000'000;
// Up to this size a replaced text is kept for undo.
constexpr std::size_t most_bytes_to_undo = 32'000'000;

struct style_colour {
  int style;
  QRgb light;
  QRgb dark;
};
// Readable on a white and on a dark grey ground (contrast 4.5 to 1 or better).
constexpr std::array style_colours{
    style_colour{QsciLexerSQL::Comment, 0xff4d6b4d, 0xff8fbf8f},
    style_colour{QsciLexerSQL::CommentLine, 0xff4d6b4d, 0xff8fbf8f},
    style_colour{QsciLexerSQL::CommentDoc, 0xff4d6b4d, 0xff8fbf8f},
    style_colour{QsciLexerSQL::CommentLineHash, 0xff4d6b4d, 0xff8fbf8f},
    style_colour{QsciLexerSQL::Number, 0xff9a3c00, 0xfff0b080},
    style_colour{QsciLexerSQL::Keyword, 0xff0b3fa8, 0xff8ab4f8},
    style_colour{QsciLexerSQL::KeywordSet5, 0xff0b3fa8, 0xff8ab4f8},
    style_colour{QsciLexerSQL::DoubleQuotedString, 0xff7a1f6b, 0xffe6a3d8},
    style_colour{QsciLexerSQL::SingleQuotedString, 0xff8b1a1a, 0xfff28b82},
    style_colour{QsciLexerSQL::QuotedIdentifier, 0xff7a1f6b, 0xffe6a3d8},
};

std::size_t first_line_end(std::string_view text) { return text.find_first_of("\r\n"); }

QsciScintilla::EolMode eol_mode_of(std::string_view text) {
  const std::size_t end = first_line_end(text);
  if (end == std::string_view::npos || text.substr(end, 2) == "\r\n") return QsciScintilla::EolWindows;
  return text[end] == '\n' ? QsciScintilla::EolUnix : QsciScintilla::EolMac;
}

// The base class tells accessibility of every change with a position in characters, counted from the start of the text,
// which makes typing slow in a large one. While nobody listens a plain interface stands in for its own.
QAccessibleInterface* silent_interface(const QString& class_name, QObject* object) {
  if (class_name != "sql_text_box" || QAccessible::isActive()) return nullptr;
  return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::EditableText);
}

// A character in its own, its lower and its upper case, as the document's bytes; what its encoding lacks is left out.
std::vector<std::string> ways_to_write(char32_t character, document_encoding encoding) {
  std::vector<std::string> ways;
  for (const char32_t way : {character, QChar::toLower(character), QChar::toUpper(character)}) {
    const QString text = QString::fromUcs4(&way, 1);
    const QByteArray bytes = encoding == document_encoding::utf8 ? text.toUtf8() : text.toLatin1();
    if (encoding == document_encoding::utf8 || QString::fromLatin1(bytes) == text) ways.push_back(bytes.toStdString());
  }
  return ways;
}

bool carries_files(const QDropEvent& event) { return event.mimeData()->hasUrls(); }

}  // namespace

sql_text_box::sql_text_box(QWidget* parent) : QsciScintilla(parent), lexer_(new QsciLexerSQL(this)) {
  static const bool installed = [] {
    QAccessible::installFactory(silent_interface);
    return true;
  }();
  static_cast<void>(installed);
  QAccessible::installActivationObserver(this);
  accessibilityActiveChanged(QAccessible::isActive());
  setUtf8(true);
  setEolMode(EolWindows);
  setMarginType(line_number_margin, NumberMargin);
  setMarginWidth(1, 0);
  setLexer(lexer_);
  apply_font(QFont("Arial", 10));
  apply_colours();
  // Keys of the program's own.
  for (const QKeyCombination key : {Qt::CTRL | Qt::SHIFT | Qt::Key_T, Qt::CTRL | Qt::SHIFT | Qt::Key_C}) {
    if (QsciCommand* bound = standardCommands()->boundTo(key.toCombined())) bound->setKey(0);
  }
  auto* normal_size = new QShortcut(Qt::CTRL | Qt::Key_0, this, nullptr, nullptr, Qt::WidgetShortcut);
  connect(normal_size, &QShortcut::activated, this, [this] { zoomTo(0); });
  connect(this, &QsciScintilla::SCN_UPDATEUI, this, [this](int what) {
    if ((what & SC_UPDATE_CONTENT) != 0) emit edited();
  });
  connect(this, &sql_text_box::edited, this, &sql_text_box::fit_to_content);
  connect(this, &QsciScintilla::SCN_ZOOM, this, [this] {
    numbered_lines_ = 0;
    fit_to_content();
  });
  fit_to_content();
}

sql_text_box::~sql_text_box() { QAccessible::removeActivationObserver(this); }

void sql_text_box::accessibilityActiveChanged(bool active) {
  SendScintilla(SCI_SETMODEVENTMASK, active ? static_cast<unsigned long>(SC_MODEVENTMASKALL) : 0UL);
  QAccessibleInterface* known = active ? QAccessible::queryAccessibleInterface(this) : nullptr;
  if (known != nullptr && known->textInterface() == nullptr)
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(known));
}

void sql_text_box::put_text(const document_text& document) {
  encoding_ = document.encoding;
  byte_order_mark_ = document.byte_order_mark;
  setUtf8(encoding_ == document_encoding::utf8);
  SendScintilla(SCI_CLEARALL);
  SendScintilla(SCI_ADDTEXT, document.bytes.size(), document.bytes.data());
  setEolMode(eol_mode_of(document.bytes));
  emit edited();
}

void sql_text_box::set_document(const document_text& document) {
  SendScintilla(SCI_SETUNDOCOLLECTION, 0UL);
  put_text(document);
  SendScintilla(SCI_SETUNDOCOLLECTION, 1UL);
  SendScintilla(SCI_EMPTYUNDOBUFFER);
  SendScintilla(SCI_SETSAVEPOINT);
  SendScintilla(SCI_GOTOPOS, 0UL);
}

void sql_text_box::replace_document(const document_text& document) {
  if (size() == 0 || document.encoding != encoding_ || document.byte_order_mark != byte_order_mark_ ||
      document.bytes.size() + size() > most_bytes_to_undo) {
    set_document(document);
    return;
  }
  SendScintilla(SCI_BEGINUNDOACTION);
  put_text(document);
  SendScintilla(SCI_ENDUNDOACTION);
  SendScintilla(SCI_SETSAVEPOINT);
  SendScintilla(SCI_GOTOPOS, 0UL);
}

void sql_text_box::restore_document(const document_text& document) {
  set_document({{}, document.encoding, document.byte_order_mark});
  put_text(document);
  SendScintilla(SCI_GOTOPOS, 0UL);
}

void sql_text_box::clear_text() {
  SendScintilla(SCI_CLEARALL);
  emit edited();
}

document_text sql_text_box::document() const { return {std::string(bytes()), encoding_, byte_order_mark_}; }

std::size_t sql_text_box::size() const { return static_cast<std::size_t>(SendScintilla(SCI_GETLENGTH)); }

std::string_view sql_text_box::bytes() const {
  return {static_cast<const char*>(SendScintillaPtrResult(SCI_GETCHARACTERPOINTER)), size()};
}

std::string_view sql_text_box::bytes(std::size_t start, std::size_t length) const {
  const std::size_t all = size();
  start = std::min(start, all);
  length = std::min(length, all - start);
  if (length == 0) return {};
  const auto* first =
      reinterpret_cast<const char*>(SendScintilla(SCI_GETRANGEPOINTER, start, static_cast<long>(length)));
  return {first, length};
}

std::size_t sql_text_box::caret() const { return static_cast<std::size_t>(SendScintilla(SCI_GETSELECTIONSTART)); }

void sql_text_box::set_caret(std::size_t offset) { SendScintilla(SCI_GOTOPOS, offset); }

bool sql_text_box::insert_at_caret(const QString& text) {
  if (!isUtf8() && QString::fromLatin1(text.toLatin1()) != text) return false;
  set_caret(caret());
  replaceSelectedText(text);
  return true;
}

void sql_text_box::select_bytes(std::size_t start, std::size_t length) {
  SendScintilla(SCI_SETSEL, start, static_cast<long>(start + length));
}

bool sql_text_box::find_next(const QString& text) {
  wanted_text wanted;
  for (const char32_t character : text.toUcs4()) wanted.push_back(ways_to_write(character, encoding_));
  const std::size_t here = caret();
  const std::size_t selected = static_cast<std::size_t>(SendScintilla(SCI_GETSELECTIONEND)) - here;
  const auto after = static_cast<std::size_t>(SendScintilla(SCI_POSITIONAFTER, here));
  auto found = find_text(bytes(), wanted, here == 0 ? 0 : after);
  // The selection at the very start is the last hit.
  if (found && found->start == 0 && selected == found->length) found = find_text(bytes(), wanted, after);
  if (!found) return false;
  select_bytes(found->start, found->length);
  ensureCursorVisible();
  repaint();
  return true;
}

void sql_text_box::apply_font(const QFont& font) {
  font_ = font;
  lexer_->setDefaultFont(font);
  lexer_->setFont(font);
  setMarginsFont(font);
  numbered_lines_ = 0;
  fit_to_content();
}

void sql_text_box::apply_colours() {
  const QPalette colours = QApplication::palette();
  const QColor ground = colours.color(QPalette::Base);
  const QColor ink = colours.color(QPalette::Text);
  const bool dark = ground.lightness() < 128;
  lexer_->setDefaultPaper(ground);
  lexer_->setDefaultColor(ink);
  lexer_->setPaper(ground);
  lexer_->setColor(ink);
  for (const style_colour& each : style_colours) lexer_->setColor(QColor(dark ? each.dark : each.light), each.style);
  setCaretForegroundColor(ink);
  setSelectionBackgroundColor(colours.color(QPalette::Highlight));
  setSelectionForegroundColor(colours.color(QPalette::HighlightedText));
  setMarginsBackgroundColor(colours.color(QPalette::Window));
  setMarginsForegroundColor(colours.color(QPalette::WindowText));
  setMatchedBraceBackgroundColor(QColor(dark ? 0xff2f5d3a : 0xffc5e8cc));
  setMatchedBraceForegroundColor(ink);
  setUnmatchedBraceBackgroundColor(ground);
  setUnmatchedBraceForegroundColor(QColor(dark ? 0xfff28b82 : 0xffb00020));
}

void sql_text_box::fit_to_content() {
  const BraceMatch wanted = size() <= most_bytes_to_match_brackets ? SloppyBraceMatch : NoBraceMatch;
  if (braceMatching() != wanted) setBraceMatching(wanted);
  if (numbered_lines_ == lines()) return;
  numbered_lines_ = lines();
  setMarginWidth(line_number_margin, QString(" %1 ").arg(qMax(numbered_lines_, 100)));
}

void sql_text_box::changeEvent(QEvent* event) {
  QsciScintilla::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange) apply_colours();
}

void sql_text_box::dragEnterEvent(QDragEnterEvent* event) {
  if (carries_files(*event)) {
    event->ignore();
  } else {
    QsciScintilla::dragEnterEvent(event);
  }
}

void sql_text_box::dragMoveEvent(QDragMoveEvent* event) {
  if (carries_files(*event)) {
    event->ignore();
  } else {
    QsciScintilla::dragMoveEvent(event);
  }
}
