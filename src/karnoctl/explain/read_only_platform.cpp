#include "karnoctl/explain/read_only_platform.h"

#include <cerrno>
#include <utility>

namespace karno::karnoctl {
namespace {

using platform::Error;
using platform::UserDefaults;
using platform::Value;

platform::Error refusal() { return Error::posix(EROFS); }

class ReadOnlyUserDefaults final : public UserDefaults {
 public:
  explicit ReadOnlyUserDefaults(const UserDefaults& defaults) : defaults_(defaults) {}

  std::optional<Value> objectForKey(std::string_view key) const override {
    return defaults_.objectForKey(key);
  }
  bool boolForKey(std::string_view key) const override { return defaults_.boolForKey(key); }
  void setBool(bool, std::string_view) override {}
  void synchronize() override {}

 private:
  const UserDefaults& defaults_;
};

// Owns what it reads.
class ReadOnlySuite final : public UserDefaults {
 public:
  explicit ReadOnlySuite(std::unique_ptr<UserDefaults> suite) : suite_(std::move(suite)), reader_(*suite_) {}

  std::optional<Value> objectForKey(std::string_view key) const override { return reader_.objectForKey(key); }
  bool boolForKey(std::string_view key) const override { return reader_.boolForKey(key); }
  void setBool(bool, std::string_view) override {}
  void synchronize() override {}

 private:
  const std::unique_ptr<UserDefaults> suite_;
  const ReadOnlyUserDefaults reader_;
};

platform::Platform readOnly(const platform::Platform& real, platform::ConsoleLog& console,
                            platform::Files& files, platform::UserDefaultsStore& userDefaults) {
  return {.application = real.application,
          .alerts = real.alerts,
          .windows = real.windows,
          .workspace = real.workspace,
          .dispatch = real.dispatch,
          .clock = real.clock,
          .tasks = real.tasks,
          .processes = real.processes,
          .bundles = real.bundles,
          .userDefaults = userDefaults,
          .managedPreferences = real.managedPreferences,
          .distributedNotifications = real.distributedNotifications,
          .files = files,
          .text = real.text,
          .consoleLog = console,
          .systemVersion = real.systemVersion,
          .updaters = real.updaters,
          .shell = real.shell,
          .urlLoading = real.urlLoading,
          .identifiers = real.identifiers,
          .processList = real.processList,
          .fileReading = real.fileReading,
          .fileManager = real.fileManager,
          .standardFolders = real.standardFolders,
          .mounts = real.mounts,
          .commands = real.commands,
          .appleScripts = real.appleScripts,
          .authorisations = real.authorisations,
          .notices = real.notices};
}

}  // namespace

std::vector<std::string> ReadOnlyFiles::searchPath(platform::UserFolder folder) const {
  return files_.searchPath(folder);
}

std::string ReadOnlyFiles::homeDirectory() const { return files_.homeDirectory(); }

std::vector<std::string> ReadOnlyFiles::localLibraryFolders() const { return files_.localLibraryFolders(); }

bool ReadOnlyFiles::fileExists(const std::string& path) const { return files_.fileExists(path); }

std::optional<std::uint64_t> ReadOnlyFiles::sizeInBytes(const std::string& path) const {
  return files_.sizeInBytes(path);
}

platform::Result<std::string> ReadOnlyFiles::read(const std::string& path) const { return files_.read(path); }

platform::Result<std::string> ReadOnlyFiles::destinationOfSymbolicLink(const std::string& path) const {
  return files_.destinationOfSymbolicLink(path);
}

void ReadOnlyFiles::enumerate(const std::string& folder, const Visitor& visit) const {
  files_.enumerate(folder, visit);
}

std::optional<Error> ReadOnlyFiles::createFile(const std::string&) { return refusal(); }

std::optional<Error> ReadOnlyFiles::createDirectory(const std::string&) { return refusal(); }

std::optional<Error> ReadOnlyFiles::remove(const std::string&) { return refusal(); }

std::optional<Error> ReadOnlyFiles::move(const std::string&, const std::string&) { return refusal(); }

std::unique_ptr<platform::AppendStream> ReadOnlyFiles::openForAppending(const std::string&) {
  return nullptr;
}

ReadOnlyUserDefaultsStore::ReadOnlyUserDefaultsStore(platform::UserDefaultsStore& store)
    : store_(store),
      standardUserDefaults_(std::make_unique<ReadOnlyUserDefaults>(store.standardUserDefaults())) {}

std::unique_ptr<UserDefaults> ReadOnlyUserDefaultsStore::makeSuite(const std::string& suiteName) {
  return std::make_unique<ReadOnlySuite>(store_.makeSuite(suiteName));
}

ReadOnlyPlatform::ReadOnlyPlatform(platform::Platform& real)
    : real_(real),
      files_(real.files),
      userDefaults_(real.userDefaults),
      platform_(readOnly(real, console_, files_, userDefaults_)) {
  platform::install(platform_);
}

ReadOnlyPlatform::~ReadOnlyPlatform() { platform::install(real_); }

}  // namespace karno::karnoctl
