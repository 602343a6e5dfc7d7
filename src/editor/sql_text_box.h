#pragma once

#include <Qsci/qsciscintilla.h>

#include <string>
#include <string_view>

#include "editor/document_text.h"

class QsciLexerSQL;

// The text box of a document: keeps bytes and line ends as they are, highlights SQL in colours that suit the desktop's
// palette, numbers the lines. Positions are byte offsets.
class sql_text_box : public QsciScintilla {
  Q_OBJECT

 public:
  explicit sql_text_box(QWidget* parent = nullptr);

  // Replaces the whole text and forgets the undo history; a line typed from now on ends as the text's first line does,
  // CR LF in an empty one.
  void set_document(const document_text& document);
  // The text as it would stand in a file.
  [[nodiscard]] document_text document() const;
  [[nodiscard]] document_encoding encoding() const { return encoding_; }

  // The text's bytes; valid until the text is changed.
  [[nodiscard]] std::string_view bytes() const;
  [[nodiscard]] std::size_t caret() const;
  void set_caret(std::size_t offset);
  void select_bytes(std::size_t start, std::size_t length);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void apply_font(const QFont& font);
  void apply_colours();
  void fit_line_numbers();

  QsciLexerSQL* lexer_;
  document_encoding encoding_ = document_encoding::utf8;
  bool byte_order_mark_ = false;
};
