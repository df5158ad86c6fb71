#pragma once
#include <optional>
#include <string>

#include "platform/error.h"

namespace karno::platform {

// What a file manager does with whole items, where Files reads and writes. Safe from any thread; paths are
// absolute.
class FileManager {
 public:
  virtual ~FileManager() = default;

  // Whether this user may write to the item; false when there is none.
  virtual bool isWritable(const std::string& path) const = 0;

  // Whether both paths lead to one item, by its device and number; false when one of them leads nowhere.
  // Paths that look apart may be one by a link, or on a disk that folds case.
  virtual bool isSameItem(const std::string& path, const std::string& other) const = 0;

  // The path with every symbolic link in it resolved; as it is when there is nothing at its end.
  virtual std::string resolvingSymbolicLinks(const std::string& path) const = 0;

  // The path without "." and "..", runs of "/" and a "/" at the end. Two paths that name one place in the
  // same way are equal afterwards.
  virtual std::string standardising(const std::string& path) const = 0;

  // Copies a file, or a folder with all it holds; links are copied as links. Something that is at `to`
  // already is an error, and so is a place within the folder. The copy is there whole and on the disk, or not
  // at all.
  virtual std::optional<Error> copyItem(const std::string& from, const std::string& to) = 0;

  // Moves the item to the user's Trash, under another name when its own is taken there.
  virtual std::optional<Error> trashItem(const std::string& path) = 0;
};

}  // namespace karno::platform
