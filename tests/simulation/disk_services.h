#pragma once
#include <cerrno>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulated_service.h"

// Files and what is kept in them: settings, mounts, and what an administrator or the Finder does to the disk.
namespace karno::simulation {

class SimulatedStream final : public platform::AppendStream {
 public:
  SimulatedStream(World& world, std::string path, std::unique_ptr<platform::AppendStream> stream)
      : world_(world), path_(std::move(path)), stream_(std::move(stream)) {}

  void writeLine(std::string_view line) override {
    const Fault* const fault = world_.call("Files::writeLine");
    if (fault == nullptr) {
      if (world_.isSabotaged("lost line") && line.find("Main: Started") != std::string_view::npos) return;
      stream_->writeLine(line);
    } else if (fault->how == How::Half && world_.machine.files.fileExists(path_)) {
      world_.machine.files.overwrite(path_,
                                     world_.machine.files.text(path_) + std::string(line.substr(0, 30)));
    }
  }
  void flush() override { stream_->flush(); }

 private:
  World& world_;
  const std::string path_;
  std::unique_ptr<platform::AppendStream> stream_;
};

class SimulatedFiles final : public Of<platform::Files, &Fakes::files> {
 public:
  using Of::Of;

  std::vector<std::string> searchPath(platform::UserFolder folder) const override {
    return fake_.searchPath(folder);
  }
  std::string homeDirectory() const override { return fake_.homeDirectory(); }
  std::vector<std::string> localLibraryFolders() const override {
    if (world_.call("Files::localLibraryFolders") != nullptr) return {};
    return fake_.localLibraryFolders();
  }
  bool fileExists(const std::string& path) const override {
    world_.call("Files::fileExists");
    return fake_.fileExists(path);
  }
  std::optional<std::uint64_t> sizeInBytes(const std::string& path) const override {
    world_.call("Files::sizeInBytes");
    return fake_.sizeInBytes(path);
  }
  Result<std::string> read(const std::string& path) const override {
    const Fault* const fault = world_.call("Files::read");
    if (fault == nullptr) return fake_.read(path);
    if (fault->how == How::Odd) return std::string(kGarbage);
    return Error::posix(fault->number);
  }
  Result<std::string> destinationOfSymbolicLink(const std::string& path) const override {
    return fake_.destinationOfSymbolicLink(path);
  }
  std::optional<Error> createFile(const std::string& path) override {
    return unlessFaulty("Files::createFile", [&] { return fake_.createFile(path); });
  }
  std::optional<Error> createDirectory(const std::string& path) override {
    return unlessFaulty("Files::createDirectory", [&] { return fake_.createDirectory(path); });
  }
  std::optional<Error> move(const std::string& from, const std::string& to) override {
    return unlessFaulty("Files::move", [&] {
      auto error = fake_.move(from, to);
      if (!error && from == test::kLogFile) ++world_.record.rotations;
      return error;
    });
  }

  // Of a folder one item after the other goes.
  std::optional<Error> remove(const std::string& path) override {
    return unlessFaulty("Files::remove", [&] {
      world_.note("remove", path);
      std::vector<std::string> items;
      if (fake_.isFolder(path) && !fake_.destinationOfSymbolicLink(path))
        fake_.enumerate(path, [&](const platform::DirectoryEntry& entry) {
          items.push_back(path + "/" + entry.relativePath);
          return true;
        });
      for (; !items.empty(); items.pop_back()) {
        if (const auto error = unlessFaulty("Files::remove", [&] { return fake_.remove(items.back()); }))
          return error;
      }
      return fake_.remove(path);
    });
  }
  void enumerate(const std::string& folder, const Visitor& visit) const override {
    world_.call("Files::enumerate");
    fake_.enumerate(folder, visit);
  }
  std::unique_ptr<platform::AppendStream> openForAppending(const std::string& path) override {
    if (world_.call("Files::openForAppending") != nullptr) return nullptr;
    auto stream = fake_.openForAppending(path);
    return stream ? std::make_unique<SimulatedStream>(world_, path, std::move(stream)) : nullptr;
  }

