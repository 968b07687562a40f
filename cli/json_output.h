#pragma once
// Machine-readable output for --json: one JSON document on standard output, fields in the order
// they are added, numbers as numbers, ended by one line feed. The field names are a contract
// with scripts (listed in the README): add fields, never rename them.

#include <nlohmann/json.hpp>

namespace korvatek::cli {

using Json = nlohmann::ordered_json;

// Prints the document indented by two spaces; false when standard output could not take it.
bool printJson(const Json& document);

}  // namespace korvatek::cli
