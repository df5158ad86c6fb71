#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "installer/unpack.h"
#include "support/made_archive.h"
#include "support/made_bundle.h"
#include "support/signing_key.h"
#include "temporary_folder.h"

namespace karno::test {

// A folder with version 1 of a bundle in it, an empty folder to unpack into and an archive that is signed.
class UpdatePlace {
 public:
  UpdatePlace();

  std::string bundle() const { return folder_ / "Karno.app"; }
  std::string into() const { return folder_ / ".karno-update-test"; }
  std::string archive() const { return folder_ / "update"; }
  const TemporaryFolder& folder() const { return folder_; }

  // Writes the archive and signs it.
  void makeArchive(const std::vector<Item>& items, Format format = Format::Zip);
  void setArchive(const std::string& bytes);

  // Leaves the signature as it was.
  void replaceArchive(const std::string& bytes);

  // What unpackUpdate() is asked; a test may change it first.
  installer::UnpackRequest request;

  // "ready Karno.app", or the code and the text of the failure.
  std::string unpack();

  // makeArchive() and unpack().
  std::string unpack(const std::vector<Item>& items, Format format = Format::Zip);

  // Asked while the archive is unpacked, instead of always going on.
  std::function<bool(std::uint64_t)> goesOn;

  std::string unpackedTree() const { return treeText(into()); }

  // The command line of the program that does the same.
  std::vector<std::string> command() const;

 private:
  void sign(const std::string& bytes);

  const TemporaryFolder folder_;
  const SigningKey key_;
};

}  // namespace karno::test
