#include "fake_world.h"

namespace karno::test {

std::string FakeWorld::write(std::string_view name, std::string_view content) {
  const std::string path = *this / name;
  machine.files.addFile(path, std::string(content));
  return path;
}

std::string FakeWorld::link(std::string_view name, const std::string& destination) {
  const std::string path = *this / name;
  machine.files.addSymbolicLink(path, destination);
  return path;
}

std::string FakeWorld::pipe(std::string_view name) {
  const std::string path = *this / name;
  machine.files.addEntry(path, platform::FileType::Other, kStartOfTest);
  return path;
}

void FakeWorld::makeReadOnly(std::string_view name) { machine.files.readOnly.insert(*this / name); }

void FakeWorld::mountImage(const std::string& place, const std::string& device) {
  machine.mounts.mounts[place] = platform::MountInformation{.sourceDevice = device};
}

std::string FakeWorld::makeBundle(std::string_view name, const BundleParts& parts) {
  const std::string path = *this / name;
  FakeBundle& bundle = machine.bundles.add(path);
  bundle.info = parts.info;
  bundle.executable = parts.executable;
  for (const std::string& resource : parts.resources)
    bundle.resources[resource] = path + "/Contents/Resources/" + resource;
  for (const auto& [key, text] : parts.texts) bundle.texts["MoveApplication/" + key] = text.description();
  return path;
}

void FakeWorld::store(Preferences where, const std::string& domain, const std::string& key,
                      const platform::Value& value) {
  FakeManagedPreferences& managed = machine.managedPreferences;
  platform::Value::Dictionary& values = where == Preferences::Forced ? managed.domains[domain]
                                        : where == Preferences::OfAllUsers
                                            ? managed.ofAllUsers[domain]
                                            : machine.userDefaults.suite(domain).values;
  values.insert_or_assign(key, value);
}

void FakeWorld::damageForcedValues(const std::string& domain) {
  machine.managedPreferences.damaged.insert(domain);
}

bool FakeWorld::waitUntil(const std::function<bool()>& condition, double limitSeconds) {
  return machine.runUntil(condition, limitSeconds);
}

std::unique_ptr<World> makeFakeWorld() {
  auto world = std::make_unique<FakeWorld>();
  world->machine.files.addDirectory(world->folder());
  return world;
}

}  // namespace karno::test
