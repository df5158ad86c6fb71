#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "temporary_folder.h"

namespace karno::appcast::test {

enum class Kind { File, Folder, Link, HardLink, Pipe };

struct Entry {
  std::string path;
  std::string content;  // of a file, or where a link leads
  Kind kind = Kind::File;
  unsigned permissions = 0644;
};

// What is in an archive.
using Files = std::vector<Entry>;

// The public half of the person's key below, and another one.
inline constexpr const char* kPublicKey = "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=";
inline constexpr const char* kOtherPublicKey = "PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw=";

// A person who types karno-appcast's command lines beside a folder of releases and a private key, which is
// that of RFC 8032's first example.
class ReleaseManager {
 public:
  ReleaseManager();

  int run(const std::vector<std::string>& arguments);

  // What the last command printed.
  const std::string& out() const { return out_; }
  const std::string& err() const { return err_; }

  const std::string& keyFile() const { return keyFile_; }

  // The one whose public half is kOtherPublicKey.
  const std::string& otherKeyFile() const { return otherKeyFile_; }
  std::string folder() const { return desk_ / "releases"; }
  std::string inFolder(const std::string& name) const { return folder() + "/" + name; }
  const karno::test::TemporaryFolder& desk() const { return desk_; }
  std::string feed() const { return karno::test::contentOf(inFolder("appcast.eddsa.xml")); }

  // Puts an archive into the folder; its name's ending says which kind.
  void addArchive(const std::string& name, const Files& files) const;

  // An archive of Karno.app with these two versions.
  void addRelease(const std::string& name, const std::string& version, const std::string& shortVersion,
                  const std::string& publicKey = kPublicKey) const;
  void addFile(const std::string& name, const std::string& content) const;

  // Leaves so many bytes of a file of the folder.
  void cutOff(const std::string& name, std::uintmax_t bytes) const;

  // Every file of the folder has this date unless another is set: Tue, 14 Nov 2023 22:13:20 UTC.
  void setDate(const std::string& name, long secondsSince1970 = 1'700'000'000) const;

  // The command that writes the feed, with further options.
  int writeFeed(const std::vector<std::string>& options = {});
  int writeFeedWith(const std::string& keyFile, const std::vector<std::string>& options = {});

  // The attributes that the command "sign" gives for an archive of the folder: its signature and its length.
  std::string signatureOf(const std::string& name);
  std::string lengthOf(const std::string& name) const;

 private:
  karno::test::TemporaryFolder desk_;
  std::string keyFile_;
  std::string otherKeyFile_;
  std::string out_;
  std::string err_;
};

// The Info.plist of a bundle, and that with further keys.
std::string infoPlist(const std::string& version, const std::string& shortVersion,
                      const std::string& minimumSystem = "10.14.6",
                      const std::string& publicKey = kPublicKey);
std::string infoPlistWith(const std::string& entries);

// A bundle of this Info.plist and a program, which is no Mac's unless it begins like one.
Files bundle(const std::string& information, const std::string& name = "Karno",
             const std::string& program = "#!/bin/sh\n");

// The files of one list and then those of another.
Files joined(Files files, const Files& more);

// Bytes that no archiver makes smaller, always the same.
std::string noise(std::size_t bytes);

}  // namespace karno::appcast::test
