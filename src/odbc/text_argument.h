#pragma once

#include <limits>
#include <string>
#include <string_view>

#include "base/code_page.h"
#include "odbc/layer_error.h"
#include "odbc/odbc_headers.h"

// A text as an ODBC argument with its length; raises where the code page or the length word cannot hold it.
class text_argument {
 public:
  explicit text_argument(std::string_view text) {
    auto converted = current_code_page().from_utf8(text);
    if (!converted || converted->size() > static_cast<std::size_t>(std::numeric_limits<SQLSMALLINT>::max())) {
      raise_error(odbc_fault::text_not_sendable);
    }
    bytes_ = std::move(*converted);
  }
  SQLCHAR* data() { return reinterpret_cast<SQLCHAR*>(bytes_.data()); }
  [[nodiscard]] SQLSMALLINT length() const { return static_cast<SQLSMALLINT>(bytes_.size()); }

 private:
  std::string bytes_;
};
