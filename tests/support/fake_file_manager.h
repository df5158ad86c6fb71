#pragma once
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fake_files.h"
#include "platform/file_manager.h"

namespace karno::test {

// Whole items of the fake disk. Everything that is there is writable unless a test says otherwise.
class FakeFileManager final : public platform::FileManager {
 public:
  explicit FakeFileManager(FakeFiles& files) : files_(files) {}

  bool isWritable(const std::string& path) const override {
    return files_.fileExists(path) && !readOnly.contains(path);
  }

  std::string resolvingSymbolicLinks(const std::string& path) const override {
    const auto destination = files_.destinationOfSymbolicLink(path);
    return destination ? destination.value() : path;
  }

  // As much of it as tests need.
  std::string standardising(const std::string& path) const override {
    return path.size() > 1 && path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
  }

  std::optional<platform::Error> copyItem(const std::string& from, const std::string& to) override {
    copies.emplace_back(from, to);
    if (const auto failure = copyFailures.find(to); failure != copyFailures.end()) return failure->second;
    if (files_.fileExists(to)) return platform::Error::posix(17);
    files_.addDirectory(to);
    files_.enumerate(from, [&](const platform::DirectoryEntry& entry) {
      copyEntry(from + "/" + entry.relativePath, to + "/" + entry.relativePath, entry.type);
      return true;
    });
    return std::nullopt;
  }

  std::optional<platform::Error> trashItem(const std::string& path) override {
    trashed.push_back(path);
    if (const auto failure = trashFailures.find(path); failure != trashFailures.end()) return failure->second;
    return files_.move(path, "/Users/tester/.Trash" + path.substr(path.rfind('/')));
  }

  std::set<std::string> readOnly;
  std::map<std::string, platform::Error> copyFailures;   // by the destination
  std::map<std::string, platform::Error> trashFailures;  // by the item
  std::vector<std::pair<std::string, std::string>> copies;
  std::vector<std::string> trashed;  // every attempt

 private:
  void copyEntry(const std::string& from, const std::string& to, platform::FileType type) {
    if (type == platform::FileType::Directory) {
      files_.addDirectory(to);
    } else if (type == platform::FileType::SymbolicLink) {
      files_.addSymbolicLink(to, files_.destinationOfSymbolicLink(from).value());
    } else {
      files_.addFile(to, files_.text(from));
    }
  }

  FakeFiles& files_;
};

}  // namespace karno::test