 private:
  template <class Operation>
  std::optional<Error> unlessFaulty(const char* name, const Operation& operation) {
    if (const Fault* const fault = world_.call(name)) return Error::posix(fault->number);
    return operation();
  }
};

// Whole copies appear at once, and what is copied lies beside them before.
class SimulatedFileManager final : public Of<platform::FileManager, &Fakes::fileManager> {
 public:
  using Of::Of;

  bool isWritable(const std::string& path) const override {
    const Fault* const fault = world_.call("FileManager::isWritable");
    return fake_.isWritable(path) != (fault != nullptr);
  }
  bool isSameItem(const std::string& path, const std::string& other) const override {
    return fake_.isSameItem(path, other);
  }
  std::string resolvingSymbolicLinks(const std::string& path) const override {
    return fake_.resolvingSymbolicLinks(path);
  }
  std::string standardising(const std::string& path) const override { return fake_.standardising(path); }

  std::optional<Error> copyItem(const std::string& from, const std::string& to) override {
    const Fault* const fault = world_.call("FileManager::copyItem");
    world_.note("copy", from + " to " + to);
    if (fault != nullptr && fault->how == How::Fails) return Error::posix(fault->number);
    test::FakeFiles& files = world_.machine.files;
    const std::string beside = to + ".copying";
    files.remove(beside);
    int copied = 0;
    const auto hindrance = [&](const std::string&) -> std::optional<Error> {
      world_.call("FileManager::copyItem step");
      if (fault != nullptr && ++copied == 3) return Error::posix(fault->number);
      return std::nullopt;
    };
    if (const auto error =
            fake_.isSameItem(from, to) ? Error::posix(EEXIST) : files.copy(from, beside, hindrance))
      return error;
    if (files.isThere(to)) return Error::posix(EEXIST);
    return files.move(beside, to);
  }
  std::optional<Error> trashItem(const std::string& path) override {
    if (world_.isSabotaged("no bundle")) {
      world_.machine.files.remove(world_.machine.bundles.main().bundlePath());
      world_.machine.files.remove(path);
    }
    world_.note("trash", path);
    if (const Fault* const fault = world_.call("FileManager::trashItem")) return Error::posix(fault->number);
    return fake_.trashItem(path);
  }
};

class SimulatedDefaults final : public platform::UserDefaults {
 public:
  SimulatedDefaults(World& world, std::string suite, std::shared_ptr<platform::UserDefaults> defaults)
      : world_(world), suite_(std::move(suite)), defaults_(std::move(defaults)) {}

  std::optional<platform::Value> objectForKey(std::string_view key) const override {
    if (world_.call("UserDefaults::objectForKey") != nullptr)
      return platform::Value(platform::Value::Array{});
    return defaults_->objectForKey(key);
  }
  bool boolForKey(std::string_view key) const override {
    return defaults_->boolForKey(key) != (world_.call("UserDefaults::boolForKey") != nullptr);
  }
  void setBool(bool value, std::string_view key) override {
    if (world_.call("UserDefaults::setBool") != nullptr) return;
    world_.wrote(suite_, world_.isSabotaged("odd setting") ? "isFirstStartup" : key, value);
    defaults_->setBool(value, key);
  }
  void synchronize() override {
    world_.call("UserDefaults::synchronize");
    defaults_->synchronize();
  }

 private:
  World& world_;
  const std::string suite_;
  std::shared_ptr<platform::UserDefaults> defaults_;
};

class SimulatedDefaultsStore final : public Of<platform::UserDefaultsStore, &Fakes::userDefaults> {
 public:
  using Of::Of;

  platform::UserDefaults& standardUserDefaults() override { return standard_; }
  std::unique_ptr<platform::UserDefaults> makeSuite(const std::string& name) override {
    return std::make_unique<SimulatedDefaults>(world_, name, fake_.makeSuite(name));
  }

