#pragma once
#include <string>
#include <vector>

namespace karno::platform {

// The language folders of a bundle's resources in the order in which they fit the user: those of the
// environment's language ("de-AT.lproj", "de_AT.lproj", "de.lproj"), then Base.lproj and en.lproj.
std::vector<std::string> languageFolders();

}  // namespace karno::platform
