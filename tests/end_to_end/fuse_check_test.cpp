#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "expected_logs.h"
#include "hands.h"
#include "places.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAreArray;

constexpr const char* kFuseClient = "Karno(Fuse).app";
constexpr const char* kEndSoon = "1:exit=0";
constexpr const char* kInformation = "Library/Frameworks/macFUSE.framework/Resources/Info.plist";

struct FuseSystem {
  std::string cpu;
  std::string macOS;
  std::string fuse;
};

std::vector<std::string> optionsFor(const FuseSystem& system, const std::string& useFileProvider = "NO") {
  return {"--cpu",  system.cpu,  "--macos", system.macOS,
          "--fuse", system.fuse, "--admin", "USE_FILE_PROVIDER=" + useFileProvider};
}

Messages endingMessages() { return joined({clientEndedMessages("status:0, reason:1"), {kTerminating}}); }

class FuseRow : public ::testing::TestWithParam<FuseSystem> {};

TEST_P(FuseRow, LetsTheFuseBuildStart) {
  const FuseSystem& system = GetParam();
  Machine machine(builtTools(), optionsFor(system));

  machine.startWithScript(kEndSoon);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(),
              ElementsAreArray(joined(
                  {openingMessages(), fuseChosenMessages(), fuseSystemMessages(system.cpu, system.macOS),
                   fuseMetMessages(system.fuse), launchMessages(kFuseClient), endingMessages()})));
}

INSTANTIATE_TEST_SUITE_P(AppleSiliconFrom13, FuseRow,
                         ::testing::Values(FuseSystem{"arm64", "13.6.1", "4.4.1"}));
INSTANTIATE_TEST_SUITE_P(AppleSiliconBefore13, FuseRow,
                         ::testing::Values(FuseSystem{"arm64", "12.7.6", "4.0.4"}));
INSTANTIATE_TEST_SUITE_P(Intel, FuseRow, ::testing::Values(FuseSystem{"x86_64", "14.5", "3.11.2"}));

TEST(FuseCheck, StandsInForAFileProviderThatTheSystemIsTooOldFor) {
  Machine machine(builtTools(), optionsFor({"arm64", "12.2", "4.0.4"}, "YES"));

  machine.startWithScript(kEndSoon);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined(
          {openingMessages(),
           {"WARN Object=YES", "INFO EmbeddedApp[CONFIGURE] Use File Provider = Yes (admin)",
            "WARN Object=YES", "INFO Startup[CHECK] Checking system for FileProvider...",
            "WARN Startup[CHECK] *** Cannot *** use FileProvider (O/S version < 12.3). Failing over to "
            "Fuse."},
           fuseSystemMessages("arm64", "12.2"),
           fuseMetMessages("4.0.4"),
           launchMessages("Karno.app"),
           endingMessages()})));
}

void writeFile(const fs::path& file, const std::string& contents) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << contents;
}

TEST(FuseCheck, ReadsABinaryPropertyList) {
  Machine machine(builtTools(), optionsFor({"arm64", "14.5", "none"}));
  // { CFBundleVersion = "4.10.0"; }: a dictionary of one key at byte 8, the key at 11, the value at 29.
  const std::string list =
      "bplist00\xD1\x01\x02\x5F\x10\x0F"
      "CFBundleVersion\x56"
      "4.10.0" +
      std::string("\x08\x0B\x1D\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x24", 35);
  writeFile(machine.root() / kInformation, list);

  machine.startWithScript(kEndSoon);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined({openingMessages(), fuseChosenMessages(), fuseSystemMessages("arm64", "14.5"),
                               fuseMetMessages("4.10.0"), launchMessages(kFuseClient), endingMessages()})));
}

struct Damage {
  std::string name;
  std::function<void(const fs::path& information)> inflict;
};

constexpr std::uintmax_t kHugeBytes = 200U << 20U;

void makeHuge(const fs::path& file) {
  writeFile(file, "");
  fs::resize_file(file, kHugeBytes);
}

class DamagedFuse : public ::testing::TestWithParam<Damage> {};

TEST_P(DamagedFuse, CountsAsNone) {
  Machine machine(builtTools(), optionsFor({"arm64", "14.5", "none"}));
  GetParam().inflict(machine.root() / kInformation);
  machine.start();
  const auto prompt = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(prompt) << machine.consoleText();

  pressKey(machine, *prompt, "Escape");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(joined({openingMessages(),
                                                          fuseChosenMessages(),
                                                          fuseSystemMessages("arm64", "14.5"),
                                                          {kFuseMissing, kFuseNeeded},
                                                          fuseCancelledMessages()})));
}

