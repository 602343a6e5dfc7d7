#include "base/code_page.h"

#include <iconv.h>
#include <langinfo.h>

#include <cerrno>

#include "base/text.h"

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

// One direction of an iconv conversion.
class converter {
 public:
  converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
  ~converter() {
    if (valid()) iconv_close(handle_);
  }
  converter(const converter&) = delete;
  converter& operator=(const converter&) = delete;

  [[nodiscard]] bool valid() const { return handle_ != invalid(); }

  // Converts; a sequence that cannot be converted is given to `repair`, which says how many input bytes to skip, or 0
  // to give up.
  template <typename Repair>
  bool convert(std::string_view in, std::string& out, Repair repair) const {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    auto* source = const_cast<char*>(in.data());  // iconv's signature; the bytes are only read
    std::size_t left = in.size();
    char piece[1024];
    while (left > 0) {
      char* target = piece;
      std::size_t room = sizeof piece;
      const bool failed = iconv(handle_, &source, &left, &target, &room) == static_cast<std::size_t>(-1);
      const int reason = errno;
      out.append(piece, static_cast<std::size_t>(target - piece));
      if (!failed || reason == E2BIG) continue;
      const std::size_t skip = repair(std::string_view(source, left), out);
      if (skip == 0 || skip > left) return false;
      source += skip;
      left -= skip;
    }
    return true;
  }

 private:
  static iconv_t invalid() { return reinterpret_cast<iconv_t>(-1); }
  iconv_t handle_;
};

std::size_t widest_character(const std::string& name) {
  const std::string upper = upper_case(name);
  if (begins_with(upper, "ISO-8859") || begins_with(upper, "ISO8859") || begins_with(upper, "KOI8")) return 1;
  if (begins_with(upper, "CP125") || begins_with(upper, "WINDOWS-125") || upper == "TIS-620") return 1;
  if (begins_with(upper, "BIG5") || begins_with(upper, "GBK") || begins_with(upper, "SHIFT") || upper == "EUC-KR")
    return 2;
  return 4;
}

bool counts_as_utf8(const std::string& name) {
  const std::string upper = upper_case(name);
  return upper == "UTF-8" || upper == "UTF8" || upper == "US-ASCII" || upper == "ASCII" || upper == "ANSI_X3.4-1968";
}

}  // namespace

struct code_page::converters {
  explicit converters(const std::string& name) : in("UTF-8", name.c_str()), out(name.c_str(), "UTF-8") {}
  converter in;
  converter out;
};

code_page::code_page(const std::string& name) : name_(name) {
  if (!counts_as_utf8(name)) {
    converters_ = std::make_unique<converters>(name);
    if (!converters_->in.valid() || !converters_->out.valid()) converters_.reset();
  }
  if (is_utf8()) name_ = "UTF-8";
  max_bytes_per_char_ = is_utf8() ? 4 : widest_character(name);
}

code_page::~code_page() = default;
code_page::code_page(code_page&&) noexcept = default;
code_page& code_page::operator=(code_page&&) noexcept = default;

code_page code_page::of_locale() { return code_page(nl_langinfo(CODESET)); }

std::string code_page::to_utf8(std::string_view bytes) const {
  if (is_utf8()) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size());
  converters_->in.convert(bytes, text, [](std::string_view, std::string& out) {
    out += replacement;
    return std::size_t{1};
  });
  return text;
}

std::optional<std::string> code_page::from_utf8(std::string_view text) const {
  if (is_utf8()) return std::string(text);
  std::string bytes;
  bytes.reserve(text.size());
  const bool whole =
      converters_->out.convert(text, bytes, [](std::string_view, std::string&) { return std::size_t{0}; });
  if (!whole) return std::nullopt;
  return bytes;
}

code_page& current_code_page() {
  static code_page current = code_page::of_locale();
  return current;
}
