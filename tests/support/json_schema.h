#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace karno::test {

// What in the value is not as the JSON schema says, each with its place: "/launchers/0/state: ...". Knows the
// keywords that the schemas in docs/schema use, and throws std::invalid_argument at any other.
std::vector<std::string> violationsOf(const nlohmann::json& schema, const nlohmann::json& value);

}  // namespace karno::test
