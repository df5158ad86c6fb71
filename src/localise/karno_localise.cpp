#include "localise/karno_localise.h"

#include <fmt/format.h>

#include <utility>

#include "localise/expression_cache.h"
#include "localise/plain_placeholder.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "util/string_utils.h"

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

ExpressionCache& expressions() {
  static platform::NeverDestroyed<ExpressionCache> cache;
  return *cache;
}

// Null for an absent or empty text.
const std::string* textIn(const std::optional<StringTable>& table, std::string_view token) {
  if (!table) return nullptr;
  const auto entry = table->find(token);
  return entry == table->end() || entry->second.empty() ? nullptr : &entry->second;
}

}  // namespace

KarnoLocalise& KarnoLocalise::instance() {
  static platform::NeverDestroyed<KarnoLocalise> localise;
  return *localise;
}

KarnoLocalise::KarnoLocalise()
    : localisedStrings_(loadStringsForResource("Strings", "json", "")),
      defaultStrings_(loadStringsForResource("Strings", "json", "Base.lproj")) {}

std::string KarnoLocalise::localise(std::string_view token) { return localise(token, Params()); }

std::string KarnoLocalise::localise(std::string_view token, const Params& params) {
  std::string text = localisedStringForToken(token);
  for (const auto& [key, value] : params) text = stringByReplacingKey(key, value, text);
  return text;
}

std::string KarnoLocalise::localise(std::string_view token, Options options) {
  return localise(token, Params(), options);
}

std::string KarnoLocalise::localise(std::string_view token, const Params& params, Options options) {
  return applyOptionsToString(localise(token, params), options);
}

std::string KarnoLocalise::item(std::string_view name, std::int64_t andMore) {
  if (andMore == 0) return localise("UPLOADED_FILE", {{"file", std::string(name)}});
  return localise("ITEM_AND_N_MORE", {{"name", std::string(name)}, {"n", u_stringForInteger(andMore)}});
}

std::string KarnoLocalise::localisedStringForToken(std::string_view token) {
  if (token.empty()) return "";
  const KarnoLocalise& tables = instance();
  const std::string* found = textIn(tables.localisedStrings_, token);
  if (found == nullptr) found = textIn(tables.defaultStrings_, token);
  if (found == nullptr) {
    platform::host().consoleLog.log(fmt::format("--- KarnoLocalise token '{}' not found", token));
    return std::string(token);
  }
  std::string text = *found;
  replaceAll(text, "\\n", "\n");
  replaceAll(text, "\\\"", "'");
  return text;
}

std::string KarnoLocalise::stringByReplacingKey(std::string_view key, std::string_view value,
                                                std::string_view text) {
  if (auto filled = textWithPlainPlaceholdersFilled(key, value, text)) return std::move(*filled);

  const auto expression = expressions().expressionForKey(key);
  if (!expression) {
    KarnoLog::manager().logWarn(
        fmt::format("KarnoLocalise: Failed to build regex key '{}' for '{}'. Reason={}", key, text,
                    expression.error().localizedDescription()));
    return std::string(text);
  }
  return expression.value()->stringByReplacingMatches(text, value);
}

std::optional<StringTable> KarnoLocalise::loadStringsForResource(const std::string& name,
                                                                 const std::string& type,
                                                                 const std::string& directory) {
  KarnoLog& log = KarnoLog::manager();
  const std::string description = descriptionOf(name, type, directory);
  const auto path = platform::host().bundles.mainBundle().pathForResource(name, type, directory);
  if (!path || path->empty()) {
    log.logWarn(fmt::format("KarnoLocalise: Failed to build path for '{}'", description));
    return std::nullopt;
  }
  const Result<std::string> data = platform::host().files.read(*path);
  if (!data) {
    log.logWarn(fmt::format("KarnoLocalise: Failed to load data for '{}'. Error={}", description,
                            data.error().localizedDescription()));
    return std::nullopt;
  }
  Result<StringTable> table = stringTableFromJson(data.value());
  if (!table) {
    // The whole error, and not just its sentence as above: it alone says where the file is damaged.
    log.logWarn(fmt::format("KarnoLocalise: Failed to serialise data for '{}'. Error={}", description,
                            table.error().description()));
    return std::nullopt;
  }
  return std::move(table.value());
}

}  // namespace karno
