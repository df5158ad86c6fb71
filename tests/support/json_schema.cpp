#include "json_schema.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace karno::test {
namespace {

using nlohmann::json;

const std::set<std::string> kAnnotations{"$schema", "title", "description"};

bool isOfType(const json& value, const std::string& type) {
  if (type == "number") return value.is_number();
  if (type == "integer") return value.is_number_integer();
  return type == (value.is_boolean() ? "boolean" : value.type_name());
}

class Check {
 public:
  void visit(const json& schema, const json& value, const std::string& place) {
    for (const auto& [keyword, wanted] : schema.items()) apply(keyword, wanted, schema, value, place);
  }

  std::vector<std::string> violations;

 private:
  void apply(const std::string& keyword, const json& wanted, const json& schema, const json& value,
             const std::string& place) {
    const auto require = [&](bool isFine) {
      if (!isFine)
        violations.push_back(place + ": " + keyword + " " + wanted.dump() + " is not " + value.dump());
    };
    if (keyword == "type") {
      const json types = wanted.is_array() ? wanted : json::array({wanted});
      require(std::ranges::any_of(types, [&](const json& type) { return isOfType(value, type); }));
    } else if (keyword == "const") {
      require(value == wanted);
    } else if (keyword == "enum") {
      require(std::ranges::find(wanted, value) != wanted.end());
    } else if (keyword == "minimum") {
      require(!value.is_number() || value >= wanted);
    } else if (keyword == "required") {
      for (const json& name : wanted) require(!value.is_object() || value.contains(name.get<std::string>()));
    } else if (keyword == "additionalProperties" && wanted == false) {
      for (auto member = value.begin(); value.is_object() && member != value.end(); ++member)
        require(schema.at("properties").contains(member.key()));
    } else if (keyword == "properties") {
      for (const auto& [name, member] : wanted.items())
        if (value.is_object() && value.contains(name)) visit(member, value[name], place + "/" + name);
    } else if (keyword == "items") {
      for (std::size_t at = 0; value.is_array() && at < value.size(); ++at)
        visit(wanted, value[at], place + "/" + std::to_string(at));
    } else if (!kAnnotations.contains(keyword)) {
      throw std::invalid_argument("the schema says " + keyword);
    }
  }
};

}  // namespace

std::vector<std::string> violationsOf(const json& schema, const json& value) {
  Check check;
  check.visit(schema, value, "");
  return check.violations;
}

}  // namespace karno::test
