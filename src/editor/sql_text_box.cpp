#include "editor/sql_text_box.h"

#include <Qsci/qscilexersql.h>

#include <QApplication>
#include <QEvent>
#include <array>

namespace {

constexpr int line_number_margin = 0;

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

}  // namespace

sql_text_box::sql_text_box(QWidget* parent) : QsciScintilla(parent), lexer_(new QsciLexerSQL(this)) {
  setUtf8(true);
  setEolMode(EolWindows);
  setMarginType(line_number_margin, NumberMargin);
  setMarginWidth(1, 0);
  setLexer(lexer_);
  apply_font(QFont("Arial", 10));
  apply_colours();
  connect(this, &QsciScintilla::linesChanged, this, &sql_text_box::fit_line_numbers);
  connect(this, &QsciScintilla::SCN_ZOOM, this, &sql_text_box::fit_line_numbers);
}

void sql_text_box::set_document(const document_text& document) {
  encoding_ = document.encoding;
  byte_order_mark_ = document.byte_order_mark;
  setUtf8(encoding_ == document_encoding::utf8);
  SendScintilla(SCI_CLEARALL);
  SendScintilla(SCI_ADDTEXT, document.bytes.size(), document.bytes.data());
  SendScintilla(SCI_EMPTYUNDOBUFFER);
  SendScintilla(SCI_SETSAVEPOINT);
  setEolMode(eol_mode_of(document.bytes));
  SendScintilla(SCI_GOTOPOS, 0UL);
  fit_line_numbers();
}

document_text sql_text_box::document() const { return {std::string(bytes()), encoding_, byte_order_mark_}; }

std::string_view sql_text_box::bytes() const {
  const auto length = static_cast<std::size_t>(SendScintilla(SCI_GETLENGTH));
  return {static_cast<const char*>(SendScintillaPtrResult(SCI_GETCHARACTERPOINTER)), length};
}

std::size_t sql_text_box::caret() const { return static_cast<std::size_t>(SendScintilla(SCI_GETSELECTIONSTART)); }

void sql_text_box::set_caret(std::size_t offset) { SendScintilla(SCI_GOTOPOS, offset); }

void sql_text_box::select_bytes(std::size_t start, std::size_t length) {
  SendScintilla(SCI_SETSEL, start, static_cast<long>(start + length));
}

void sql_text_box::apply_font(const QFont& font) {
  lexer_->setDefaultFont(font);
  lexer_->setFont(font);
  setMarginsFont(font);
  fit_line_numbers();
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
}

void sql_text_box::fit_line_numbers() { setMarginWidth(line_number_margin, QString(" %1 ").arg(qMax(lines(), 100))); }

void sql_text_box::changeEvent(QEvent* event) {
  QsciScintilla::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange) apply_colours();
}
