#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "localise/string_table.h"

namespace karno::karnoctl {
namespace {

using platform::Value;
using Tokens = std::set<std::string, std::less<>>;

constexpr std::size_t kLanguagesMax = 200;
constexpr std::string_view kBase = "Base";

// A kind of table that each language has.
struct TableKind {
  std::string_view file;
  bool isPropertyList;
  std::string_view costOfBaseText;  // what a text that the base texts lack costs
};

constexpr TableKind kStrings = {"Strings.json", false, "what stands for it in the code is shown instead"};
constexpr TableKind kMove = {"MoveApplication.strings", true, "the English text is shown instead"};
constexpr TableKind kMenu = {"MainMenu.strings", true, "the English text is shown instead"};
constexpr TableKind kReasons = {"InfoPlist.strings", true, "the one of Info.plist stands in"};
constexpr TableKind kUpdater = {"Updater.json", false, "what stands for it in the code is shown instead"};

struct Table {
  std::string file;
  bool isBase;
  Tokens tokens;
};

bool isFolderName(std::string_view language) {
  return !language.empty() && language.find('/') == std::string_view::npos && !language.starts_with('.');
}

// The base texts are those of the development region.
std::vector<std::string> languagesOf(const Value::Dictionary& information) {
  std::vector<std::string> languages{std::string(kBase)};
  const auto* const listed = platform::entryOf<Value::Array>(information, "CFBundleLocalizations");
  if (listed == nullptr) return languages;
  const auto base = textIn(information, "CFBundleDevelopmentRegion");
  for (const Value& element : *listed) {
    const auto* const language = element.get<std::string>();
    if (language == nullptr || *language == base || !isFolderName(*language)) continue;
    if (languages.size() < kLanguagesMax) languages.push_back(*language);
  }
  return languages;
}

const std::string* shownIn(const std::string& text) { return &text; }
const std::string* shownIn(const Value& value) { return value.get<std::string>(); }

// An empty text counts as none.
template <class TextsByToken>
Tokens tokensOf(const TextsByToken& table) {
  Tokens tokens;
  for (const auto& [token, text] : table) {
    const std::string* const shown = shownIn(text);
    if (shown != nullptr && !shown->empty()) tokens.insert(token);
  }
  return tokens;
}

// The table's reader says it beside the sentence that the platform has for damaged files.
std::string whereDamaged(const platform::Error& error) {
  constexpr std::string_view kDetail = "NSDebugDescription";
  if (!error.userInfo() || !error.userInfo()->contains(kDetail)) return reasonOf(error);
  std::string detail = error.userInfo()->find(kDetail)->second;
  while (detail.ends_with('.')) detail.pop_back();
  return detail;
}

std::optional<Tokens> tokensOfJson(const CheckedBundle& bundle, const std::string& file,
                                   std::string_view cost) {
  const auto json = bundle.content(file, cost);
  if (!json) return std::nullopt;
  const auto table = stringTableFromJson(*json);
  if (table) return tokensOf(table.value());
  bundle.wrong(fmt::format("{} is damaged ({}): {}.", file, whereDamaged(table.error()), cost));
  return std::nullopt;
}

std::optional<Tokens> tokensIn(const CheckedBundle& bundle, const TableKind& kind, const std::string& file,
                               std::string_view cost) {
  ++bundle.findings.tables;
  if (!kind.isPropertyList) return tokensOfJson(bundle, file, cost);
  const auto table = bundle.dictionary(file, cost);
  return table ? std::optional(tokensOf(*table)) : std::nullopt;
}

std::vector<Table> readTables(const CheckedBundle& bundle, const TableKind& kind,
                              const std::vector<std::string>& languages) {
  std::vector<Table> tables;
  for (const std::string& language : languages) {
    const bool isBase = language == kBase;
    const std::string file = fmt::format("Contents/Resources/{}.lproj/{}", language, kind.file);
    auto tokens = tokensIn(bundle, kind, file,
                           isBase ? "texts that the user's language lacks have no other to fall back on"
                                  : "its texts are shown in the base language");
    if (tokens) tables.push_back({.file = file, .isBase = isBase, .tokens = std::move(*tokens)});
  }
  return tables;
}

// The first few by name.
std::string listed(const std::vector<std::string>& tokens) {
  constexpr std::size_t kNamedMax = 3;
  const auto named = std::span(tokens).first(std::min(tokens.size(), kNamedMax));
  const std::string text = fmt::format("\"{}\"", fmt::join(named, "\", \""));
  return tokens.size() <= kNamedMax ? text : fmt::format("{} and {} more", text, tokens.size() - kNamedMax);
}

void checkTables(const CheckedBundle& bundle, const TableKind& kind,
                 const std::vector<std::string>& languages) {
  const std::vector<Table> tables = readTables(bundle, kind, languages);
  Tokens all;
  for (const Table& table : tables) all.insert(table.tokens.begin(), table.tokens.end());
  for (const Table& table : tables) {
    std::vector<std::string> missing;
    std::ranges::set_difference(all, table.tokens, std::back_inserter(missing));
    if (missing.empty()) continue;
    bundle.wrong(fmt::format("{} has no text for {}: {}.", table.file, listed(missing),
                             table.isBase ? kind.costOfBaseText : "the base language stands in"));
  }
}

}  // namespace

void checkTexts(const CheckedBundle& bundle, const Value::Dictionary& information) {
  const std::vector<std::string> languages = languagesOf(information);
  checkTables(bundle, kStrings, languages);
  checkTables(bundle, kMove, languages);
  if (bundle.isForMacOS()) checkTables(bundle, kMenu, languages);
  // Only macOS asks with reasons of ours, and its updater brings its own texts.
  checkTables(bundle, bundle.isForMacOS() ? kReasons : kUpdater, languages);
}

}  // namespace karno::karnoctl
