#pragma once

#include <Qsci/qsciscintilla.h>

#include <QAccessible>
#include <string>
#include <string_view>

#include "editor/document_text.h"

class QsciLexerSQL;

// The text box of a document: keeps bytes and line ends as they are, highlights SQL in colours that suit the desktop's
// palette, numbers the lines, marks matching brackets. Positions are byte offsets. Files dropped on it are left to the
// windows around it.
class sql_text_box : public QsciScintilla, private QAccessible::ActivationObserver {
  Q_OBJECT

 public:
  explicit sql_text_box(QWidget* parent = nullptr);
  ~sql_text_box() override;

  // Replaces the whole text and forgets the undo history; a line typed from now on ends as the text's first line does,
  // CR LF in an empty one.
  void set_document(const document_text& document);
  // As set_document, but undo brings the old text back, as long as both are in one encoding and not very large.
  void replace_document(const document_text& document);
  // As set_document, for a text that no file holds: the box counts as modified.
  void restore_document(const document_text& document);
  // Empties the text; undo brings it back.
  void clear_text();
  // The text as it would stand in a file.
  [[nodiscard]] document_text document() const;
  [[nodiscard]] document_encoding encoding() const { return encoding_; }
  [[nodiscard]] bool byte_order_mark() const { return byte_order_mark_; }

  // The text's bytes; valid until the text is changed.
  [[nodiscard]] std::string_view bytes() const;
  // Some of them, at a cost that does not grow with the text.
  [[nodiscard]] std::string_view bytes(std::size_t start, std::size_t length) const;
  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] std::size_t caret() const;
  void set_caret(std::size_t offset);
  // Inserts at the caret and moves it behind the text; what is selected stays, unselected. False, with nothing
  // inserted, when the encoding of the document lacks a character.
  bool insert_at_caret(const QString& text);
  void select_bytes(std::size_t start, std::size_t length);
  // Selects the first place after the caret that reads as `text`, whatever its case; one that starts at the caret
  // counts only at the start of the text, when it is not the selection already. False when there is none.
  bool find_next(const QString& text);

  void apply_font(const QFont& font);
  [[nodiscard]] QFont text_font() const { return font_; }

 signals:
  // The text has changed, and shows it. The base class's textChanged is silent: see accessibilityActiveChanged.
  void edited();

 protected:
  void changeEvent(QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;

 private:
  // While no screen reader listens the base class is not told of changes: it would count characters at each.
  void accessibilityActiveChanged(bool active) override;
  void put_text(const document_text& document);
  void apply_colours();
  void fit_to_content();

  QsciLexerSQL* lexer_;
  QFont font_;
  document_encoding encoding_ = document_encoding::utf8;
  bool byte_order_mark_ = false;
  int numbered_lines_ = 0;
};
