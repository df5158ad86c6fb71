#include "platform/linux/bundles/language_folders.h"

#include <unicode/localematcher.h>
#include <unicode/locid.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace karno::platform {
namespace {

constexpr std::string_view kSuffix = ".lproj";
constexpr std::string_view kBase = "Base";
constexpr std::string_view kDevelopmentLanguage = "en";

struct Folder {
  std::string name;
  icu::Locale locale;
};

// Absent for what is no language tag.
std::optional<icu::Locale> localeOf(std::string tag) {
  std::replace(tag.begin(), tag.end(), '_', '-');
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale locale = icu::Locale::forLanguageTag(tag, status);
  locale.canonicalize(status);
  if (U_FAILURE(status) || locale.isBogus() || *locale.getLanguage() == '\0') return std::nullopt;
  return locale;
}

// With the script and region that are usual for it: "zh-HK" is written in traditional characters.
icu::Locale withLikelyParts(icu::Locale locale) {
  UErrorCode status = U_ZERO_ERROR;
  locale.addLikelySubtags(status);
  return locale;
}

bool haveSameLanguageAndScript(const icu::Locale& a, const icu::Locale& b) {
  const icu::Locale likelyA = withLikelyParts(a);
  const icu::Locale likelyB = withLikelyParts(b);
  return std::string_view(likelyA.getLanguage()) == likelyB.getLanguage() &&
         std::string_view(likelyA.getScript()) == likelyB.getScript();
}

// Those with a name of a language, general ones first, since of two equal matches the earlier is taken.
std::vector<Folder> foldersOf(std::vector<std::string> names) {
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return std::pair(a.size(), std::string_view(a)) < std::pair(b.size(), std::string_view(b));
  });
  std::vector<Folder> folders;
  for (std::string& name : names) {
    if (!name.ends_with(kSuffix)) continue;
    const std::string tag = name.substr(0, name.size() - kSuffix.size());
    auto locale = localeOf(tag == kBase ? std::string(kDevelopmentLanguage) : tag);
    if (locale) folders.push_back({std::move(name), std::move(*locale)});
  }
  return folders;
}

// The index of the folder that fits best. ICU takes "pt" and "pt-BR" for one, so an equal tag comes first.
std::size_t bestOf(const std::vector<Folder>& folders, const icu::Locale& wanted) {
  const auto equal = std::find_if(folders.begin(), folders.end(),
                                  [&](const Folder& folder) { return folder.locale == wanted; });
  if (equal != folders.end()) return static_cast<std::size_t>(equal - folders.begin());

  UErrorCode status = U_ZERO_ERROR;
  icu::LocaleMatcher::Builder builder;
  for (const Folder& folder : folders) builder.addSupportedLocale(folder.locale);
  const icu::LocaleMatcher matcher = builder.build(status);
  const icu::LocaleMatcher::Result result = matcher.getBestMatchResult(wanted, status);
  const std::int32_t index = U_SUCCESS(status) ? result.getSupportedIndex() : 0;
  return static_cast<std::size_t>(std::max(index, 0));
}

}  // namespace

std::vector<std::string> languageFolders(const std::vector<std::string>& available,
                                         const std::vector<std::string>& preferredLanguages) {
  std::vector<Folder> left = foldersOf(available);
  std::vector<std::string> ordered;
  for (const std::string& language : preferredLanguages) {
    const auto wanted = localeOf(language);
    if (!wanted) continue;
    const auto fitting = std::stable_partition(left.begin(), left.end(), [&](const Folder& folder) {
      return !haveSameLanguageAndScript(folder.locale, *wanted);
    });
    std::vector<Folder> matches(fitting, left.end());
    left.erase(fitting, left.end());
    while (!matches.empty()) {
      const auto best = matches.begin() + static_cast<std::ptrdiff_t>(bestOf(matches, *wanted));
      ordered.push_back(std::move(best->name));
      matches.erase(best);
    }
  }
  for (const std::string_view last : {kBase, kDevelopmentLanguage}) {
    const std::string name = std::string(last).append(kSuffix);
    const bool isLeft =
        std::any_of(left.begin(), left.end(), [&](const Folder& f) { return f.name == name; });
    if (isLeft) ordered.push_back(name);
  }
  return ordered;
}

}  // namespace karno::platform
