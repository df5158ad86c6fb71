#pragma once
#include <string>
#include <string_view>

namespace karno::platform {

// "file:///Applications/My%20App.app" for an absolute path. A folder's URL ends with "/".
std::string fileURL(std::string_view path, bool isFolder);

}  // namespace karno::platform
