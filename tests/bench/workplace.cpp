#include "workplace.h"

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace karno::bench {
namespace {

namespace fs = std::filesystem;

fs::path& homeFolder() {
  static fs::path home;
  return home;
}

class CountingStream final : public platform::AppendStream {
 public:
  explicit CountingStream(std::unique_ptr<platform::AppendStream> stream) : stream_(std::move(stream)) {}
  void writeLine(std::string_view line) override {
    stream_->writeLine(line);
    fileCounts().linesWritten.fetch_add(1, std::memory_order_relaxed);
  }
  void flush() override { stream_->flush(); }

 private:
  std::unique_ptr<platform::AppendStream> stream_;
};

class CountingFiles final : public platform::Files {
 public:
  explicit CountingFiles(platform::Files& files) : files_(files) {}

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
  std::optional<platform::Error> createFile(const std::string& path) override {
    return files_.createFile(path);
  }
  std::optional<platform::Error> createDirectory(const std::string& path) override {
    return files_.createDirectory(path);
  }
  std::optional<platform::Error> remove(const std::string& path) override { return files_.remove(path); }
  std::optional<platform::Error> move(const std::string& from, const std::string& to) override {
    fileCounts().rotations.fetch_add(1, std::memory_order_relaxed);
    return files_.move(from, to);
  }
  void enumerate(const std::string& folder, const Visitor& visit) const override {
    files_.enumerate(folder, visit);
  }
  std::unique_ptr<platform::AppendStream> openForAppending(const std::string& path) override {
    std::unique_ptr<platform::AppendStream> stream = files_.openForAppending(path);
    if (!stream) return nullptr;
    return std::make_unique<CountingStream>(std::move(stream));
  }

 private:
  platform::Files& files_;
};

std::atomic<std::uint64_t>& shellCount() {
  static std::atomic<std::uint64_t> count{0};
  return count;
}

class CountingShell final : public platform::Shell {
 public:
  explicit CountingShell(platform::Shell& shell) : shell_(shell) {}
  platform::Result<std::unique_ptr<platform::ShellPipe>> open(const std::string& line) override {
    shellCount().fetch_add(1, std::memory_order_relaxed);
    return shell_.open(line);
  }

 private:
  platform::Shell& shell_;
};

class LaunchersBundles final : public platform::Bundles {
 public:
  explicit LaunchersBundles(const platform::Bundles& bundles)
      : bundles_(bundles), main_(bundles.bundleAtPath(builtBundle())) {
    if (!main_) throw std::runtime_error("the launcher's bundle is not built");
  }

  const platform::Bundle& mainBundle() const override { return *main_; }
  std::shared_ptr<const platform::Bundle> bundleAtPath(const std::string& path) const override {
    return bundles_.bundleAtPath(path);
  }

 private:
  const platform::Bundles& bundles_;
  const std::shared_ptr<const platform::Bundle> main_;
};

platform::Platform withServices(const platform::Platform& native, platform::Files& files,
                                platform::Bundles& bundles, platform::Shell& shell) {
  return {native.application,
          native.alerts,
          native.windows,
          native.workspace,
          native.dispatch,
          native.clock,
          native.tasks,
          native.processes,
          bundles,
          native.userDefaults,
          native.managedPreferences,
          native.distributedNotifications,
          files,
          native.text,
          native.consoleLog,
          native.systemVersion,
          native.updaters,
          shell,
          native.urlLoading,
          native.identifiers,
          native.processList,
          native.fileReading,
          native.fileManager,
          native.standardFolders,
          native.mounts,
          native.commands,
          native.appleScripts,
          native.authorisations};
}

}  // namespace

Workplace::Workplace() {
  std::string pattern = (fs::temp_directory_path() / "karno-bench-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make a temporary folder");
  folder_ = pattern;
  homeFolder() = folder_ / "Users" / "bench";
  fs::create_directories(homeFolder());
  setenv("HOME", homeFolder().c_str(), 1);
  setenv("KARNO_MACHINE_ROOT", folder_.c_str(), 1);
  setenv("LC_ALL", "C.UTF-8", 1);
}

void Workplace::remove() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

const fs::path& Workplace::home() { return homeFolder(); }

void Workplace::layOutMachine() {
  static const bool isDone = [] {
    const std::string command = std::string("'" KARNO_MAKE_MACHINE "' '") + machine().string() +
                                "' --user bench --bundle '" + builtBundle().string() +
                                "' --macos 14.5 --cpu arm64 --fuse 4.4.1";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("the machine cannot be laid out");
    setenv("PATH", ((machine() / "usr/bin").string() + ":" + std::getenv("PATH")).c_str(), 1);
    return true;
  }();
  static_cast<void>(isDone);
}

fs::path builtBundle() {
  const fs::path bench = fs::read_symlink("/proc/self/exe").parent_path();
  return bench.parent_path().parent_path() / "Karno.app";
}

FileCounts& fileCounts() {
  static FileCounts counts;
  return counts;
}

std::uint64_t shellCommands() { return shellCount(); }

platform::Platform& countingPlatform(platform::Platform& native) {
  static CountingFiles files(native.files);
  static LaunchersBundles bundles(native.bundles);
  static CountingShell shell(native.shell);
  static platform::Platform platform = withServices(native, files, bundles, shell);
  return platform;
}

}  // namespace karno::bench
