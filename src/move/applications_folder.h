#pragma once
#include <string>

namespace karno {

// Whether the launcher should offer to move itself. Never where the user default
// "moveToApplicationsFolderAlertSuppress" is true, which the launcher only reads. With `onlyFromDiskImage`
// when it runs from a mounted disk image; else when it is in no Applications folder. Any thread.
bool applicationNeedsMoving(bool onlyFromDiskImage);

// Whether that user default keeps the launcher where it is, wherever that may be.
bool isMoveSuppressed();

// Whether the path begins with a Downloads folder of any domain: a plain comparison of texts, as below.
bool isInDownloadsFolder(const std::string& path);

// Whether the path is one of the random read-only places that macOS runs downloaded applications from.
bool isTranslocated(const std::string& path);

// Whether the path begins with an Applications folder of any domain, any of its components is called
// "Applications", or the folder that holds it is one of those folders under another name. The first is a plain
// comparison of texts: "/Applications Old/Karno.app" counts as well, and is meant to.
bool isInApplicationsFolder(const std::string& path);

}  // namespace karno
