#include "base/value.h"

#include <fmt/format.h>

#include "base/matrix.h"
#include "base/number_format.h"

value::value(array list) : held_(std::make_shared<const array>(std::move(list))) {}
value::value(matrix table) : held_(std::make_shared<const matrix>(std::move(table))) {}

bool operator==(const value& left, const value& right) {
  if (left.type() != right.type()) return false;
  if (left.is(value::kind::list)) {
    return left.list().lower == right.list().lower && left.list().items == right.list().items;
  }
  if (left.is(value::kind::table)) return left.table() == right.table();
  return left.held_ == right.held_;
}

std::string to_text(const value& v) {
  switch (v.type()) {
    case value::kind::boolean:
      return *v.get<bool>() ? "True" : "False";
    case value::kind::int16:
      return fmt::to_string(*v.get<std::int16_t>());
    case value::kind::int32:
      return fmt::to_string(*v.get<std::int32_t>());
    case value::kind::single:
      return number_text(*v.get<float>());
    case value::kind::real:
      return number_text(*v.get<double>());
    case value::kind::money:
      return number_text(*v.get<currency>());
    case value::kind::text:
      return v.text();
    case value::kind::moment:
      return to_text(*v.get<date_time>());
    case value::kind::error:
      return fmt::format("Error {}", v.get<error_value>()->code);
    case value::kind::empty:
    case value::kind::null:
    case value::kind::list:
    case value::kind::table:
      break;
  }
  return {};
}
