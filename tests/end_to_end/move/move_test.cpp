#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "elements_are.h"
#include "expected_logs.h"
#include "hands.h"
#include "places.h"
#include "small_disk.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using karno::test::ElementsAre;
using ::testing::Contains;
using ::testing::ElementsAreArray;

constexpr const char* kMoving = "INFO -- Moving myself to the Applications folder";
constexpr const char* kMarkOfOldCopy = "Contents/old";
constexpr std::uintmax_t kRoomForAPartBytes = std::uintmax_t{1} << 20U;  // of a bundle
constexpr std::chrono::seconds kMoveCommandLimit{60};

// From the start to the question.
Messages askingMessages() {
  Messages messages = openingMessages();
  messages.back() = "INFO KarnoMoveApplicationManager:: Alerting user that the app needs moving.";
  return messages;
}

Messages movedMessages() {
  return {"INFO AppDelegate[MOVE] Karno has been moved and will be restarted. Quitting.",
          "INFO AppDelegate[TERMINATE] Reason: Karno was moved to /Applications", kTerminating};
}

Messages cancelledMessages() {
  return {"WARN AppDelegate[MOVE] User cancelled the move operation - quitting",
          "INFO AppDelegate[TERMINATE] Reason: user cancelled move to /Applications", kTerminating};
}

Messages failedMessages(const std::string& reason) {
  return {"*** ERROR *** AppDelegate[MOVE] Failed to move Karno. Error=" + reason,
          "INFO AppDelegate[TERMINATE] Reason: Karno failed to moved to /Applications", kTerminating};
}

// What the launcher that was opened in the new place logs; its client asks for the end.
Messages newCopyMessages() {
  return joined(
      {openingMessages("bash"), {kFirstStartup}, fileProviderMessages(), quittingMessages(), {kTerminating}});
}

std::vector<std::string> linesOf(const fs::path& file) {
  std::ifstream text(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

fs::path downloaded(const Machine& machine) { return machine.home() / "Downloads/Karno.app"; }
fs::path trashed(const Machine& machine) { return machine.home() / ".Trash/Karno.app"; }
fs::path executableOf(const fs::path& bundle) { return bundle / "Contents/MacOS/Karno"; }

void startWithShortClient(Machine& machine, std::vector<std::string> options = {}) {
  options.insert(options.end(), {"--env", "KARNO_CLIENT_SCRIPT=1:user-selected-quit"});
  machine.start(options);
}

// Answers the question with the default button and lets everything come to its end.
std::optional<int> moveAndWait(Machine& machine) {
  const auto alert = findWindow(machine, kLauncherTitle);
  if (!alert) return std::nullopt;
  pressKey(machine, *alert, "Return");
  return machine.waitForEnd();
}

// The same where the move fails, which a second alert says.
std::optional<int> moveInVain(Machine& machine) {
  const auto alert = findWindow(machine, kLauncherTitle);
  if (!alert) return std::nullopt;
  pressKey(machine, *alert, "Return");
  const auto failure = findNextWindow(machine, kLauncherTitle, *alert);
  if (!failure) return std::nullopt;
  pressKey(machine, *failure, "Return");
  return machine.waitForEnd();
}

// An older launcher in Applications that can be told from the new one.
void installOldCopy(const Machine& machine) {
  fs::copy(downloaded(machine), machine.bundle(), fs::copy_options::recursive);
  std::ofstream(machine.bundle() / kMarkOfOldCopy) << "old";
}

// Takes the write permission away from the Applications folder for as long as it lives.
class ShutApplications {
 public:
  explicit ShutApplications(const Machine& machine) : folder_(machine.root() / "Applications") {
    fs::permissions(folder_, fs::perms(0555));
  }
  ShutApplications(const ShutApplications&) = delete;
  ShutApplications& operator=(const ShutApplications&) = delete;
  ~ShutApplications() { fs::permissions(folder_, fs::perms(0755)); }

 private:
  const fs::path folder_;
};

TEST(MoveFromDownloads, OpensTheNewCopyOnceTheOldOneHasGone) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  startWithShortClient(machine);

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_THAT(withoutClientsEnd(machine.console()),
              ElementsAreArray(joined({askingMessages(), {kMoving}, movedMessages(), newCopyMessages()})));
  EXPECT_THAT(withoutClientsEnd(machine.log()),
              ElementsAreArray(joined({askingMessages(), movedMessages(), newCopyMessages()})));
  EXPECT_TRUE(fs::exists(executableOf(machine.bundle())));
  EXPECT_FALSE(fs::exists(downloaded(machine)));
  EXPECT_FALSE(fs::exists(trashed(machine)));
  EXPECT_FALSE(machine.hasProcesses());
}

// Moved, it would be moved onto itself.
TEST(MoveFromWhereApplicationsLeadsTo, IsNotAskedFor) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  fs::remove(machine.root() / "Applications");
  fs::create_directory_symlink(machine.home() / "Downloads", machine.root() / "Applications");
  startWithShortClient(machine);

  EXPECT_EQ(machine.waitForEnd(), 0);

  EXPECT_THAT(machine.log(), Contains(openingMessages().back()));
  EXPECT_TRUE(fs::exists(executableOf(downloaded(machine))));
}

