#include "platform/linux/bundles/preferred_languages.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/linux/files/property_list_file.h"
#include "platform/posix/environment.h"
#include "platform/posix/files/home.h"

namespace karno::platform {
namespace {

constexpr std::size_t kLanguagesMax = 32;
constexpr std::size_t kTagCharactersMax = 64;

void add(std::vector<std::string>& languages, std::string_view tag) {
  if (!tag.empty() && tag.size() <= kTagCharactersMax && languages.size() < kLanguagesMax)
    languages.emplace_back(tag);
}

// "de-AT" of "de_AT.UTF-8@euro"; empty for the C locale.
std::string tagOfLocale(std::string_view locale) {
  std::string tag(locale.substr(0, locale.find_first_of(".@")));
  std::replace(tag.begin(), tag.end(), '_', '-');
  return tag == "C" || tag == "POSIX" ? std::string() : tag;
}

std::vector<std::string> languagesOfPreferences() {
  std::vector<std::string> languages;
  const auto preferences = readDictionary(homeFolder() + "/Library/Preferences/.GlobalPreferences.plist");
  if (!preferences) return languages;
  const auto* tags = entryOf<Value::Array>(preferences.value(), "AppleLanguages");
  if (tags == nullptr) return languages;
  for (const Value& tag : *tags) {
    if (const auto* text = tag.get<std::string>()) add(languages, *text);
  }
  return languages;
}

// LANGUAGE is a list and counts only beside a locale that is not C, as in GNU's libraries.
std::vector<std::string> languagesOfEnvironment() {
  std::string locale;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const std::string value = environmentVariable(name);
    if (value.empty()) continue;
    locale = tagOfLocale(value);
    break;
  }
  std::vector<std::string> languages;
  if (locale.empty()) return languages;
  const std::string list = environmentVariable("LANGUAGE");
  for (std::string_view rest = list; !rest.empty();) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    add(languages, tagOfLocale(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  if (languages.empty()) add(languages, locale);
  return languages;
}

}  // namespace

std::vector<std::string> preferredLanguages() {
  std::vector<std::string> languages = languagesOfPreferences();
  return languages.empty() ? languagesOfEnvironment() : languages;
}

}  // namespace karno::platform
