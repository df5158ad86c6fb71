#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "expected_logs.h"
#include "places.h"
#include "small_disk.h"
#include "update_machine.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;

constexpr std::chrono::seconds kUpdateLimit{60};

Messages beginning(const UpdateMachine& machine) {
  return {kStarted, "INFO Sparkle[CHECK] Checking for updates (" + machine.feed() + ")"};
}

Messages untilFound(const UpdateMachine& machine) {
  return joined({beginning(machine),
                 {"INFO Sparkle[UPDATE] Downloaded appcast (" + machine.feed() + ")",
                  "INFO Sparkle[UPDATE] Found: Karno 1.1 (1.1)"}});
}

Messages untilDownload(const UpdateMachine& machine) {
  return joined({untilFound(machine),
                 {"INFO Sparkle[UPDATE] User decided to install update",
                  "INFO Sparkle[UPDATE] Downloading Karno 1.1 (1.1) - " + machine.download()}});
}

Messages untilExtraction(const UpdateMachine& machine) {
  return joined({untilDownload(machine),
                 {"INFO Sparkle[UPDATE] Downloaded update", "INFO Sparkle[UPDATE] Extracting update"}});
}

Messages untilTheEnd(const UpdateMachine& machine) {
  return joined(
      {untilExtraction(machine),
       {"INFO Sparkle[UPDATE] Extracted update", "INFO Sparkle[UPDATE] About to install: Karno 1.1 (1.1)",
        "INFO Sparkle[UPDATE] Relaunching app", "INFO Sparkle[INSTALL] Creating 'updated' touchfile",
        "INFO AppDelegate[TERMINATE] Reason: Update complete"}});
}

std::string aborted(const std::string& codeAndText) {
  return "WARN Sparkle[ABORT] Update Aborted (Error Domain=SUSparkleErrorDomain Code=" + codeAndText;
}

class Update : public ::testing::Test {
 protected:
  // Leads to the end of the launcher with version 1.1 in the feed.
  void installUpdate() {
    machine_.offer("1.1");
    machine_.start();
    const auto offer = machine_.askForOffer();
    ASSERT_TRUE(offer) << machine_->consoleText();
    machine_.answer(*offer, "Return");
    ASSERT_EQ(machine_->waitForEnd(kUpdateLimit), 0) << machine_->consoleText();
  }

  // Leads to the alert that tells the failure, and quits.
  void installInVain(const std::vector<std::string>& options = {}) {
    machine_.start(options);
    const auto offer = machine_.askForOffer();
    ASSERT_TRUE(offer) << machine_->consoleText();
    machine_.answer(*offer, "Return");
    const auto alert = findWindow(*machine_, kLauncherTitle);
    ASSERT_TRUE(alert) << machine_->consoleText();
    pressKey(*machine_, *alert, "Return");
    quit();
  }

  bool isReplaced() {
    return machine_->waitUntil(
        [this] { return machine_.installedVersion() == "1.1" && machine_.remains().empty(); }, kUpdateLimit);
  }

  void quit() {
    machine_->in({"karnoctl", "post", "user-selected-quit"});
    EXPECT_EQ(machine_->waitForEnd(kUpdateLimit), 0);
  }

  bool waitForLine(const std::string& words) {
    return machine_->waitUntil(
        [&] {
          for (const std::string& line : machine_.updateLines()) {
            if (line.find(words) != std::string::npos) return true;
          }
          return false;
        },
        kUpdateLimit);
  }

  UpdateMachine machine_;
};

TEST_F(Update, ReplacesTheBundleAfterTheLauncherHasStoppedTheChildAndEnded) {
  installUpdate();

  EXPECT_THAT(machine_.updateLines(), ElementsAreArray(untilTheEnd(machine_)));
  EXPECT_THAT(
      machine_->log(),
      Contains(MatchesRegex(R"(WARN ProcessUtils\[TERMINATE\] Process [0-9]+ terminated successfully)")));
  EXPECT_THAT(machine_->log(),
              Contains("WARN Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated"));
  EXPECT_TRUE(fs::exists(machine_.touchFile()));
  EXPECT_TRUE(isReplaced()) << machine_->consoleText();
  EXPECT_EQ(machine_.installedVersion(), "1.1");
  EXPECT_THAT(machine_.remains(), IsEmpty());
  EXPECT_TRUE(machine_.isBundleWhole());
  EXPECT_THAT(machine_->processesOf(machine_->bundle() / "Contents/MacOS/Karno"), IsEmpty());
}