TEST(MoveFromDownloads, IsDeclinedByEscape) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  machine.start();
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Escape");

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      machine.console(),
      ElementsAreArray(joined({askingMessages(), {"INFO -- User cancelled the move"}, cancelledMessages()})));
  EXPECT_THAT(machine.log(), ElementsAreArray(joined({askingMessages(), cancelledMessages()})));
  EXPECT_TRUE(fs::exists(executableOf(downloaded(machine))));
  EXPECT_FALSE(fs::exists(machine.bundle()));
}

TEST(MoveFromDownloads, IsDeclinedByAClick) {
  constexpr int kFromRight = 310;
  constexpr int kFromBottom = 34;
  Machine machine(builtTools(), {"--into", "Downloads"});
  machine.start();
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  closeAt(machine, *alert, alert->width - kFromRight, alert->height - kFromBottom);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(machine.log(), ElementsAreArray(joined({askingMessages(), cancelledMessages()})));
  EXPECT_TRUE(fs::exists(executableOf(downloaded(machine))));
}

TEST(MoveFromADiskImage, DetachesTheImageAndDeletesNothing) {
  Machine machine(builtTools(), {"--into", "Volumes/Karno"});
  startWithShortClient(machine);

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_TRUE(fs::exists(executableOf(machine.bundle())));
  EXPECT_FALSE(fs::exists(machine.root() / "Volumes/Karno"));
  EXPECT_TRUE(fs::exists(executableOf(machine.root() / "var/machine/ejected/Karno/Karno.app")));
  EXPECT_THAT(withoutClientsEnd(machine.log()),
              ElementsAreArray(joined({askingMessages(), movedMessages(), newCopyMessages()})));
  EXPECT_THAT(machine.console(), ::testing::Contains("\"disk4s1\" ejected."));
}

TEST(MoveFromInsideAnotherApplication, LeavesTheOldCopyThere) {
  const std::string folder = "Users/user/Desktop/Suite.app/Contents/Helpers";
  Machine machine(builtTools(), {"--into", folder});
  startWithShortClient(machine);

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_TRUE(fs::exists(executableOf(machine.bundle())));
  EXPECT_TRUE(fs::exists(executableOf(machine.root() / folder / "Karno.app")));
}

TEST(MoveOverAnOldCopy, PutsItIntoTheTrash) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  installOldCopy(machine);
  startWithShortClient(machine);

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_FALSE(fs::exists(machine.bundle() / kMarkOfOldCopy));
  EXPECT_TRUE(fs::exists(trashed(machine) / kMarkOfOldCopy));
  EXPECT_FALSE(fs::exists(downloaded(machine)));
}

TEST(MoveOverALinkThatLeadsNowhere, PutsTheLinkIntoTheTrash) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  fs::create_symlink("/nowhere/Karno.app", machine.bundle());
  startWithShortClient(machine);

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_FALSE(fs::is_symlink(machine.bundle()));
  EXPECT_TRUE(fs::exists(executableOf(machine.bundle())));
  EXPECT_EQ(fs::read_symlink(trashed(machine)), "/nowhere/Karno.app");
  EXPECT_FALSE(fs::exists(downloaded(machine)));
}

TEST(MoveOverAnOldCopy, SwitchesToOneThatRuns) {
  Machine machine(builtTools());
  machine.start();
  ASSERT_TRUE(machine.waitForMessage(kStarted)) << machine.consoleText();
  fs::copy(machine.bundle(), downloaded(machine), fs::copy_options::recursive);
  const std::string second = executableOf(downloaded(machine));
  const fs::path output = machine.root() / "var/log/second.log";
  machine.in({"bash", "-c", "\"$0\" >\"$1\" 2>&1 &", second, output});
  const auto alert = findWindow(machine, kLauncherTitle);
  ASSERT_TRUE(alert) << machine.consoleText();

  pressKey(machine, *alert, "Return");

  EXPECT_TRUE(
      machine.waitUntil([&] { return machine.processesOf(second).empty(); }, std::chrono::seconds(20)));
  EXPECT_THAT(linesOf(output),
              ::testing::IsSupersetOf(
                  {std::string(kMoving), std::string("INFO -- Switching to an already running version")}));
  EXPECT_THAT(linesOf(machine.root() / "var/log/open.log"),
              ElementsAre("open " + machine.bundle().string() + " "));
  EXPECT_EQ(machine.processesOf(executableOf(machine.bundle())).size(), 1U);
  EXPECT_TRUE(fs::exists(second));
}

