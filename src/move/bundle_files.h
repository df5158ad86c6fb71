#pragma once
#include <string>

namespace karno {

// What the move does with whole bundles. Each answers whether it succeeded and says on the console log why
// not. Main thread only.

// Moves the item to the Trash: by the file manager, and where that is too old or fails, by a script that asks
// the Finder.
bool trashItem(const std::string& path);

bool copyBundle(const std::string& source, const std::string& destination);

// Removes the item for good, or moves it to the Trash when it cannot be removed.
bool deleteOrTrash(const std::string& path);

}  // namespace karno
