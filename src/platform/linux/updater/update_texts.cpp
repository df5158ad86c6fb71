#include "platform/linux/updater/update_texts.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

namespace karno::platform::updates {
namespace {

std::map<std::string, std::string, std::less<>> sentencesIn(const std::string& table) {
  std::map<std::string, std::string, std::less<>> sentences;
  const nlohmann::json json = nlohmann::json::parse(table, nullptr, false);
  if (!json.is_object()) return sentences;
  for (const auto& [token, sentence] : json.items()) {
    if (sentence.is_string()) sentences.emplace(token, sentence.get<std::string>());
  }
  return sentences;
}

}  // namespace

UpdateTexts::UpdateTexts(const Bundle& bundle, const Files& files) {
  auto path = bundle.pathForResource("Updater", "json", "");
  if (!path) path = bundle.pathForResource("Updater", "json", "Base.lproj");
  if (!path) return;
  if (const Result<std::string> table = files.read(*path)) sentences_ = sentencesIn(table.value());
}

std::string UpdateTexts::text(std::string_view token, Fields fields) const {
  const auto found = sentences_.find(token);
  std::string sentence = found == sentences_.end() ? std::string(token) : found->second;
  for (const auto& [name, value] : fields) {
    const std::string placeholder = fmt::format("{{{{ {} }}}}", name);
    for (std::size_t place = sentence.find(placeholder); place != std::string::npos;
         place = sentence.find(placeholder, place + value.size())) {
      sentence.replace(place, placeholder.size(), value);
    }
  }
  return sentence;
}

}  // namespace karno::platform::updates
