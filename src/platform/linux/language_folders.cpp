#include "platform/linux/language_folders.h"

#include <algorithm>
#include <cstdlib>

namespace karno::platform {
namespace {

// "de_AT" of "de_AT.UTF-8@euro"; empty for the C locale and when nothing is set.
std::string environmentLanguage() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    std::string language(value);
    language.resize(std::min(language.find_first_of(".@"), language.size()));
    // A "/" would lead out of the resources folder.
    const bool isNoLanguage =
        language == "C" || language == "POSIX" || language.find('/') != std::string::npos;
    return isNoLanguage ? std::string() : language;
  }
  return {};
}

}  // namespace

std::vector<std::string> languageFolders() {
  std::vector<std::string> languages;
  if (std::string language = environmentLanguage(); !language.empty()) {
    std::string withHyphen = language;
    std::replace(withHyphen.begin(), withHyphen.end(), '_', '-');
    languages = {withHyphen, language, language.substr(0, language.find('_'))};
  }
  languages.insert(languages.end(), {"Base", "en"});

  std::vector<std::string> folders;
  for (const std::string& language : languages) {
    std::string folder = language + ".lproj";
    if (std::find(folders.begin(), folders.end(), folder) == folders.end())
      folders.push_back(std::move(folder));
  }
  return folders;
}

}  // namespace karno::platform
