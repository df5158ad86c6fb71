#pragma once
#include <filesystem>
#include <string>

namespace karno::bench {

// A signed archive of about 100 MB with a bundle in it, half of it packed as far as it goes already, and what
// it takes to check and unpack it. Made once, in the bench's temporary folder.
class UpdateFiles {
 public:
  // Throws std::runtime_error.
  static const UpdateFiles& made();

  std::filesystem::path zip() const { return folder_ / "update.zip"; }
  std::filesystem::path tarGzip() const { return folder_ / "update.tar.gz"; }
  std::filesystem::path present() const { return folder_ / "present/Karno.app"; }

  // Base64, of an archive and of the key.
  std::string signatureOf(const std::filesystem::path& archive) const;
  std::string publicKey() const;

  // The same as files, for openssl.
  std::filesystem::path signatureFile(const std::filesystem::path& archive) const;
  std::filesystem::path publicKeyFile() const { return folder_ / "public.pem"; }

  // An empty folder of mode 0700 that is made anew.
  std::filesystem::path freshFolder() const;

 private:
  UpdateFiles();

  std::filesystem::path folder_;
};

}  // namespace karno::bench