INSTANTIATE_TEST_SUITE_P(
    WithAnInfoPlistThatIs, DamagedFuse,
    ::testing::Values(
        Damage{"Truncated",
               [](const fs::path& file) {
                 writeFile(file, "<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>4.4");
               }},
        Damage{"AnArray",
               [](const fs::path& file) {
                 writeFile(file, "<plist version=\"1.0\"><array><string>4.4.1</string></array></plist>");
               }},
        Damage{"OfANumber",
               [](const fs::path& file) {
                 writeFile(
                     file,
                     "<plist version=\"1.0\"><dict><key>CFBundleVersion</key><integer>5</integer></dict>"
                     "</plist>");
               }},
        Damage{"Empty", [](const fs::path& file) { writeFile(file, ""); }},
        Damage{"AFolder", [](const fs::path& file) { fs::create_directories(file); }},
        Damage{"Huge", makeHuge}),
    [](const auto& damage) { return damage.param.name; });

void replaceProgram(const Machine& machine, const std::string& name, const std::string& script) {
  const fs::path program = machine.root() / "usr/bin" / name;
  fs::remove(program);
  writeFile(program, script);
  fs::permissions(program, fs::perms::owner_all);
}

struct Ignorance {
  std::string name;
  std::string program;
  std::string script;
  Messages messages;
};

const Messages kUnknownVersion = {"INFO Fuse[SYSTEM] CPU: 'arm64'",
                                  "*** ERROR *** Fuse[SYSTEM] Failed to identify the system version"};

class UnknownSystem : public ::testing::TestWithParam<Ignorance> {};

// The log file, because the shell's own complaints are on the console as well.
TEST_P(UnknownSystem, NeedsMacFUSEWhateverIsInstalled) {
  Machine machine(builtTools(), optionsFor({"arm64", "14.5", "4.4.1"}));
  replaceProgram(machine, GetParam().program, GetParam().script);
  machine.start();
  const auto prompt = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(prompt) << machine.consoleText();

  pressKey(machine, *prompt, "Escape");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.log(), ElementsAreArray(joined({openingMessages(),
                                                      fuseChosenMessages(),
                                                      {"INFO Startup[CHECK] Checking system for Fuse..."},
                                                      GetParam().messages,
                                                      {kFuseNeeded},
                                                      fuseCancelledMessages()})));
}

INSTANTIATE_TEST_SUITE_P(
    When, UnknownSystem,
    ::testing::Values(Ignorance{"SwVersPrintsNothing", "sw_vers", "#!/bin/sh\n", kUnknownVersion},
                      Ignorance{
                          "SwVersPrintsValuesWithColons", "sw_vers",
                          "#!/bin/sh\nprintf 'ProductName:\\t\\tmacOS\\nProductVersion:\\t\\t14:5\\n'\n",
                          kUnknownVersion},
                      Ignorance{"SwVersPrintsTenMegabytesInOneLine", "sw_vers",
                                "#!/bin/sh\nhead -c 10485760 /dev/zero | tr '\\0' x\n", kUnknownVersion},
                      Ignorance{"SwVersCannotBeRun", "sw_vers", "#!/no/such/interpreter\n", kUnknownVersion},
                      Ignorance{"UnameCannotBeRun",
                                "uname",
                                "#!/no/such/interpreter\n",
                                {"*** ERROR *** KarnoOSInfoManager: Failed to retrieve any cpu info",
                                 "*** ERROR *** Fuse[SYSTEM] Failed to identify the system cpu"}}),
    [](const auto& ignorance) { return ignorance.param.name; });

TEST(FuseCheck, FindsTheVersionAfterTenMegabytesOfOtherLines) {
  Machine machine(builtTools(), optionsFor({"arm64", "14.5", "4.4.1"}));
  replaceProgram(
      machine, "sw_vers",
      "#!/bin/sh\nyes 'Some: thing: else' | head -c 10485760\nprintf '\\nProductVersion:\\t\\t14.5\\n'\n");

  machine.startWithScript(kEndSoon);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.log(),
      ElementsAreArray(joined({openingMessages(), fuseChosenMessages(), fuseSystemMessages("arm64", "14.5"),
                               fuseMetMessages("4.4.1"), launchMessages(kFuseClient), endingMessages()})));
}

}  // namespace
}  // namespace karno::test
