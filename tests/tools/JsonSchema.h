#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace veral3::tools::test {

// Where and how `value` breaks a JSON schema; "" where it does not. Knows the keywords that the
// schemas of docs/formats use, and throws std::runtime_error for any other.
std::string SchemaError(const nlohmann::json& value, const nlohmann::json& schema);

}  // namespace veral3::tools::test
