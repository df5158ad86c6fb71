#include "embedded_client/build.h"

namespace karno::client {

Build buildForBundlePath(std::string_view bundlePath) {
  while (bundlePath.ends_with('/')) bundlePath.remove_suffix(1);
  const std::string name(bundlePath.substr(bundlePath.rfind('/') + 1));
  if (name == "Karno.app") return {name, "File Provider build"};
  if (name == "Karno(Fuse).app") return {name, "macFUSE build"};
  return {name, "unknown build"};
}

}  // namespace karno::client