TEST_F(Update, LetsTheNextStartLookAtMacFUSEOnceAndForgetTheTouchFile) {
  installUpdate();
  ASSERT_TRUE(isReplaced());

  machine_->startWithScript("");
  ASSERT_TRUE(machine_->waitForMessage("INFO Sparkle[START] Checking Fuse following a Karno update"));
  ASSERT_TRUE(machine_->waitUntil([this] { return !fs::exists(machine_.touchFile()); }, kUpdateLimit));
  quit();
  machine_->startWithScript("");
  ASSERT_TRUE(machine_->waitForMessage(kStarted));
  quit();

  const auto logs = machine_->logsByProcess();
  ASSERT_EQ(logs.size(), 3U);
  EXPECT_THAT(logs[1], Contains("STARTUP Karno Version: 1.1"));
  EXPECT_THAT(logs[1],
              Contains("INFO Fuse[START] Not checking for a Fuse update - as we use a FileProvider"));
  EXPECT_THAT(logs[2], Not(Contains("INFO Sparkle[START] Checking Fuse following a Karno update")));
}

TEST_F(Update, ThatIsNotThereIsToldInAnAlertAndTheClientRunsOn) {
  machine_.offer("0.9");
  machine_.start();

  machine_->in({"karnoctl", "post", "check-for-updates"});
  const auto alert = findWindow(*machine_, kLauncherTitle);
  ASSERT_TRUE(alert) << machine_->consoleText();
  pressKey(*machine_, *alert, "Return");
  quit();

  EXPECT_THAT(machine_->log(),
              Contains("INFO Sparkle[UPDATE] Checking Fuse for updates following automated update check"));
  EXPECT_THAT(machine_.updateLines(), Contains(HasSubstr("Sparkle[UPDATE] No update found. Reason: Error "
                                                         "Domain=SUSparkleErrorDomain Code=1001 ")));
}

TEST_F(Update, ThatIsPutOffIsOfferedAgain) {
  machine_.offer("1.1");
  machine_.start();
  const auto offer = machine_.askForOffer();
  ASSERT_TRUE(offer) << machine_->consoleText();
  machine_.answer(*offer, "Escape");
  ASSERT_TRUE(waitForLine("User decided to dismiss update"));

  const auto again = machine_.askForOffer();
  ASSERT_TRUE(again) << machine_->consoleText();
  machine_.answer(*again, "Escape");
  quit();

  EXPECT_EQ(machine_.installedVersion(), "1");
  EXPECT_THAT(machine_.remains(), IsEmpty());
}

TEST_F(Update, ThatIsSkippedIsKeptInTheUserDefaults) {
  machine_.offer("1.1");
  machine_.start();
  const auto offer = machine_.askForOffer();
  ASSERT_TRUE(offer) << machine_->consoleText();

  closeAt(*machine_, *offer, 70, offer->height - 34);
  ASSERT_TRUE(waitForLine("User decided to skip update")) << machine_->consoleText();
  quit();

  std::ifstream preferences(machine_->home() / "Library/Preferences/it.vantul.KarnoWrapper.plist");
  const std::string text((std::istreambuf_iterator<char>(preferences)), {});
  EXPECT_THAT(text, HasSubstr("<key>SUSkippedVersion</key>"));
  EXPECT_THAT(text, HasSubstr("<key>SULastCheckTime</key>"));
}

TEST_F(Update, AskedForTwiceIsWarnedOfAndStaysOne) {
  machine_.offer("1.1");
  machine_.start();
  const auto offer = machine_.askForOffer();
  ASSERT_TRUE(offer) << machine_->consoleText();

  machine_->in({"karnoctl", "post", "check-for-updates"});

  EXPECT_TRUE(waitForLine("WARN Sparkle[CHECK] Ignoring check for updates when already in progress"));
  machine_.answer(*offer, "Escape");
  quit();
}

TEST_F(Update, TakesTheEndOfACrashingClientForAPartOfIt) {
  machine_.offer("1.1");
  machine_.start();
  const auto offer = machine_.askForOffer();
  ASSERT_TRUE(offer) << machine_->consoleText();

  for (const int client : machine_->processesOf(machine_->helper() / "Contents/MacOS/Karno"))
    machine_->in({"sh", "-c", "kill -SEGV " + std::to_string(client)});
  ASSERT_TRUE(machine_->waitForMessage(
      "WARN Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated"));
  machine_.answer(*offer, "Return");

  EXPECT_EQ(machine_->waitForEnd(kUpdateLimit), 0) << machine_->consoleText();
  EXPECT_TRUE(isReplaced()) << machine_->consoleText();
}

