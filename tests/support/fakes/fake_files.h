#pragma once
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fake_clock.h"
#include "platform/files.h"

namespace karno::test {

// A file system in memory with the home folder /Users/tester, which has a Library folder and nothing else.
// Faults last until they are cleared.
class FakeFiles final : public platform::Files {
 public:
  FakeFiles(FakeScheduler& scheduler, FakeClock& clock);

  std::vector<std::string> searchPath(platform::UserFolder folder) const override {
    return folders.at(folder);
  }
  std::string homeDirectory() const override { return "/Users/tester"; }
  std::vector<std::string> localLibraryFolders() const override { return localLibraries; }
  bool fileExists(const std::string& path) const override;
  std::optional<std::uint64_t> sizeInBytes(const std::string& path) const override;
  platform::Result<std::string> read(const std::string& path) const override;
  platform::Result<std::string> destinationOfSymbolicLink(const std::string& path) const override;
  std::optional<platform::Error> createFile(const std::string& path) override;
  std::optional<platform::Error> createDirectory(const std::string& path) override;
  std::optional<platform::Error> remove(const std::string& path) override;
  std::optional<platform::Error> move(const std::string& from, const std::string& to) override;
  void enumerate(const std::string& folder, const Visitor& visit) const override;
  std::unique_ptr<platform::AppendStream> openForAppending(const std::string& path) override;

  // As the file manager does these.
  bool isThere(const std::string& path) const { return find(path, LastLink::Kept) != nullptr; }
  bool isFolder(const std::string& path) const;
  bool isWritable(const std::string& path) const;
  std::string resolvingSymbolicLinks(const std::string& path) const;

  // Stops at the first item that cannot be copied, or for whose copy `hindrance` has an error.
  using Hindrance = std::function<std::optional<platform::Error>(const std::string& copy)>;
  std::optional<platform::Error> copy(const std::string& from, const std::string& to,
                                      const Hindrance& hindrance);

  // Files whose text and folders whose entries stay as they are, by paths without links. What a test puts in
  // place does not ask.
  std::set<std::string> readOnly;

  // What searchPath() answers, settable.
  std::map<platform::UserFolder, std::vector<std::string>> folders = {
      {platform::UserFolder::Library, {"/Users/tester/Library"}},
      {platform::UserFolder::Caches, {"/Users/tester/Library/Caches"}},
      {platform::UserFolder::Downloads, {"/Users/tester/Downloads"}},
      {platform::UserFolder::Applications, {"/Users/tester/Applications"}},
      {platform::UserFolder::Trash, {"/Users/tester/.Trash"}}};

  std::vector<std::string> localLibraries = {"/Library"};

  // Puts things in place, with the folders above them.
  void addFile(const std::string& path, std::string text);
  void addFile(const std::string& path, std::string text, platform::Date creationDate);
  void addDirectory(const std::string& path);
  void addSymbolicLink(const std::string& path, std::string destination);

  // One of any type, without content.
  void addEntry(const std::string& path, platform::FileType type, platform::Date creationDate);

  // Makes the file appear this big; the bytes in front of its text are not stored.
  void setSize(const std::string& path, std::uint64_t size);

  // What has reached the file. Empty when there is no file.
  std::string text(const std::string& path) const;
  std::vector<std::string> lines(const std::string& path) const;

  // Each operation fails for exactly this path, with this errno; the removal of a folder also when it comes
  // to such a path in it.
  void failCreateFile(const std::string& path, int code) { failures_["createFile " + path] = code; }
  void failCreateDirectory(const std::string& path, int code) { failures_["createDirectory " + path] = code; }
  void failRemove(const std::string& path, int code) { failures_["remove " + path] = code; }
  void failMove(const std::string& from, int code) { failures_["move " + from] = code; }
  void failRead(const std::string& path, int code) { failures_["read " + path] = code; }
  void failOpenForAppending(const std::string& path) { failures_["open " + path] = 13; }
  void clearFailures() { failures_.clear(); }

  // While it is full, what streams write goes nowhere.
  void setDiskFull(bool full) { *diskFull_ = full; }

  // How often the size of a file was asked for, and how often a file was opened for appending.
  int sizeReads() const { return sizeReads_; }
  int opens(const std::string& path) const;

  struct Content {
    std::uint64_t bytesBefore = 0;
    std::string text;
  };

  // What an open file refers to, also after a rename; null when there is no such regular file.
  std::shared_ptr<const Content> content(const std::string& path) const;

  // Replaces what the file holds, as a program that opens it for writing does.
  void overwrite(const std::string& path, std::string text) {
    find(path, LastLink::Followed)->content->text = std::move(text);
  }

 private:
  struct Node {
    platform::FileType type = platform::FileType::Regular;
    platform::Date creationDate;
    std::shared_ptr<Content> content;  // of a regular file
    std::string destination;           // of a symbolic link
  };

  enum class LastLink { Followed, Kept };

  std::optional<platform::Error> failure(const std::string& operation) const;
  std::optional<platform::Error> createOneDirectory(const std::string& path);
  std::optional<platform::Error> refusalToChange(const std::string& place) const;
  std::optional<platform::Error> refusalToMove(const std::string& from, const std::string& to) const;
  std::optional<platform::Error> refusalToCopy(const std::string& from, const std::string& to) const;
  void walk(const std::string& folder, const std::string& prefix, const Visitor& visit) const;

  // Where the way of the path leads: a path without links, at which there may be nothing. An error when
  // something on the way is missing or no folder.
  platform::Result<std::string> placeOf(const std::string& path, LastLink lastLink) const;
  const Node* at(const std::string& place) const;
  const Node* find(const std::string& path, LastLink lastLink) const;
  std::vector<std::string> namesIn(const std::string& folder) const;
  std::vector<std::string> placesFrom(const std::string& top) const;
  void insert(const std::string& path, Node node);

  FakeScheduler& scheduler_;
  FakeClock& clock_;
  std::map<std::string, Node> nodes_;  // by paths without links
  std::map<std::string, int> failures_;
  std::map<std::string, int> opens_;
  std::shared_ptr<bool> diskFull_ = std::make_shared<bool>(false);
  mutable int sizeReads_ = 0;
};

}  // namespace karno::test
