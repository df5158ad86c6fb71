#include "karno-appcast/workplace.h"

#include <fcntl.h>
#include <stdlib.h>

#include <filesystem>

#include "installer/tree_removal.h"
#include "karno-appcast/failure.h"

namespace karno::appcast {

Workplace::Workplace() : path_((std::filesystem::temp_directory_path() / "karno-appcast-XXXXXX").string()) {
  if (::mkdtemp(path_.data()) == nullptr)
    throw systemFailure("cannot make a folder in " + std::filesystem::temp_directory_path().string(), errno);
  folder_.reset(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

Workplace::~Workplace() { installer::removeTree(path_); }

}  // namespace karno::appcast
