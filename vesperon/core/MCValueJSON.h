#pragma once
// Conversion between MCValue and JSON, for the command-line program and for tests.
//
// To JSON: numbers as numbers, rationals as their signed value, comments and strings as strings,
// bytes as an array of numbers, none as null. From JSON: integers stay integers, other numbers
// become doubles, arrays and objects nest.

#include <vesperon/core/MCValue.h>

#include <nlohmann/json.hpp>

/// The value as JSON (rationals and comments in tagged objects).
nlohmann::json MCValueToJSON(const MCValue& value);
/// The value of JSON made by MCValueToJSON.
MCValue MCValueFromJSON(const nlohmann::json& json);
