#pragma once

#include <nlohmann/json.hpp>

#include "base/value.h"

// Null and Empty as null, numbers and booleans as such, all else as text.
nlohmann::ordered_json json_of(const value& shown);

// The object on one line. What a driver or a file says may be broken UTF-8; the line stays JSON.
std::string json_text(const nlohmann::ordered_json& object);