TEST(MoveWithAPassword, HappensWhenTheAdministratorAuthorises) {
  Machine machine(builtTools(), {"--into", "Downloads", "--administrator", "authorises"});
  installOldCopy(machine);
  const ShutApplications shut(machine);
  startWithShortClient(machine);

  const auto status = moveAndWait(machine);

  const std::string from = downloaded(machine);
  const std::string to = machine.bundle();
  EXPECT_EQ(status, 0);
  EXPECT_THAT(linesOf(machine.root() / "var/log/pkexec.log"),
              ElementsAre("pkexec /bin/true ", "pkexec /bin/rm -rf " + to + " ",
                          "pkexec /bin/cp -pR " + from + " " + to + " "));
  EXPECT_TRUE(fs::exists(executableOf(to)));
  EXPECT_FALSE(fs::exists(machine.bundle() / kMarkOfOldCopy));
  EXPECT_FALSE(fs::exists(trashed(machine)));
  EXPECT_FALSE(fs::exists(from));
}

TEST(MoveWithAPassword, DoesNotHappenWhenTheUserCancels) {
  Machine machine(builtTools(), {"--into", "Downloads", "--administrator", "cancels"});
  const ShutApplications shut(machine);
  machine.start();

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_THAT(machine.console(),
              ElementsAreArray(joined({askingMessages(),
                                       {kMoving, "INFO -- Not moving because user canceled authorization"},
                                       cancelledMessages()})));
  EXPECT_TRUE(fs::exists(executableOf(downloaded(machine))));
}

class MoveWithAPasswordInVain : public ::testing::TestWithParam<const char*> {};

TEST_P(MoveWithAPasswordInVain, SaysSoAndKeepsTheOldBundle) {
  Machine machine(builtTools(), {"--into", "Downloads", "--administrator", GetParam()});
  const ShutApplications shut(machine);
  machine.start();

  const auto status = moveInVain(machine);

  EXPECT_EQ(status, 0);
  EXPECT_THAT(machine.console(),
              ElementsAreArray(
                  joined({askingMessages(),
                          {kMoving, "ERROR -- Could not copy myself to /Applications with authorization"},
                          failedMessages("Could not copy to /Applications with authorization")})));
  EXPECT_TRUE(fs::exists(executableOf(downloaded(machine))));
}

INSTANTIATE_TEST_SUITE_P(Administrators, MoveWithAPasswordInVain, ::testing::Values("refuses", "fails"),
                         [](const auto& answer) { return std::string(answer.param); });

Messages fullDiskMessages(const Machine& machine) {
  const std::string from = downloaded(machine);
  const std::string to = machine.bundle();
  return joined({askingMessages(),
                 {kMoving,
                  "ERROR -- Could not copy '" + from + "' to '" + to +
                      "' (Error Domain=NSPOSIXErrorDomain Code=28 \"No space left on device\")",
                  "ERROR -- Could not copy myself to " + to},
                 failedMessages("Failed to copy bundle")});
}

// What the downloaded bundle lacks or has that the built one has not.
std::string damageOf(const fs::path& bundle) {
  return runCommand({"diff", "-r", "--no-dereference", builtTools().bundle, bundle}, kMoveCommandLimit)
      .output;
}

TEST(MoveOnAFullDisk, FailsAndKeepsTheOldBundle) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  const SmallDisk disk(machine.root() / "Applications", kRoomForAPartBytes);
  if (!disk.hindrance().empty()) GTEST_SKIP() << disk.hindrance();
  machine.start();

  const auto status = moveInVain(machine);

  EXPECT_EQ(status, 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(fullDiskMessages(machine)));
  EXPECT_EQ(damageOf(downloaded(machine)), "");
}

