#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "base/date_time.h"

class matrix;
class value;

struct empty_t {
  friend bool operator==(empty_t, empty_t) { return true; }
};

// SQL NULL.
struct null_t {
  friend bool operator==(null_t, null_t) { return true; }
};

// A small code that an operation answers in place of a value; each operation documents its codes.
struct error_value {
  std::int32_t code = 0;
  friend bool operator==(error_value, error_value) = default;
};

// A fixed-point amount with four decimals: units are ten-thousandths.
struct currency {
  std::int64_t ten_thousandths = 0;
  friend bool operator==(currency, currency) = default;
};

// A one-dimensional array of values; its first index is `lower`.
struct array {
  int lower = 0;
  std::vector<value> items;
};

// The one type of everything that crosses the ODBC layer. Arrays and matrices are shared, never changed in place.
class value {
 public:
  enum class kind { empty, null, boolean, int16, int32, single, real, money, text, moment, error, list, table };

  value() = default;
  value(null_t) : held_(null_t{}) {}
  value(bool b) : held_(b) {}
  value(std::int16_t n) : held_(n) {}
  value(std::int32_t n) : held_(n) {}
  value(float n) : held_(n) {}
  value(double n) : held_(n) {}
  value(currency n) : held_(n) {}
  value(std::string text) : held_(std::move(text)) {}
  value(std::string_view text) : held_(std::in_place_type<std::string>, text) {}
  value(const char* text) : held_(std::in_place_type<std::string>, text) {}
  value(date_time moment) : held_(moment) {}
  value(error_value error) : held_(error) {}
  value(array list);
  value(matrix table);

  [[nodiscard]] kind type() const { return static_cast<kind>(held_.index()); }
  [[nodiscard]] bool is(kind k) const { return type() == k; }
  [[nodiscard]] bool is_empty() const { return is(kind::empty); }
  [[nodiscard]] bool is_null() const { return is(kind::null); }
  [[nodiscard]] bool is_text() const { return is(kind::text); }
  [[nodiscard]] bool is_error() const { return is(kind::error); }

  // The held value as T, or nullptr when another kind is held.
  template <typename T>
  [[nodiscard]] const T* get() const {
    return std::get_if<T>(&held_);
  }
  [[nodiscard]] const std::string& text() const { return std::get<std::string>(held_); }
  [[nodiscard]] const array& list() const { return *std::get<std::shared_ptr<const array>>(held_); }
  [[nodiscard]] const matrix& table() const { return *std::get<std::shared_ptr<const matrix>>(held_); }

  // Kind and content alike; lists and matrices compare element by element.
  friend bool operator==(const value& left, const value& right);

 private:
  std::variant<empty_t, null_t, bool, std::int16_t, std::int32_t, float, double, currency, std::string, date_time,
               error_value, std::shared_ptr<const array>, std::shared_ptr<const matrix>>
      held_;
};

// The default text: "" for Empty and Null, "True"/"False", numbers as number_text, dates in ISO form,
// "Error " and the code for an error value, "" for arrays.
std::string to_text(const value& v);
