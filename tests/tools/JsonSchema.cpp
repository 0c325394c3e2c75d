#include "JsonSchema.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "common/Unicode.h"

namespace veral3::tools::test {
namespace {

using nlohmann::json;

bool HasType(const json& value, const std::string& type) {
  if (type == "object") return value.is_object();
  if (type == "array") return value.is_array();
  if (type == "string") return value.is_string();
  if (type == "integer") return value.is_number_integer();
  if (type == "number") return value.is_number();
  if (type == "boolean") return value.is_boolean();
  if (type == "boolean") return value.is_boolean();
  if (type == "null") return value.is_null();
  throw std::runtime_error("unknown type " + type);
}

bool HasAnyType(const json& value, const json& types) {
  if (types.is_string()) return HasType(value, types);
  return std::ranges::any_of(types, [&](const json& type) { return HasType(value, type); });
}

class Checker {
 public:
  explicit Checker(const json& root) : m_root(root) {}

  std::string Check(const json& value, const json& schema, const std::string& path) const {
    for (const auto& [keyword, argument] : schema.items()) {
      std::string error = CheckKeyword(value, schema, keyword, argument, path);
      if (!error.empty()) return error;
    }
    return "";
  }

 private:
  std::string CheckKeyword(const json& value, const json& schema, const std::string& keyword,
                           const json& argument, const std::string& path) const {
    static const std::set<std::string> notes = {"$schema", "$defs", "title", "description"};
    if (notes.contains(keyword)) return "";
    if (keyword == "$ref") {
      return Check(value, m_root.at(json::json_pointer(argument.get<std::string>().substr(1))),
                   path);
    }
    if (keyword == "oneOf") return CheckOneOf(value, argument, path);
    if (keyword == "properties") return CheckProperties(value, argument, path);
    if (keyword == "items") return CheckItems(value, argument, path);
    if (keyword == "required") {
      for (const std::string name : argument) {
        if (!value.is_object() || !value.contains(name)) return path + " lacks " + name;
      }
      return "";
    }
    if (keyword == "additionalProperties") {
      for (const auto& [name, member] : value.items()) {
        if (!schema["properties"].contains(name)) return path + " has " + name;
      }
      return "";
    }
    const auto length = [&] { return WideFromUtf8(value.get<std::string>()).size(); };
    const bool holds = keyword == "type"    ? HasAnyType(value, argument)
                       : keyword == "const" ? value == argument
                       : keyword == "enum"  ? std::ranges::find(argument, value) != argument.end()
                       // These say something of values of their own type only.
                       : keyword == "minimum"   ? !value.is_number() || value >= argument
                       : keyword == "maximum"   ? !value.is_number() || value <= argument
                       : keyword == "minItems"  ? !value.is_array() || value.size() >= argument
                       : keyword == "maxItems"  ? !value.is_array() || value.size() <= argument
                       : keyword == "minLength" ? !value.is_string() || length() >= argument
                       : keyword == "maxLength"
                           ? !value.is_string() || length() <= argument
                           : throw std::runtime_error("unknown keyword " + keyword);
    return holds ? "" : path + " = " + value.dump() + " breaks " + keyword;
  }

  std::string CheckOneOf(const json& value, const json& choices, const std::string& path) const {
    int matches = 0;
    std::string errors;
    for (const json& choice : choices) {
      const std::string error = Check(value, choice, path);
      if (error.empty()) ++matches;
      errors += " [" + error + "]";
    }
    return matches == 1 ? "" : path + " matches " + std::to_string(matches) + " choices:" + errors;
  }

  std::string CheckProperties(const json& value, const json& properties,
                              const std::string& path) const {
    for (const auto& [name, schema] : properties.items()) {
      if (!value.is_object() || !value.contains(name)) continue;
      std::string error = Check(value[name], schema, path + "/" + name);
      if (!error.empty()) return error;
    }
    return "";
  }

  std::string CheckItems(const json& value, const json& schema, const std::string& path) const {
    for (std::size_t i = 0; value.is_array() && i < value.size(); ++i) {
      std::string error = Check(value[i], schema, path + "/" + std::to_string(i));
      if (!error.empty()) return error;
    }
    return "";
  }

  const json& m_root;
};

}  // namespace

std::string SchemaError(const json& value, const json& schema) {
  return Checker(schema).Check(value, schema, "");
}

}  // namespace veral3::tools::test
