#pragma once
#include <string>
#include <string_view>

namespace karno::platform {

// "file:///Applications/My%20App.app" for an absolute path.
std::string fileURL(std::string_view path);

}  // namespace karno::platform
