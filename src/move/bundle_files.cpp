#include "move/bundle_files.h"

#include <fmt/format.h>

#include "move/applications_folder.h"
#include "move/system_age.h"
#include "platform/platform.h"

namespace karno {
namespace {

// The odd indentation is part of the script.
constexpr std::string_view kTrashScript =
    "\t\t\t\t\t\t\t\t\t\tset theFile to POSIX file \"{}\" \n"
    "\t\t\t\t\t\t\t\t\t   \ttell application \"Finder\" \n"
    "\t\t\t\t\t\t\t\t\t  \t\tmove theFile to trash \n"
    "\t\t\t\t\t\t\t\t\t  \tend tell";

// As it stands between quotation marks in AppleScript. Without the backslashes a path could end its text and
// go on as a script.
std::string inAppleScript(std::string_view path) {
  std::string text;
  for (const char character : path) {
    if (character == '"' || character == '\\') text += '\\';
    text += character;
  }
  return text;
}

}  // namespace

bool trashItem(const std::string& path) {
  const platform::Platform& host = platform::host();
  if (canFileManagerTrash() && !host.fileManager.trashItem(path)) return true;
  const auto error = host.appleScripts.execute(fmt::format(kTrashScript, inAppleScript(path)));
  if (!error) return true;
  host.consoleLog.log(fmt::format("Trash AppleScript error: {}", *error));
  host.consoleLog.log(fmt::format("ERROR -- Could not trash '{}'", path));
  return false;
}

bool copyBundle(const std::string& source, const std::string& destination) {
  const auto error = platform::host().fileManager.copyItem(source, destination);
  if (!error) return true;
  platform::host().consoleLog.log(
      fmt::format("ERROR -- Could not copy '{}' to '{}' ({})", source, destination, error->description()));
  return false;
}

bool deleteOrTrash(const std::string& path) {
  const auto error = platform::host().files.remove(path);
  if (!error) return true;
  if (!isTranslocated(path)) {
    platform::host().consoleLog.log(
        fmt::format("WARNING -- Could not delete '{}': {}", path, error->localizedDescription()));
  }
  return trashItem(path);
}

}  // namespace karno