TEST_F(Update, ThatFailedWhenTheLauncherHadEndedIsToldAtTheNextStartOnce) {
  const fs::path verdict =
      machine_.applications() / (".karno-update-verdict-" + machine_->bundle().filename().string());
  std::ofstream(verdict) << "version 1.1\nfailed The process 12 did not end.\n";

  machine_.start();
  const auto alert = findWindow(*machine_, kLauncherTitle);
  ASSERT_TRUE(alert) << machine_->consoleText();
  pressKey(*machine_, *alert, "Return");
  quit();

  EXPECT_THAT(machine_.updateLines(), Contains(HasSubstr(aborted("4005 \"The process 12 did not end.\""))));
  EXPECT_THAT(machine_.remains(), IsEmpty());
}

struct BadRelease {
  const char* flaw;
  const char* told;
};

class FlawedUpdate : public Update, public ::testing::WithParamInterface<BadRelease> {};

TEST_P(FlawedUpdate, IsToldAndLeavesEverythingAsItWas) {
  machine_.offer("1.1", GetParam().flaw);
  installInVain();

  EXPECT_THAT(machine_.updateLines(), Contains(HasSubstr(aborted(GetParam().told))))
      << machine_->consoleText();
  EXPECT_EQ(machine_.installedVersion(), "1");
  EXPECT_TRUE(machine_.isBundleWhole());
  EXPECT_THAT(machine_.remains(), IsEmpty());
  EXPECT_FALSE(fs::exists(machine_.touchFile()));
  EXPECT_FALSE(fs::exists(machine_->root() / "escaped"));
  EXPECT_FALSE(fs::exists(machine_.applications() / "escaped"));
}

INSTANTIATE_TEST_SUITE_P(Flaws, FlawedUpdate,
                         ::testing::Values(BadRelease{"changed", "3001 "}, BadRelease{"truncated", "2001 "},
                                           BadRelease{"truncated-before-signing", "3000 "},
                                           BadRelease{"hostile", "3000 "}),
                         [](const auto& flaw) {
                           std::string name = flaw.param.flaw;
                           std::erase(name, '-');
                           return name;
                         });

class UpdateOnAFullDisk : public Update {
 protected:
  UpdateOnAFullDisk() { machine_.offer("1.1"); }

  void expectToldAndAsItWas(const std::string& code) {
    EXPECT_THAT(machine_.updateLines(),
                Contains(AllOf(HasSubstr(aborted(code)), HasSubstr("No space left on device"))))
        << machine_->consoleText();
    EXPECT_EQ(machine_.installedVersion(), "1");
    EXPECT_TRUE(machine_.isBundleWhole());
    EXPECT_THAT(machine_.remains(), IsEmpty());
  }
};

TEST_F(UpdateOnAFullDisk, IsToldWhenTheDownloadDoesNotFit) {
  const SmallDisk disk(machine_.applications(), machine_.downloadBytes() / 2);
  if (!disk.hindrance().empty()) GTEST_SKIP() << disk.hindrance();

  installInVain();

  expectToldAndAsItWas("2001 ");
}

TEST_F(UpdateOnAFullDisk, IsToldWhenTheNewBundleDoesNotFit) {
  const SmallDisk disk(machine_.applications(), machine_.downloadBytes() * 3 / 2);
  if (!disk.hindrance().empty()) GTEST_SKIP() << disk.hindrance();

  installInVain();

  expectToldAndAsItWas("3000 ");
}

// The same where no disk can be mounted.
TEST_F(UpdateOnAFullDisk, IsToldWhenTheDiskOnlySaysSo) {
  installInVain({"--env", "LD_PRELOAD=" + faultyDisk().string(), "--env", "KARNO_TEST_DISK=full"});

  expectToldAndAsItWas("3000 ");
}

TEST_F(Update, OfAFeedThatIsNoneIsToldInAnAlert) {
  machine_.offer("1.1", "no-feed");
  machine_.start();

  machine_->in({"karnoctl", "post", "check-for-updates"});
  const auto alert = findWindow(*machine_, kLauncherTitle);
  ASSERT_TRUE(alert) << machine_->consoleText();
  pressKey(*machine_, *alert, "Return");
  quit();

  EXPECT_THAT(machine_.updateLines(), Contains(HasSubstr(aborted("1000 "))));
}

TEST_F(Update, IsRefusedBeforeTheDownloadWhereNoBundleCanBeExchanged) {
  machine_.offer("1.1");

  installInVain({"--env", "LD_PRELOAD=" + faultyDisk().string(), "--env", "KARNO_TEST_DISK=simple"});

  EXPECT_THAT(machine_.updateLines(),
              Contains(AllOf(HasSubstr(aborted("4005 ")), HasSubstr("cannot exchange two folders"))));
  EXPECT_THAT(machine_.updateLines(), Not(Contains(HasSubstr("Sparkle[UPDATE] Downloading"))));
  EXPECT_THAT(machine_.remains(), IsEmpty());
}

