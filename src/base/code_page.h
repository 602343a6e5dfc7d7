#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The code page of the narrow ODBC calls. Inside the program text is UTF-8; this converts at the border.
class code_page {
 public:
  // A code page by its iconv name, such as "UTF-8" or "ISO-8859-15". ASCII, and a name that iconv does not know, count
  // as UTF-8.
  explicit code_page(const std::string& name);
  ~code_page();
  code_page(code_page&&) noexcept;
  code_page& operator=(code_page&&) noexcept;

  // The code page of the process locale (nl_langinfo(CODESET)).
  static code_page of_locale();

  [[nodiscard]] const std::string& name() const { return name_; }
  // 4 for UTF-8, 1 for single-byte code pages, 2 to 4 for other multi-byte ones.
  [[nodiscard]] std::size_t max_bytes_per_char() const { return max_bytes_per_char_; }
  [[nodiscard]] bool is_utf8() const { return converters_ == nullptr; }

  // Bytes of the code page as UTF-8. UTF-8 passes unchanged, even where it is broken: what is shown marks that.
  // In any other code page a byte without a character becomes U+FFFD.
  [[nodiscard]] std::string to_utf8(std::string_view bytes) const;
  // Nothing when the text has a character that the code page lacks: text is never altered on its way to a database.
  [[nodiscard]] std::optional<std::string> from_utf8(std::string_view text) const;

 private:
  struct converters;
  std::string name_;
  std::size_t max_bytes_per_char_ = 4;
  std::unique_ptr<converters> converters_;
};

// The code page in force, at first that of the process locale.
code_page& current_code_page();