 private:
  // The store is the owner.
  SimulatedDefaults standard_{world_, "standard", {std::shared_ptr<void>(), &fake_.standardUserDefaults()}};
};

class SimulatedManagedPreferences final
    : public Of<platform::ManagedPreferences, &Fakes::managedPreferences> {
 public:
  using Of::Of;

  std::optional<platform::Value> copyAppValue(const std::string& key,
                                              const std::string& application) override {
    const Fault* const fault = world_.call("ManagedPreferences::copyAppValue");
    if (fault == nullptr) return fake_.copyAppValue(key, application);
    return fault->how == How::Odd ? std::optional(platform::Value(true)) : std::nullopt;
  }
  bool isAppValueForced(const std::string& key, const std::string& application) override {
    return fake_.isAppValueForced(key, application);
  }
};

class SimulatedMounts final : public Of<platform::Mounts, &Fakes::mounts> {
 public:
  using Of::Of;

  std::optional<platform::MountInformation> informationOf(const std::string& path) const override {
    return world_.call("Mounts::informationOf") != nullptr ? std::nullopt : fake_.informationOf(path);
  }
};

// The administrator's commands do to the disk what they say.
class SimulatedAuthorisation final : public platform::Authorisation {
 public:
  SimulatedAuthorisation(World& world, std::unique_ptr<platform::Authorisation> given)
      : world_(world), given_(std::move(given)) {}

  platform::RightAnswer copyRight(const std::string& right, std::uint32_t flags) override {
    const Fault* const fault = world_.call("Authorisation::copyRight");
    if (fault == nullptr) return given_->copyRight(right, flags);
    return fault->how == How::Odd ? platform::RightAnswer::Cancelled : platform::RightAnswer::Refused;
  }
  bool canExecuteWithPrivileges() override {
    return world_.call("Authorisation::canExecuteWithPrivileges") == nullptr;
  }
  Result<platform::TaskEnd> executeWithPrivileges(const platform::TaskLaunch& command) override {
    const Fault* const fault = world_.call("Authorisation::executeWithPrivileges");
    if (fault != nullptr && fault->how == How::Fails) return Error::posix(fault->number);
    test::FakeFiles& files = world_.machine.files;
    const std::set<std::string> readOnly = std::exchange(files.readOnly, {});
    std::optional<Error> error;
    if (command.executablePath == "/bin/rm") {
      files.remove(command.arguments.back());
    } else {
      int copied = 0;
      error = files.copy(
          command.arguments[1], command.arguments[2], [&](const std::string&) -> std::optional<Error> {
            world_.call("Authorisation::execute step");
            return fault != nullptr && ++copied == 2 ? std::optional(Error::posix(ENOSPC)) : std::nullopt;
          });
    }
    files.readOnly = readOnly;
    return platform::TaskEnd{.terminationStatus = error || fault != nullptr ? 1 : 0};
  }

 private:
  World& world_;
  std::unique_ptr<platform::Authorisation> given_;
};

class SimulatedAuthorisations final : public Of<platform::Authorisations, &Fakes::authorisations> {
 public:
  using Of::Of;

  std::unique_ptr<platform::Authorisation> create() override {
    if (world_.call("Authorisations::create") != nullptr) return nullptr;
    return std::make_unique<SimulatedAuthorisation>(world_, fake_.create());
  }
};

// The one script that there is moves a file to the Trash.
class SimulatedAppleScripts final : public Of<platform::AppleScripts, &Fakes::appleScripts> {
 public:
  using Of::Of;

  std::optional<std::string> execute(const std::string& source) override {
    if (world_.call("AppleScripts::execute") != nullptr) return "The Finder does not answer.";
    const std::size_t begin = source.find('"') + 1;
    const auto error =
        world_.machine.fileManager.trashItem(source.substr(begin, source.find('"', begin) - begin));
    return error ? std::optional(error->description()) : fake_.execute(source);
  }
};

}  // namespace karno::simulation
