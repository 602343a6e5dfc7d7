#include "editor/document_text.h"

#include "base/code_page.h"
#include "base/text.h"

namespace {

constexpr std::string_view mark = "\xEF\xBB\xBF";

}  // namespace

document_text document_from_file(std::string content) {
  document_text document;
  document.byte_order_mark = content.starts_with(mark);
  if (document.byte_order_mark) content.erase(0, mark.size());
  document.encoding =
      document.byte_order_mark || is_valid_utf8(content) ? document_encoding::utf8 : document_encoding::latin1;
  document.bytes = std::move(content);
  return document;
}

std::string file_from_document(const document_text& document) {
  return std::string(file_mark(document.byte_order_mark)) + document.bytes;
}

std::string_view file_mark(bool byte_order_mark) { return byte_order_mark ? mark : std::string_view(); }

std::string document_to_utf8(std::string_view bytes, document_encoding encoding) {
  if (encoding == document_encoding::utf8) return std::string(bytes);
  static const code_page latin1("ISO-8859-1");
  return latin1.to_utf8(bytes);
}