class UpdateThatDrips : public Update {
 protected:
  // Leads into the middle of a download that takes its time.
  void beginDownload() {
    machine_.offer("1.1");
    machine_.server().putPage("/Karno.tar", "behave as /drip");
    machine_.start();
    offer_ = machine_.askForOffer();
    ASSERT_TRUE(offer_) << machine_->consoleText();
    machine_.answer(*offer_, "Return");
    ASSERT_TRUE(waitForLine("Sparkle[UPDATE] Downloading"));
    ASSERT_TRUE(machine_->waitUntil([this] { return !machine_.remains().empty(); }, kUpdateLimit));
  }

  std::optional<WindowOnScreen> offer_;
};

TEST_F(UpdateThatDrips, IsTakenAwayWhenTheUserQuits) {
  ASSERT_NO_FATAL_FAILURE(beginDownload());

  quit();

  EXPECT_THAT(machine_.remains(), IsEmpty());
}

TEST_F(UpdateThatDrips, IsTakenAwayByTheNextStartWhenTheLauncherWasKilled) {
  ASSERT_NO_FATAL_FAILURE(beginDownload());
  for (const int launcher : machine_->processesOf(machine_->bundle() / "Contents/MacOS/Karno"))
    machine_->in({"sh", "-c", "kill -KILL " + std::to_string(launcher)});
  machine_->waitForEnd(kUpdateLimit);
  ASSERT_FALSE(machine_.remains().empty());

  machine_->startWithScript("");

  EXPECT_TRUE(machine_->waitUntil([this] { return machine_.remains().empty(); }, kUpdateLimit));
  quit();
}

TEST_F(UpdateThatDrips, LeavesNothingBehindWhenItIsCancelled) {
  ASSERT_NO_FATAL_FAILURE(beginDownload());
  const auto progress = findNextWindow(*machine_, "Software Update", *offer_);
  ASSERT_TRUE(progress) << machine_->consoleText();

  pressKey(*machine_, *progress, "Escape");

  EXPECT_TRUE(waitForLine("WARN Sparkle[UPDATE] User cancelled download")) << machine_->consoleText();
  quit();
  EXPECT_THAT(machine_.updateLines(), Not(Contains(HasSubstr("Sparkle[ABORT]"))));
  EXPECT_THAT(machine_.remains(), IsEmpty());
}

TEST_F(Update, SurvivesTheLaunchersSuddenEndAtAnyMomentOfTheSwap) {
  machine_.offer("1.1");
  machine_.start();
  const auto offer = machine_.askForOffer();
  ASSERT_TRUE(offer) << machine_->consoleText();
  machine_.answer(*offer, "Return");
  ASSERT_TRUE(waitForLine("Sparkle[UPDATE] Relaunching app"));

  for (const int launcher : machine_->processesOf(machine_->bundle() / "Contents/MacOS/Karno"))
    machine_->in({"sh", "-c", "kill -KILL " + std::to_string(launcher)});
  machine_->waitForEnd(kUpdateLimit);

  const auto isOldOrNew = [this] {
    return machine_.installedVersion() == "1" || machine_.installedVersion() == "1.1";
  };
  EXPECT_TRUE(isOldOrNew());
  EXPECT_TRUE(machine_.isBundleWhole());
}

class ManagedUpdate : public ::testing::TestWithParam<bool> {};

TEST_P(ManagedUpdate, IsLookedForByItselfWhenTheAdministratorSaysSo) {
  UpdateMachine machine({"--admin", std::string("UPDATES_ENABLED=") + (GetParam() ? "YES" : "NO")});
  machine.offer("1.1");

  machine.start();
  const bool isOffered =
      findWindow(*machine, "Software Update", std::chrono::seconds(GetParam() ? 30 : 3)).has_value();
  machine->in({"karnoctl", "post", "user-selected-quit"});
  EXPECT_EQ(machine->waitForEnd(kUpdateLimit), 0);

  EXPECT_EQ(isOffered, GetParam());
  EXPECT_THAT(machine.updateLines(), Contains(GetParam() ? "INFO Sparkle[CONFIG] Updates enabled by admin"
                                                         : "INFO Sparkle[CONFIG] Updates disabled by admin"));
}

INSTANTIATE_TEST_SUITE_P(OnAndOff, ManagedUpdate, ::testing::Bool(),
                         [](const auto& on) { return on.param ? "On" : "Off"; });

}  // namespace
}  // namespace karno::test
