#include "move/disk_image.h"

#include "move/system_age.h"
#include "platform/platform.h"
#include "platform/property_lists/property_lists.h"
#include "util/error.h"
#include "util/string_utils.h"

namespace karno {
namespace {

using platform::entryOf;
using platform::Value;

enum class Search { Found, NotHere, Malformed };

Search searchImage(const Value& image, const std::string& device) {
  const auto* entities = entryOf<Value::Array>(image, "system-entities");
  if (entities == nullptr) return Search::Malformed;
  for (const Value& entity : *entities) {
    const auto* entry = entryOf<std::string>(entity, "dev-entry");
    if (entry == nullptr) return Search::Malformed;
    if (*entry == device) return Search::Found;
  }
  return Search::NotHere;
}

bool listsDevice(const Value& listing, const std::string& device) {
  const auto* images = entryOf<Value::Array>(listing, "images");
  if (images == nullptr) return false;
  for (const Value& image : *images) {
    const Search search = searchImage(image, device);
    if (search != Search::NotHere) return search == Search::Found;
  }
  return false;
}

// What hdiutil tells of the mounted images. Older systems get no list, though hdiutil runs on them as well.
std::optional<Value> mountedImages() {
  const auto info =
      platform::host().commands.run({.executablePath = "/usr/bin/hdiutil", .arguments = {"info", "-plist"}});
  if (!info || !isNewerThanMacOS10_5()) return std::nullopt;
  const Result<Value> listing = platform::parsePropertyList(info.value().standardOutput);
  return listing ? std::optional(listing.value()) : std::nullopt;
}

}  // namespace

std::optional<std::string> containingDiskImageDevice(const std::string& path) {
  const auto mount = platform::host().mounts.informationOf(deletingLastPathComponent(path));
  if (!mount || mount->isRootFileSystem) return std::nullopt;
  const std::optional<Value> listing = mountedImages();
  if (!listing || !listsDevice(*listing, mount->sourceDevice)) return std::nullopt;
  return mount->sourceDevice;
}

}  // namespace karno
