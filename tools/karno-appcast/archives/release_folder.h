#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace karno::appcast {

inline constexpr std::size_t kReleasesMax = 1000;
inline constexpr std::size_t kNotesBytesMax = std::size_t{1} << 20U;

enum class NotesFormat { HTML, PlainText };

// One archive of a folder, with all that a feed says of it but the signature.
struct Release {
  std::string path;
  std::string fileName;
  std::string applicationName;
  std::string version;  // CFBundleVersion
  std::string shortVersion;
  std::string minimumSystem;  // in three parts; empty: any
  std::string publicKey;      // SUPublicEDKey, which its updates have to fit; empty: none
  std::string notes;          // empty: none
  NotesFormat notesFormat = NotesFormat::PlainText;
  std::int64_t publishedAt = 0;  // in seconds since 1970, UTC
};

// Looks into one archive. A Failure, without its name, when it cannot be a release.
Release readRelease(const std::string& path);

// Reads every archive that lies directly in the folder, in the order of their names. The notes of NAME.zip
// are in NAME.txt or NAME.html beside it. A Failure names the file that is in the way, or says that there is
// no archive or that two of them hold the same version.
std::vector<Release> readReleases(const std::string& folder);

}  // namespace karno::appcast
