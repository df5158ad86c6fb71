#include "programs.h"

#include <filesystem>

#include "../platform/support/property_list_texts.h"
#include "fake_world.h"
#include "native_world.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using platform::CommandEnd;
using platform::TaskEnd;
using platform::TaskLaunch;
using platform::TerminationReason;

class FakePrograms final : public Programs {
 public:
  World& world() override { return *world_; }

  std::string sleeper(const std::string& name) override { return world_->write(name, "a program"); }

  std::string sleeperInBundle(const std::string& identifier) override {
    return *machine_.bundles.addHelper("Sleeper.app", identifier).executablePath();
  }

  std::string ending(const TaskEnd& end) override {
    const std::string path = *world_ / "ending";
    machine_.processTable.programs[path].endsAtOnce = end;
    return path;
  }

  TaskLaunch commandPrinting(const std::string& text, int status) override {
    const TaskLaunch command{.executablePath = *world_ / "printing", .arguments = {"text"}};
    machine_.commands.answers.insert_or_assign(
        commandLine(command), CommandEnd{.end = {.terminationStatus = status}, .standardOutput = text});
    return command;
  }

  std::string linePrinting(const std::string& text, int) override {
    machine_.shell.outputs["line"] = text;
    return "line";
  }

 private:
  const std::unique_ptr<World> world_ = makeFakeWorld();
  FakePlatform& machine_ = static_cast<FakeWorld&>(*world_).machine;
};

class NativePrograms final : public Programs {
 public:
  World& world() override { return *world_; }

  std::string sleeper(const std::string& name) override {
    fs::create_directories(fs::path(*world_ / name).parent_path());
    fs::copy_file("/bin/sleep", *world_ / name);
    return *world_ / name;
  }

  std::string sleeperInBundle(const std::string& identifier) override {
    world_->write("Sleeper.app/Contents/Info.plist",
                  propertyList(stringEntry("CFBundleIdentifier", identifier)));
    return sleeper("Sleeper.app/Contents/MacOS/Sleeper");
  }

  std::string ending(const TaskEnd& end) override {
    const std::string status = std::to_string(end.terminationStatus);
    const bool isExit = end.terminationReason == TerminationReason::Exit;
    return script("ending", isExit ? "exit " + status : "kill -" + status + " $$");
  }

  TaskLaunch commandPrinting(const std::string& text, int status) override {
    return {.executablePath = script("printing", linePrinting(text, status)), .arguments = {"text"}};
  }

  std::string linePrinting(const std::string& text, int status) override {
    return "cat '" + world_->write("text", text) + "'; exit " + std::to_string(status);
  }

 private:
  std::string script(const std::string& name, const std::string& line) {
    const std::string path = world_->write(name, "#!/bin/sh\n" + line + "\n");
    fs::permissions(path, fs::perms::owner_all);
    return path;
  }

  const std::unique_ptr<World> world_ = makeNativeWorld();
};

}  // namespace

std::unique_ptr<Programs> makeFakePrograms() { return std::make_unique<FakePrograms>(); }
std::unique_ptr<Programs> makeNativePrograms() { return std::make_unique<NativePrograms>(); }

}  // namespace karno::test
