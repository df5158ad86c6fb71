#include "localise/karno_localise.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "log/karno_log.h"
#include "platform/platform.h"

namespace karno {
namespace {

std::string descriptionOf(const std::string& name, const std::string& type, const std::string& directory) {
  if (directory.empty()) return fmt::format("Locale: {}.{}", name, type);
  return fmt::format("{}: {}.{}", directory, name, type);
}

void replaceAll(std::string& text, std::string_view searched, std::string_view replacement) {
  for (std::size_t at = text.find(searched); at != std::string::npos;
       at = text.find(searched, at + replacement.size())) {
    text.replace(at, searched.size(), replacement);
  }
}

}  // namespace

KarnoLocalise& KarnoLocalise::instance() {
  static platform::NeverDestroyed<KarnoLocalise> localise;
  return *localise;
}

KarnoLocalise::KarnoLocalise()
    : localisedStrings_(loadStringsForResource("Strings", "json", "")),
      defaultStrings_(loadStringsForResource("Strings", "json", "Base.lproj")) {}

std::string KarnoLocalise::localise(std::string_view token) { return localisedStringForToken(token); }

std::string KarnoLocalise::localisedStringForToken(std::string_view token) {
  if (token.empty()) return "";
  const KarnoLocalise& tables = instance();
  for (const std::optional<Table>* table : {&tables.localisedStrings_, &tables.defaultStrings_}) {
    if (!*table) continue;
    const auto entry = (*table)->find(token);
    if (entry == (*table)->end() || entry->second.empty()) continue;
    std::string text = entry->second;
    replaceAll(text, "\\n", "\n");
    replaceAll(text, "\\\"", "'");
    return text;
  }
  platform::host().consoleLog.log(fmt::format("--- KarnoLocalise token '{}' not found", token));
  return std::string(token);
}

// Members that are not strings count as absent.
std::optional<KarnoLocalise::Table> KarnoLocalise::loadStringsForResource(const std::string& name,
                                                                          const std::string& type,
                                                                          const std::string& directory) {
  KarnoLog& log = KarnoLog::manager();
  const std::string description = descriptionOf(name, type, directory);
  const auto path = platform::host().bundles.mainBundle().pathForResource(name, type, directory);
  if (!path || path->empty()) {
    log.logWarn(fmt::format("KarnoLocalise: Failed to build path for '{}'", description));
    return std::nullopt;
  }
  const platform::Result<std::string> data = platform::host().files.read(*path);
  if (!data) {
    log.logWarn(fmt::format("KarnoLocalise: Failed to load data for '{}'. Error={}", description,
                            data.error().localizedDescription()));
    return std::nullopt;
  }
  try {
    Table table;
    for (const auto& [token, text] : nlohmann::json::parse(data.value()).get<nlohmann::json::object_t>()) {
      if (text.is_string()) table.emplace(token, text.get<std::string>());
    }
    return table;
  } catch (const nlohmann::json::exception& error) {
    log.logWarn(
        fmt::format("KarnoLocalise: Failed to serialise data for '{}'. Error={}", description, error.what()));
    return std::nullopt;
  }
}

}  // namespace karno
