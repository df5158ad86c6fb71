#include "karno-appcast/archives/bundle_archive.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include "installer/archive/archive_file.h"
#include "installer/archive/extraction.h"
#include "installer/bundle_facts.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/workplace.h"
#include "platform/posix/files/whole_file.h"

namespace karno::appcast {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 6> kEndings{".zip",     ".tar.gz", ".tar.xz",
                                                   ".tar.bz2", ".tar",    ".tar.zst"};

// What is no fault of the archive, but of this computer.
bool isLocal(const installer::Failure& failure) {
  constexpr std::array<int, 5> kErrors{ENOSPC, EDQUOT, EFBIG, EMFILE, EIO};
  return std::ranges::any_of(kErrors, [&](int error) { return failure == installer::systemFailure(error); });
}

Failure refusedByInstallers(const installer::Failure& failure) {
  if (isLocal(failure)) return Failure("it cannot be looked into: " + failure.text);
  return Failure("no launcher would install it: " + failure.text);
}

class Unhurried final : public installer::ExtractionObserver {
 public:
  bool goesOn(std::uint64_t /*bytesRead*/) override { return true; }
};

// The first bytes of a program of a Mac, for one processor or several.
bool isMacProgram(const std::string& path) {
  constexpr std::array<std::string_view, 3> kBeginnings{"\xcf\xfa\xed\xfe", "\xca\xfe\xba\xbe",
                                                        "\xca\xfe\xba\xbf"};
  std::array<char, 4> bytes = {};
  std::ifstream(path, std::ios::binary).read(bytes.data(), bytes.size());
  return std::ranges::count(kBeginnings, std::string_view(bytes.data(), bytes.size())) != 0;
}

std::string infoOf(const std::string& bundle) {
  auto file = platform::readWholeFile(bundle + "/Contents/Info.plist");
  if (!file) throw systemFailure("cannot read its Info.plist", static_cast<int>(file.error().code()));
  if (file.value().bytes.size() > kInfoBytesMax) throw Failure("its Info.plist is larger than 1 MiB");
  return std::move(file.value().bytes);
}

void refuseUnsigned(const std::string& bundle, const std::string& executable) {
  if (!isMacProgram(bundle + "/Contents/MacOS/" + executable)) return;
  if (!fs::is_regular_file(bundle + "/Contents/_CodeSignature/CodeResources"))
    throw Failure("its bundle is for macOS and has no _CodeSignature: no Mac would start it");
}

}  // namespace

std::string_view nameWithoutArchiveEnding(std::string_view fileName) {
  for (const std::string_view ending : kEndings) {
    if (fileName.ends_with(ending)) return fileName.substr(0, fileName.size() - ending.size());
  }
  return {};
}

ArchivedBundle bundleInArchive(const std::string& path) {
  const auto archive = installer::ArchiveFile::open(path);
  if (!archive) throw refusedByInstallers(archive.error());
  const Workplace workplace;
  Unhurried observer;
  const auto name = installer::extractBundle(archive.value().descriptor(), workplace.folder(), {}, observer);
  if (!name) throw refusedByInstallers(name.error());

  const fs::path bundle = fs::path(workplace.path()) / name.value();
  const auto facts = installer::readBundleFacts(bundle);
  if (!facts) throw refusedByInstallers(facts.error());
  refuseUnsigned(bundle, facts.value().executable);
  return {.name = bundle.stem(), .infoPlist = infoOf(bundle)};
}

}  // namespace karno::appcast
