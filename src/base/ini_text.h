#pragma once

#include <optional>
#include <string>
#include <string_view>

// The text of an INI file: "[section]" lines, each followed by its "key=value" lines. All other lines, and every byte
// that no `put` concerns, stay as they are. Section and key are compared exactly, blanks around them aside; of a key
// that stands twice the last counts.
//
// A value is the rest of its line without blanks around it. One that begins and ends with a double quote is what stands
// between, where a backslash stands before a quote, another backslash, or the letter of a line end or tab (n, r, t).
class ini_text {
 public:
  explicit ini_text(std::string bytes) : bytes_(std::move(bytes)) {}

  [[nodiscard]] std::optional<std::string> value_of(std::string_view section, std::string_view key) const;
  // Replaces the value, or adds key and section where they are missing.
  void put(std::string_view section, std::string_view key, std::string_view value);
  [[nodiscard]] const std::string& bytes() const { return bytes_; }

 private:
  // Where something is in the bytes: the line, without its end.
  struct place {
    std::size_t begin = 0;
    std::size_t end = 0;
  };
  struct places {
    std::optional<place> key;
    std::optional<std::size_t> section_end;  // behind the last line of the section that holds something
  };
  [[nodiscard]] places find(std::string_view section, std::string_view key) const;

  std::string bytes_;
};
