#pragma once
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace karno::karnoctl {

using Json = nlohmann::ordered_json;

// What cannot be learnt, or is not there, is null.
template <class T>
Json orNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json();
}

// What a verb prints for scripts: the object with the version of its form in front, which goes up when a
// field changes its meaning or goes away, and a newline behind. Files and settings may hold anything; what is
// no UTF-8 is replaced.
inline std::string jsonText(const Json& fields) {
  Json json = {{"version", 1}};
  json.update(fields);
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace karno::karnoctl
