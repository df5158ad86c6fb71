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

// A table whose texts can be shown: with its escapes replaced, line breaks first.
std::optional<StringTable> readyToShow(std::optional<StringTable> table) {
  if (!table) return table;
  for (auto& [token, text] : *table) {
    replaceAll(text, "\\n", "\n");
    replaceAll(text, "\\\"", "'");
  }
  return table;
}

// An empty text counts as absent.
std::optional<std::string_view> textIn(const std::optional<StringTable>& table, std::string_view token) {
  if (!table) return std::nullopt;
  const auto entry = table->find(token);
  if (entry == table->end() || entry->second.empty()) return std::nullopt;
  return entry->second;
}

}  // namespace

KarnoLocalise& KarnoLocalise::instance() {
  static platform::NeverDestroyed<KarnoLocalise> localise;
  return *localise;
}

KarnoLocalise::KarnoLocalise()
    : localisedStrings_(readyToShow(loadStringsForResource("Strings", "json", ""))),
      defaultStrings_(readyToShow(loadStringsForResource("Strings", "json", "Base.lproj"))) {}

std::string KarnoLocalise::localise(std::string_view token) { return localisedStringForToken(token); }

std::string KarnoLocalise::localise(std::string_view token, Params params) {
  const std::string_view found = textForToken(token);
  if (params.empty()) return std::string(found);
  std::string text;
  for (const Param& param : params) {
    text = stringByReplacingKey(param.key, param.value, &param == params.data() ? found : text);
  }
  return text;
}

std::string KarnoLocalise::localise(std::string_view token, std::initializer_list<Param> params) {
  return localise(token, Params(params.begin(), params.size()));
}

std::string KarnoLocalise::localise(std::string_view token, Options options) {
  return localise(token, {}, options);
}

std::string KarnoLocalise::localise(std::string_view token, Params params, Options options) {
  return applyOptionsToString(localise(token, params), options);
}

std::string KarnoLocalise::localise(std::string_view token, std::initializer_list<Param> params,
                                    Options options) {
  return applyOptionsToString(localise(token, params), options);
}

std::string KarnoLocalise::item(std::string_view name, std::int64_t andMore) {
  if (andMore == 0) return localise("UPLOADED_FILE", {{"file", name}});
  return localise("ITEM_AND_N_MORE", {{"name", name}, {"n", u_stringForInteger(andMore)}});
}

std::string KarnoLocalise::localisedStringForToken(std::string_view token) {
  return std::string(textForToken(token));
}

std::string_view KarnoLocalise::textForToken(std::string_view token) {
  if (token.empty()) return token;
  const KarnoLocalise& tables = instance();
  if (const auto text = textIn(tables.localisedStrings_, token)) return *text;
  if (const auto text = textIn(tables.defaultStrings_, token)) return *text;
  platform::host().consoleLog.log(fmt::format("--- KarnoLocalise token '{}' not found", token));
  return token;
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
