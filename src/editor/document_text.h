#pragma once

#include <string>
#include <string_view>

// A document's bytes as they stand in its file. Valid UTF-8 is read as UTF-8, anything else as ISO 8859-1; a byte order
// mark is set aside.
enum class document_encoding { utf8, latin1 };

struct document_text {
  std::string bytes;  // without the mark, every line end as it was
  document_encoding encoding = document_encoding::utf8;
  bool byte_order_mark = false;
};

// Splits a file's content; joining gives the same bytes back.
document_text document_from_file(std::string content);
std::string file_from_document(const document_text& document);

// What stands before the text in its file: the mark or nothing.
std::string_view file_mark(bool byte_order_mark);

// A piece of a document's bytes as UTF-8, as the rest of the program takes it.
std::string document_to_utf8(std::string_view bytes, document_encoding encoding);
