#pragma once
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"

namespace karno::karnoctl {

class SilentConsole final : public platform::ConsoleLog {
 public:
  void log(std::string_view) override {}
};

// Every change fails as on a read-only disk.
class ReadOnlyFiles final : public platform::Files {
 public:
  explicit ReadOnlyFiles(platform::Files& files) : files_(files) {}

  std::vector<std::string> searchPath(platform::UserFolder folder) const override {
    return files_.searchPath(folder);
  }
  std::string homeDirectory() const override { return files_.homeDirectory(); }
  std::vector<std::string> localLibraryFolders() const override { return files_.localLibraryFolders(); }
  bool fileExists(const std::string& path) const override { return files_.fileExists(path); }
  std::optional<std::uint64_t> sizeInBytes(const std::string& path) const override {
    return files_.sizeInBytes(path);
  }
  platform::Result<std::string> read(const std::string& path) const override { return files_.read(path); }
  platform::Result<std::string> destinationOfSymbolicLink(const std::string& path) const override {
    return files_.destinationOfSymbolicLink(path);
  }
  void enumerate(const std::string& folder, const Visitor& visit) const override {
    files_.enumerate(folder, visit);
  }

  std::optional<platform::Error> createFile(const std::string&) override { return refusal(); }
  std::optional<platform::Error> createDirectory(const std::string&) override { return refusal(); }
  std::optional<platform::Error> remove(const std::string&) override { return refusal(); }
  std::optional<platform::Error> move(const std::string&, const std::string&) override { return refusal(); }
  std::unique_ptr<platform::AppendStream> openForAppending(const std::string&) override { return nullptr; }

 private:
  static platform::Error refusal() { return platform::Error::posix(EROFS); }

  platform::Files& files_;
};

// Reads those that it is given, which it may own. What is set is dropped.
class ReadOnlyUserDefaults final : public platform::UserDefaults {
 public:
  explicit ReadOnlyUserDefaults(const platform::UserDefaults& defaults) : defaults_(defaults) {}
  explicit ReadOnlyUserDefaults(std::unique_ptr<platform::UserDefaults> suite)
      : suite_(std::move(suite)), defaults_(*suite_) {}

  std::optional<platform::Value> objectForKey(std::string_view key) const override {
    return defaults_.objectForKey(key);
  }
  bool boolForKey(std::string_view key) const override { return defaults_.boolForKey(key); }
  void setBool(bool, std::string_view) override {}
  void synchronize() override {}

 private:
  const std::unique_ptr<platform::UserDefaults> suite_;
  const platform::UserDefaults& defaults_;
};

class ReadOnlyUserDefaultsStore final : public platform::UserDefaultsStore {
 public:
  explicit ReadOnlyUserDefaultsStore(platform::UserDefaultsStore& store) : store_(store) {}

  platform::UserDefaults& standardUserDefaults() override { return standardUserDefaults_; }
  std::unique_ptr<platform::UserDefaults> makeSuite(const std::string& suiteName) override {
    return std::make_unique<ReadOnlyUserDefaults>(store_.makeSuite(suiteName));
  }

 private:
  platform::UserDefaultsStore& store_;
  ReadOnlyUserDefaults standardUserDefaults_{store_.standardUserDefaults()};
};

// Lets a tool ask the launcher's own code, which logs and could write: while this lives, the installed
// platform is the given one without a console, with files that cannot be changed (so that there is no log
// file either) and with user defaults that stay as they are.
class ReadOnlyPlatform {
 public:
  explicit ReadOnlyPlatform(platform::Platform& real);
  ~ReadOnlyPlatform();
  ReadOnlyPlatform(const ReadOnlyPlatform&) = delete;
  ReadOnlyPlatform& operator=(const ReadOnlyPlatform&) = delete;

 private:
  platform::Platform& real_;
  SilentConsole console_;
  ReadOnlyFiles files_;
  ReadOnlyUserDefaultsStore userDefaults_;
  platform::Platform platform_;
};

}  // namespace karno::karnoctl
