#include "karno-appcast/archives/release_folder.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "karno-appcast/archives/bundle_archive.h"
#include "karno-appcast/archives/info_plist.h"
#include "karno-appcast/archives/mapped_file.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed/feed_texts.h"
#include "platform/posix/files/whole_file.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> archivesIn(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> names;
  for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error)) {
    std::string name = each->path().filename().string();
    if (!nameWithoutArchiveEnding(name).empty()) names.push_back(std::move(name));
    if (names.size() > kReleasesMax) throw Failure(folder + " holds more than 1000 archives");
  }
  if (error) throw Failure("cannot read " + folder + ": " + error.message());
  if (names.empty()) throw Failure("there is no archive of a release in " + folder);
  std::ranges::sort(names);
  return names;
}

// Absent when there is no such file.
std::optional<std::string> notesIn(const std::string& path) {
  if (!fs::exists(path)) return std::nullopt;
  auto file = platform::readWholeFile(path);
  if (!file) throw systemFailure("cannot read " + path, static_cast<int>(file.error().code()));
  std::string& text = file.value().bytes;
  if (text.size() > kNotesBytesMax) throw Failure(path + " is larger than 1 MiB");
  if (!isTextForFeed(text)) throw Failure(path + " is no plain UTF-8 text");
  return std::move(text);
}

void addNotes(Release& release, const std::string& pathWithoutEnding) {
  auto plain = notesIn(pathWithoutEnding + ".txt");
  auto html = notesIn(pathWithoutEnding + ".html");
  if (plain && html)
    throw Failure("there are notes both in " + pathWithoutEnding + ".txt and in " + pathWithoutEnding +
                  ".html");
  if (html) release.notesFormat = NotesFormat::HTML;
  release.notes = std::move(html ? html : plain).value_or("");
}

void refuseTheSameVersion(const std::vector<Release>& releases) {
  for (const Release& one : releases) {
    for (const Release& other : releases) {
      if (&one == &other) break;
      if (platform::compareVersions(one.version, other.version) == 0)
        throw Failure(other.fileName + " and " + one.fileName + " hold the same version " + one.version);
    }
  }
}

}  // namespace

Release readRelease(const std::string& path) {
  const MappedFile archive(path);
  const ArchivedBundle bundle = bundleInArchive(path);
  const BundleInfo info = readInfoPlist(bundle.infoPlist);
  const std::string& applicationName = info.name.empty() ? bundle.name : info.name;
  if (!isTextForFeed(applicationName)) throw Failure("the name of its application is no plain text");
  return {.path = path,
          .fileName = fs::path(path).filename(),
          .applicationName = applicationName,
          .version = info.version,
          .shortVersion = info.shortVersion.empty() ? info.version : info.shortVersion,
          .minimumSystem = info.minimumSystem.empty() ? "" : threePartVersion(info.minimumSystem),
          .publicKey = info.publicKey,
          .notes = {},
          .publishedAt = archive.modifiedAt()};
}

std::vector<Release> readReleases(const std::string& folder) {
  std::vector<Release> releases;
  for (const std::string& name : archivesIn(folder)) {
    const std::string path = folder + "/" + name;
    try {
      releases.push_back(readRelease(path));
    } catch (const Failure& failure) {
      throw Failure(name + ": " + failure.what());
    }
    addNotes(releases.back(), folder + "/" + std::string(nameWithoutArchiveEnding(name)));
  }
  refuseTheSameVersion(releases);
  return releases;
}

}  // namespace karno::appcast
