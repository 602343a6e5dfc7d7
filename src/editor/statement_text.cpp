#include "editor/statement_text.h"

std::string_view trima(std::string_view text) {
  std::size_t blank = 0;
  while (blank < text.size() && static_cast<unsigned char>(text[blank]) <= 32) ++blank;
  return text.substr(blank);
}

std::optional<std::string_view> get_sql_str(std::string_view text, std::size_t caret) {
  if (caret <= 1) caret = 0;
  std::size_t start = 0;
  for (;;) {
    const std::size_t end = text.find(';', start);
    if (end == std::string_view::npos) return std::nullopt;
    if (end >= caret) return trima(text.substr(start, end - start));
    start = end + 1;
  }
}

std::vector<statement_span> statement_spans(std::string_view text) {
  std::vector<statement_span> spans;
  std::size_t start = 0;
  for (std::size_t end = text.find(';'); end != std::string_view::npos; end = text.find(';', start)) {
    spans.push_back({start, end - start});
    start = end + 1;
  }
  return spans;
}
