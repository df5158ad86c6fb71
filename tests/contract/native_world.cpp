#include "native_world.h"

#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "../platform/support/run_loop.h"
#include "platform/posix/processes/process_information.h"
#include "platform/property_lists/property_lists.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

platform::Platform& nativeServices() {
  static std::string program = platform::programPath();
  static char* arguments[] = {program.data(), nullptr};
  return platform::nativePlatform(1, arguments);
}

void makeFolderOf(const std::string& path) { fs::create_directories(fs::path(path).parent_path()); }

}  // namespace

NativeWorld::NativeWorld() {
  for (const char* folder : {"home/Library", "machine", "work"}) fs::create_directories(disk_ / folder);
  platform::install(services());
}

// What nobody may change can be removed again.
NativeWorld::~NativeWorld() {
  std::error_code ignored;
  for (const auto& entry : fs::recursive_directory_iterator(disk_.path(), ignored)) {
    if (entry.is_directory(ignored) && !entry.is_symlink(ignored))
      fs::permissions(entry, fs::perms::owner_all, fs::perm_options::add, ignored);
  }
}

platform::Platform& NativeWorld::services() { return nativeServices(); }

std::string NativeWorld::folder() const { return fs::canonical(disk_ / "work").string(); }

std::string NativeWorld::write(std::string_view name, std::string_view content) {
  const std::string path = *this / name;
  makeFolderOf(path);
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::string NativeWorld::link(std::string_view name, const std::string& destination) {
  const std::string path = *this / name;
  makeFolderOf(path);
  fs::create_symlink(destination, path);
  return path;
}

std::string NativeWorld::pipe(std::string_view name) {
  const std::string path = *this / name;
  makeFolderOf(path);
  if (::mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no pipe at " + path);
  return path;
}

void NativeWorld::makeReadOnly(std::string_view name) {
  constexpr fs::perms kWriting = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  fs::permissions(*this / name, kWriting, fs::perm_options::remove);
}

void NativeWorld::writeList(const std::string& path, const platform::Value::Dictionary& entries) {
  write(path, platform::propertyListXML(entries).value());
}

// As tools/machine has it in its table of mounted images.
void NativeWorld::mountImage(const std::string& place, const std::string& device) {
  const std::string onDisk = place.substr(onMachine("").size());
  const platform::Value::Dictionary entity{{"dev-entry", device}, {"mount-point", onDisk}};
  const platform::Value::Dictionary image{{"system-entities", platform::Value::Array{entity}}};
  writeList(onMachine("/var/machine/disk-images.plist"), {{"images", platform::Value::Array{image}}});
}

std::string NativeWorld::makeBundle(std::string_view name, const BundleParts& parts) {
  const std::string path = *this / name;
  platform::Value::Dictionary info = parts.info;
  if (!parts.executable.empty()) {
    info.insert_or_assign("CFBundleExecutable", parts.executable);
    write(path + "/Contents/MacOS/" + parts.executable, "");
  }
  writeList(path + "/Contents/Info.plist", info);
  for (const std::string& resource : parts.resources) write(path + "/Contents/Resources/" + resource, "");
  if (!parts.texts.empty()) writeList(path + "/Contents/Resources/MoveApplication.strings", parts.texts);
  return path;
}

void NativeWorld::store(Preferences where, const std::string& domain, const std::string& key,
                        const platform::Value& value) {
  const std::string folder = where == Preferences::Forced ? onMachine("/Library/Managed Preferences")
                             : where == Preferences::OfAllUsers
                                 ? onMachine("/Library/Preferences")
                                 : services().files.homeDirectory() + "/Library/Preferences";
  const std::string path = folder + "/" + domain + ".plist";
  platform::Value::Dictionary values;
  if (const auto before = services().files.read(path))
    values = platform::parseDictionary(before.value()).value();
  values.insert_or_assign(key, value);
  writeList(path, values);
}

void NativeWorld::damageForcedValues(const std::string& domain) {
  write(onMachine("/Library/Managed Preferences/" + domain + ".plist"), "<plist><dict>");
}

bool NativeWorld::waitUntil(const std::function<bool()>& condition, double limitSeconds) {
  turnRunLoop(condition, std::chrono::milliseconds(static_cast<std::int64_t>(limitSeconds * 1000)));
  return condition();
}

std::unique_ptr<World> makeNativeWorld() { return std::make_unique<NativeWorld>(); }

}  // namespace karno::test
