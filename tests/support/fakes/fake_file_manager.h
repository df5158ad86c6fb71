#pragma once
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "fake_files.h"
#include "platform/file_manager.h"

namespace karno::test {

// Whole items of the fake disk.
class FakeFileManager final : public platform::FileManager {
 public:
  explicit FakeFileManager(FakeFiles& files) : files_(files) {}

  bool isWritable(const std::string& path) const override { return files_.isWritable(path); }

  bool isSameItem(const std::string& path, const std::string& other) const override {
    return files_.fileExists(path) && files_.fileExists(other) && placeOf(path) == placeOf(other);
  }

  // Whether the disk takes names that differ only in case for one.
  bool foldsCase = false;

  std::string resolvingSymbolicLinks(const std::string& path) const override {
    return files_.resolvingSymbolicLinks(path);
  }

  std::string standardising(const std::string& path) const override {
    const std::string normal = std::filesystem::path(path).lexically_normal().string();
    return normal.size() > 1 && normal.ends_with('/') ? normal.substr(0, normal.size() - 1) : normal;
  }

  std::optional<platform::Error> copyItem(const std::string& from, const std::string& to) override {
    copies.emplace_back(from, to);
    return files_.copy(from, to, [this](const std::string& copy) -> std::optional<platform::Error> {
      const auto failure = copyFailures.find(copy);
      return failure == copyFailures.end() ? std::nullopt : std::optional(failure->second);
    });
  }

  std::optional<platform::Error> trashItem(const std::string& path) override {
    trashed.push_back(path);
    if (const auto failure = trashFailures.find(path); failure != trashFailures.end()) return failure->second;
    const std::string trash = files_.homeDirectory() + "/.Trash";
    if (const auto error = files_.createDirectory(trash)) return error;
    return files_.move(path, freePlace(trash, std::filesystem::path(path).filename()));
  }

  std::map<std::string, platform::Error>
      copyFailures;  // by the destination, also within a folder that is copied
  std::map<std::string, platform::Error> trashFailures;  // by the item
  std::vector<std::pair<std::string, std::string>> copies;
  std::vector<std::string> trashed;  // every attempt

 private:
  std::string placeOf(const std::string& path) const {
    std::string place = files_.resolvingSymbolicLinks(path);
    if (foldsCase) {
      std::ranges::transform(place, place.begin(), [](unsigned char letter) { return std::tolower(letter); });
    }
    return place;
  }

  std::string freePlace(const std::string& folder, const std::filesystem::path& name) const {
    std::string place = folder + "/" + name.string();
    for (int number = 2; files_.isThere(place); ++number) {
      place = folder + "/" + name.stem().string() + " " + std::to_string(number) + name.extension().string();
    }
    return place;
  }

  FakeFiles& files_;
};

}  // namespace karno::test
