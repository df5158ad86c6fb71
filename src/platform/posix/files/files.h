#pragma once
#include "platform/files.h"

namespace karno::platform {

// Files by POSIX calls. read() refuses more than 64 MiB with EFBIG, folders with EISDIR and what is neither
// with EINVAL.
class PosixFiles : public Files {
 public:
  std::vector<std::string> searchPath(UserFolder folder) const override;
  std::string homeDirectory() const override;
  std::vector<std::string> localLibraryFolders() const override;

  bool fileExists(const std::string& path) const override;
  std::optional<std::uint64_t> sizeInBytes(const std::string& path) const override;
  Result<std::string> read(const std::string& path) const override;
  Result<std::string> destinationOfSymbolicLink(const std::string& path) const override;

  std::optional<Error> createFile(const std::string& path) override;
  std::optional<Error> createDirectory(const std::string& path) override;
  std::optional<Error> remove(const std::string& path) override;
  std::optional<Error> move(const std::string& from, const std::string& to) override;

  void enumerate(const std::string& folder, const Visitor& visit) const override;
  std::unique_ptr<AppendStream> openForAppending(const std::string& path) override;
};

}  // namespace karno::platform
