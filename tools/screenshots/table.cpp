#include "table.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace karno::screenshots {

Table::Table(const std::string& path) : path_(path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  const nlohmann::json content = nlohmann::json::parse(file, nullptr, false);
  if (!content.is_object()) throw std::runtime_error(path + " is no table of texts");
  for (const auto& [token, text] : content.items()) {
    if (text.is_string()) texts_.emplace(token, text.get<std::string>());
  }
}

const std::string& Table::text(const std::string& token) const {
  const auto found = texts_.find(token);
  if (found == texts_.end()) throw std::runtime_error(path_ + " has no text for " + token);
  return found->second;
}

}  // namespace karno::screenshots
