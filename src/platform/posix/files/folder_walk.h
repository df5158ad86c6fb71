#pragma once
#include <string>

#include "platform/files.h"

namespace karno::platform {

// Deeper folders are shown to the visitor but not entered. Each level holds one descriptor.
inline constexpr int kFolderDepthMax = 128;

// Files::enumerate(). Links are reported, never followed; `folder` itself may be one.
void walkFolder(const std::string& folder, const Files::Visitor& visit);

}  // namespace karno::platform
