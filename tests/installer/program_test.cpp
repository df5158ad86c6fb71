#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "forked_process.h"
#include "installer/interruption.h"
#include "installer/progress.h"
#include "platform/linux/files/install_verdict.h"
#include "support/install_place.h"
#include "support/installer_program.h"
#include "support/update_place.h"

namespace karno::test {
namespace {

// Enough entries for the program to be held among them.
std::vector<Item> manyItems() {
  std::vector<Item> items = bundleItems();
  for (int number = 0; number < 200; ++number)
    items.push_back(file("Karno.app/Contents/Resources/" + std::to_string(number), std::to_string(number)));
  return items;
}

void waitForContent(const std::string& path) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (contentOf(path).empty() && std::chrono::steady_clock::now() < end) ::usleep(10'000);
}

std::string resourceOf(const UpdatePlace& place) { return place.into() + "/Karno.app/Contents/Info.plist"; }

TEST(InstallerProgram, TellsItsVersionAndItsUse) {
  EXPECT_EQ(runProgram({KARNO_INSTALLER, "--version"}).output, "karno-installer " KARNO_VERSION "\n");
  const ProgramEnd help = runProgram({KARNO_INSTALLER, "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.output.starts_with("Usage: karno-installer VERB [ARGUMENT...]\n")) << help.output;
}

TEST(InstallerProgram, EndsWith64WhenItIsUsedWrongly) {
  const ProgramEnd end = runProgram({KARNO_INSTALLER, "unpack", "--archive"});

  EXPECT_EQ(end.status, 64);
  EXPECT_EQ(end.output, "");
  EXPECT_EQ(end.errors, "karno-installer: --archive needs a value\nTry \"karno-installer help unpack\".\n");
}

TEST(UnpackProgram, TellsHowFarItIsAndThatItIsReady) {
  UpdatePlace place;
  place.makeArchive(bundleItems(), Format::Tar);
  const std::string total = std::to_string(*place.request.lengthInBytes);

  const ProgramEnd end = runProgram(place.command());

  EXPECT_EQ(end.output.substr(0, end.output.find('\n')), "progress 512 " + total);
  EXPECT_EQ(lastLineOf(end.output), "ready " + place.into() + "/Karno.app\n");
  EXPECT_EQ(end.errors, "");
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(place.unpackedTree(), treeOf(bundleItems()));
}

TEST(UnpackProgram, TellsWhyItFailed) {
  UpdatePlace place;
  place.makeArchive(bundleItems({.version = "1"}));

  const ProgramEnd end = runProgram(place.command());

  EXPECT_EQ(lastLineOf(end.output), "failed 4006 The update has version 1, which is not newer than 1.\n");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(UnpackProgram, FailsInOneLineWhateverTheNamesAre) {
  UpdatePlace place;
  place.makeArchive({file("/a\nb\x1B[31m", "x")});

  const ProgramEnd end = runProgram(place.command());

  EXPECT_EQ(lastLineOf(end.output),
            "failed 3000 The archive holds the name \"/a?b?[31m\", which is absolute.\n");
}

TEST(UnpackProgram, RefusesAForeignSignatureWithoutALineOfProgress) {
  UpdatePlace place;
  place.makeArchive(bundleItems());
  place.request.signature = SigningKey().signatureOf("other");

  const ProgramEnd end = runProgram(place.command());

  EXPECT_EQ(end.output, "failed 3001 The signature does not belong to the archive.\n");
  EXPECT_EQ(end.status, 1);
}

// What a full disk does as well, with other words.
TEST(UnpackProgram, CleansUpWhenThereIsNoRoomForAFile) {
  UpdatePlace place;
  place.makeArchive(joined(bundleItems(), {file("Karno.app/large", std::string(200'000, 'l'))}));
  std::vector<std::string> command{"prlimit", "--fsize=100000"};
  for (const std::string& word : place.command()) command.push_back(word);

  const ProgramEnd end = runProgram(command);

  EXPECT_EQ(lastLineOf(end.output), "failed 3000 The archive could not be unpacked: File too large.\n");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(place.unpackedTree(), "");
}

class HeldUnpackProgram : public testing::Test {
 protected:
  HeldUnpackProgram() { place.makeArchive(manyItems(), Format::TarGzip); }
  UpdatePlace place;
};

TEST_F(HeldUnpackProgram, CleansUpWhenItIsToldToEnd) {
  HeldProgram program(place.command());
  program.letRunUntilThereIs(resourceOf(place));

  program.signal(SIGTERM);

  EXPECT_EQ(program.status(), 1);
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST_F(HeldUnpackProgram, CleansUpWhenNobodyReadsItsLines) {
  HeldProgram program(place.command());
  program.letRunUntilThereIs(resourceOf(place));

  program.stopReading();

  EXPECT_EQ(program.status(), 1);
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST_F(HeldUnpackProgram, CleansUpWhenItsParentDies) {
  HeldProgram program(place.command(), true);
  program.letRunUntilThereIs(resourceOf(place));

  program.killParent();

  EXPECT_TRUE(program.waitForEnd());
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(ProgressLines, KeepAnIntervalBetweenThem) {
  const TemporaryFolder folder;
  const platform::ScopedDescriptor file(::open((folder / "lines").c_str(), O_WRONLY | O_CREAT, 0600));
  installer::ProgressLines lines(file.get(), 10'000'000);
  const auto start = std::chrono::steady_clock::now();

  for (std::uint64_t bytes = 0; bytes < 10'000; ++bytes) EXPECT_TRUE(lines.goesOn(bytes));

  const auto most = (std::chrono::steady_clock::now() - start) / installer::kProgressInterval + 1;
  const std::string text = contentOf(folder / "lines");
  EXPECT_LE(std::count(text.begin(), text.end(), '\n'), most);
  EXPECT_TRUE(text.starts_with("progress 0 10000000\n"));
}

// A zip's list of contents stands at its end and is read first.
TEST(ProgressLines, NeverGoBackNorBeyondTheTotal) {
  const TemporaryFolder folder;
  const platform::ScopedDescriptor file(::open((folder / "lines").c_str(), O_WRONLY | O_CREAT, 0600));
  installer::ProgressLines lines(file.get(), 100);

  lines.goesOn(70);
  ::usleep(60'000);
  lines.goesOn(20);
  ::usleep(60'000);
  lines.goesOn(150);

  EXPECT_EQ(contentOf(folder / "lines"), "progress 70 100\nprogress 70 100\nprogress 100 100\n");
}

// A pipe that is full would hold it for as long as somebody keeps the other end.
TEST(ProgressLines, AreNotWaitedForOnceNobodyWantsThem) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  const platform::ScopedDescriptor reader(ends[0]);
  const platform::ScopedDescriptor writer(ends[1]);
  const std::string filling(static_cast<std::size_t>(::fcntl(writer.get(), F_GETPIPE_SZ)), '\n');
  ASSERT_EQ(::write(writer.get(), filling.data(), filling.size()), static_cast<ssize_t>(filling.size()));

  ForkedProcess process([&] {
    installer::noteInterruptions();
    const installer::ProgressLines lines(writer.get(), 10);
    ::raise(SIGTERM);
    ::alarm(20);
    return lines.say("too late") ? 1 : 42;
  });

  EXPECT_EQ(process.exitStatus(), 42);
}

TEST(InstallProgram, Installs) {
  const InstallPlace place;

  const ProgramEnd end = runProgram(place.command());

  EXPECT_EQ(end.output, "");
  EXPECT_EQ(end.errors, "");
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(place.tree(), place.newTree());
}

TEST(InstallProgram, ComplainsInOneLine) {
  const InstallPlace place(".karno-update-1", {.version = "1"});

  const ProgramEnd end = runProgram(place.command());

  EXPECT_EQ(end.errors, "karno-installer: The update has version 1, which is not newer than 1.\n");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(treeText(place.bundle()), treeText(InstallPlace().bundle()));
}

TEST(InstallProgram, ThatFailsLeavesAVerdictAndTakesTheTouchFileAway) {
  const InstallPlace place(".karno-update-1", {.version = "1"});
  const std::string touchfile = place.folder().write("updated", "");
  std::vector<std::string> command = place.command();
  command.insert(command.end(), {"--touch-file", touchfile});

  runProgram(command);

  EXPECT_FALSE(std::filesystem::exists(touchfile));
  const auto verdict = platform::takeInstallVerdict(place.bundle());
  ASSERT_TRUE(verdict && *verdict);
  EXPECT_EQ(verdict->value().version, "1");
  EXPECT_EQ(verdict->value().reason, "The update has version 1, which is not newer than 1.");
  EXPECT_EQ(place.tree(), place.oldTree());
}

TEST(InstallProgram, ThatSucceedsLeavesTheTouchFileAndNoVerdict) {
  const InstallPlace place;
  const TemporaryFolder elsewhere;
  const std::string touchfile = elsewhere.write("updated", "");
  std::vector<std::string> command = place.command();
  command.insert(command.end(), {"--touch-file", touchfile});

  runProgram(command);

  EXPECT_TRUE(std::filesystem::exists(touchfile));
  EXPECT_EQ(place.tree(), place.newTree());
}

TEST(InstallProgram, ThatIsKilledWhileItWaitsHasLeftAVerdict) {
  const InstallPlace place;
  const WaitingChild child;
  std::vector<std::string> command = place.command();
  command.back() = std::to_string(child.processIdentifier());
  {
    HeldProgram program(command);
    program.waitUntilItLeadsItsSession();
    waitForContent(platform::installVerdictPath(place.bundle()));
    EXPECT_FALSE(platform::takeInstallVerdict(place.bundle())) << "taken from an installer at work";
    program.signal(SIGKILL);
    program.status();
  }

  const auto verdict = platform::takeInstallVerdict(place.bundle());

  ASSERT_TRUE(verdict && *verdict);
  EXPECT_EQ(verdict->value(), (platform::InstallVerdict{"2", "The installation was cut off."}));
}

TEST(InstallProgram, OutlivesTheReaderOfItsComplaints) {
  const InstallPlace place(".karno-update-1", {.version = "1"});
  std::vector<std::string> command{"bash", "-c", "exec 2> >(exec true); wait $!; \"$@\"; echo $?", "bash"};
  for (const std::string& word : place.command()) command.push_back(word);

  const ProgramEnd end = runProgram(command);

  EXPECT_EQ(end.output, "1\n");
}

TEST(InstallProgram, OpensTheBundleAgainWithoutIgnoringSignals) {
  const InstallPlace place;
  const TemporaryFolder machine;
  const std::string open = machine.write("usr/bin/open",
                                         "#!/bin/bash\n"
                                         "ignored=$(sed -n 's/^SigIgn:\\t//p' /proc/$$/status)\n"
                                         "echo \"$# $1 $2 $((0x$ignored & 0x1001))\"\n");
  ::chmod(open.c_str(), 0755);
  std::vector<std::string> command{"env", "KARNO_MACHINE_ROOT=" + machine.path()};
  for (const std::string& word : place.command()) command.push_back(word);
  command.push_back("--relaunch");

  const ProgramEnd end = runProgram(command);

  EXPECT_EQ(end.output, "2 -n " + place.bundle() + " 0\n");
  EXPECT_EQ(end.status, 0);
}

TEST(InstallProgram, OutlivesTheEndOfItsSession) {
  const InstallPlace place;
  const WaitingChild child;
  std::vector<std::string> command = place.command();
  command.back() = std::to_string(child.processIdentifier());
  HeldProgram program(command);
  program.waitUntilItLeadsItsSession();

  program.signal(SIGHUP);
  child.endSoon();

  EXPECT_EQ(program.status(), 0);
  EXPECT_EQ(place.tree(), place.newTree());
}

}  // namespace
}  // namespace karno::test
