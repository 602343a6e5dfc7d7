#include "batch/json_value.h"

nlohmann::ordered_json json_of(const value& shown) {
  if (shown.is_null() || shown.is_empty()) return nullptr;
  if (const auto* number = shown.get<std::int32_t>()) return *number;
  if (const auto* number = shown.get<std::int16_t>()) return *number;
  if (const auto* number = shown.get<double>()) return *number;
  if (const auto* number = shown.get<float>()) return *number;
  if (const auto* yes = shown.get<bool>()) return *yes;
  return to_text(shown);
}

std::string json_text(const nlohmann::ordered_json& object) {
  return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}
