#pragma once
#include <string>
#include <vector>

namespace karno::platform {

// Those of the language folders that a bundle has ("Base.lproj", "pt-BR.lproj") in the order in which they
// fit a user who wants these languages: for each of them the folders of the same language and script, best
// match first, and at the end Base.lproj and en.lproj. Base.lproj counts as English. A language that merely
// resembles a wanted one is never shown.
std::vector<std::string> languageFolders(const std::vector<std::string>& available,
                                         const std::vector<std::string>& preferredLanguages);

}  // namespace karno::platform
