#include "base/ini_text.h"

#include <array>

namespace {

constexpr std::string_view blanks = " \t\r";
constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

struct escape {
  char written;
  char meant;
};
constexpr std::array escapes{escape{'"', '"'}, escape{'\\', '\\'}, escape{'n', '\n'}, escape{'r', '\r'},
                             escape{'t', '\t'}};

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool is_quoted(std::string_view text) { return text.size() >= 2 && text.front() == '"' && text.back() == '"'; }

std::string read_value(std::string_view written) {
  if (!is_quoted(written)) return std::string(written);
  std::string value;
  const std::string_view inner = written.substr(1, written.size() - 2);
  for (std::size_t i = 0; i < inner.size(); ++i) {
    char meant = inner[i];
    if (meant == '\\' && i + 1 < inner.size()) {
      for (const escape& each : escapes) {
        if (each.written == inner[i + 1]) meant = each.meant;
      }
      // A backslash before anything else is one of a path that somebody typed.
      if (meant != '\\' || inner[i + 1] == '\\') ++i;
    }
    value += meant;
  }
  return value;
}

std::string written_value(std::string_view value) {
  const bool plain = trimmed(value) == value && !is_quoted(value) && value.find_first_of("\n\r\t") == value.npos;
  if (plain) return std::string(value);
  std::string written = "\"";
  for (const char c : value) {
    char letter = 0;
    for (const escape& each : escapes) {
      if (each.meant == c) letter = each.written;
    }
    if (letter != 0) written += '\\';
    written += letter != 0 ? letter : c;
  }
  return written + '"';
}

}  // namespace

ini_text::places ini_text::find(std::string_view section, std::string_view key) const {
  places found;
  bool inside = false;
  std::size_t begin = bytes_.starts_with(byte_order_mark) ? byte_order_mark.size() : 0;
  while (begin < bytes_.size()) {
    const std::size_t end = std::min(bytes_.find('\n', begin), bytes_.size());
    const std::string_view line = trimmed(std::string_view(bytes_).substr(begin, end - begin));
    if (line.starts_with('[') && line.ends_with(']')) {
      inside = trimmed(line.substr(1, line.size() - 2)) == section;
    }
    if (inside && !line.empty()) {
      found.section_end = end;
      const std::size_t equals = line.find('=');
      if (equals != line.npos && trimmed(line.substr(0, equals)) == key) found.key = {begin, end};
    }
    begin = end + 1;
  }
  return found;
}

std::optional<std::string> ini_text::value_of(std::string_view section, std::string_view key) const {
  const places found = find(section, key);
  if (!found.key) return std::nullopt;
  const std::string_view line = std::string_view(bytes_).substr(found.key->begin, found.key->end - found.key->begin);
  return read_value(trimmed(line.substr(line.find('=') + 1)));
}

void ini_text::put(std::string_view section, std::string_view key, std::string_view value) {
  const std::string line = std::string(key) + '=' + written_value(value);
  const std::string line_end = bytes_.find("\r\n") == bytes_.npos ? "\n" : "\r\n";
  const places found = find(section, key);
  if (found.key) {
    const bool returns = found.key->end > found.key->begin && bytes_[found.key->end - 1] == '\r';
    bytes_.replace(found.key->begin, found.key->end - found.key->begin, returns ? line + '\r' : line);
  } else if (found.section_end) {
    const bool returns = bytes_[*found.section_end - 1] == '\r';
    bytes_.insert(*found.section_end, '\n' + line + (returns ? "\r" : ""));
  } else {
    if (!bytes_.empty() && !bytes_.ends_with('\n')) bytes_ += line_end;
    if (!bytes_.empty()) bytes_ += line_end;
    bytes_ += '[' + std::string(section) + ']' + line_end + line + line_end;
  }
}