// The same where no disk can be mounted.
TEST(MoveOnADiskThatSaysItIsFull, FailsAndKeepsTheOldBundle) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  machine.start({"--env", "LD_PRELOAD=" + faultyDisk().string(), "--env", "KARNO_TEST_DISK=full"});

  const auto status = moveInVain(machine);

  EXPECT_EQ(status, 0);
  EXPECT_THAT(machine.console(), ElementsAreArray(fullDiskMessages(machine)));
  EXPECT_EQ(damageOf(downloaded(machine)), "");
}

TEST(MoveOfABundleThatCannotBeDeleted, IsDoneWithAWarning) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  startWithShortClient(machine,
                       {"--env", "LD_PRELOAD=" + faultyDisk().string(), "--env", "KARNO_TEST_DISK=stubborn"});

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_THAT(
      machine.console(),
      ::testing::IsSupersetOf(
          {std::string(kMoving),
           "WARNING -- Could not delete '" + downloaded(machine).string() +
               "': The operation couldn’t be completed. Operation not permitted",
           "ERROR -- Could not trash '" + downloaded(machine).string() + "'",
           std::string("WARNING -- Could not delete application after moving it to Applications folder"),
           movedMessages().front(), std::string(kStarted)}));
  EXPECT_TRUE(fs::exists(executableOf(machine.bundle())));
  EXPECT_TRUE(fs::exists(executableOf(downloaded(machine))));
}

// A Trash on another disk takes a copy; what it was copied from has to be removed.
TEST(MoveOverAnOldCopyThatCannotBeDeleted, TellsWhatStaysOfItAndIsDone) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  installOldCopy(machine);
  const fs::path disk = fs::path("/dev/shm") / ("karno-test-trash-" + std::to_string(::getpid()));
  fs::create_directory(disk);
  fs::remove_all(machine.home() / ".Trash");
  fs::create_directory_symlink(disk, machine.home() / ".Trash");
  startWithShortClient(machine,
                       {"--env", "LD_PRELOAD=" + faultyDisk().string(), "--env", "KARNO_TEST_DISK=stubborn"});

  const auto status = moveAndWait(machine);
  const bool isInTrash = fs::exists(trashed(machine) / kMarkOfOldCopy);
  fs::remove_all(disk);

  EXPECT_EQ(status, 0);
  EXPECT_TRUE(isInTrash);
  EXPECT_THAT(machine.consoleText(),
              ::testing::HasSubstr("“" + machine.bundle().string() +
                                   "” is in the Trash, but a part of it stays in “" +
                                   (machine.root() / "Applications/.Karno.app.trashed").string() +
                                   "”: Operation not permitted"));
  EXPECT_FALSE(fs::exists(machine.bundle() / kMarkOfOldCopy));
  EXPECT_TRUE(fs::exists(executableOf(machine.bundle())));
}

// Blanks, both quotation marks, a dollar sign, a newline and letters beyond ASCII.
TEST(MoveOfABundleWithAnOddName, WorksAsAnyOther) {
  const std::string name = "Anna's \"Kärno\" $HOME\n日本 2.app";
  const fs::path links = fs::temp_directory_path() / ("karno-test-names-" + std::to_string(::getpid()));
  fs::create_directories(links);
  fs::create_directory_symlink(builtTools().bundle, links / name);
  Machine machine({.commands = builtTools().commands, .bundle = links / name}, {"--into", "Downloads"});
  fs::remove_all(links);
  startWithShortClient(machine);

  const auto status = moveAndWait(machine);

  EXPECT_EQ(status, 0);
  EXPECT_THAT(withoutClientsEnd(machine.log()),
              ElementsAreArray(joined({askingMessages(), movedMessages(), newCopyMessages()})));
  EXPECT_TRUE(fs::exists(executableOf(machine.root() / "Applications" / name)));
  EXPECT_FALSE(fs::exists(machine.home() / "Downloads" / name));
}

TEST(MoveQuestion, IsNotAskedWhereTheUserDefaultSaysSo) {
  Machine machine(builtTools(), {"--into", "Downloads"});
  fs::create_directories(machine.home() / "Library/Preferences");
  std::ofstream(machine.home() / "Library/Preferences/it.vantul.KarnoWrapper.plist")
      << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
         "<key>moveToApplicationsFolderAlertSuppress</key><true/></dict></plist>\n";
  startWithShortClient(machine);

  EXPECT_EQ(machine.waitForEnd(), 0);
  EXPECT_THAT(
      withoutClientsEnd(machine.log()),
      ElementsAreArray(joined(
          {openingMessages(), {kFirstStartup}, fileProviderMessages(), quittingMessages(), {kTerminating}})));
  EXPECT_TRUE(fs::exists(executableOf(downloaded(machine))));
}

}  // namespace
}  // namespace karno::test
