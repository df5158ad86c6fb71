#include "platform/application.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "screen.h"

namespace karno::test {
namespace {

TEST(CocoaApplicationOnScreen, TerminateTellsTheDelegateAndExitsWithZero) {
  const CommandResult result = onScreen("application/terminate");

  EXPECT_EQ(result.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaApplicationOnScreen, ABlockOfTheMainQueueCanTerminateIt) {
  const CommandResult result = onScreen("application/terminate-later");

  EXPECT_EQ(result.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

// The stand-in for AppKit refuses while a window is modal.
TEST(CocoaApplicationOnScreen, TerminatesOnceAnAlertOfSomebodyElseHasBeenAnswered) {
  EXPECT_EQ(onScreen("application/terminate-under-alert").output,
            "did finish launching\nasked to terminate\nanswered\nwill terminate\n");
}

TEST(CocoaApplicationOnScreen, ATerminationSignalEndsItInOrder) {
  const CommandResult result = onScreen("application/signal");

  EXPECT_EQ(result.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaApplicationOnScreen, ATerminationSignalThatHitsAnotherThreadEndsItInOrder) {
  const CommandResult result = onScreen("application/signal-to-thread");

  EXPECT_EQ(result.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

// The shell that starts it has it ignore interrupts.
TEST(CocoaApplicationOnScreen, AnInterruptOrAHangUpEndsItInOrder) {
  const CommandResult interrupted = runCommand({KARNO_WITH_DISPLAY, "env", "--default-signal=INT",
                                                KARNO_COCOA_SCENARIOS, "application/signal-interrupt"},
                                               std::chrono::seconds(60));
  const CommandResult hungUp = onScreen("application/signal-hang-up");

  EXPECT_EQ(interrupted.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(interrupted.status, 0);
  EXPECT_EQ(hungUp.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(hungUp.status, 0);
}

// Between the application object and its run.
TEST(CocoaApplicationOnScreen, ATerminationSignalDuringTheStartKeepsItFromBeginningAnything) {
  const CommandResult result = onScreen("application/signal-at-start");

  EXPECT_EQ(result.output, "will terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaApplicationOnScreen, ASignalThatItWasStartedToIgnoreStaysIgnored) {
  const CommandResult result = runCommand(
      {KARNO_WITH_DISPLAY, "env", "--ignore-signal=INT", KARNO_COCOA_SCENARIOS, "application/signal-ignored"},
      std::chrono::seconds(60));

  EXPECT_EQ(result.output, "did finish launching\nstill here\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaApplicationOnScreen, AMainThreadThatIsStuckDoesNotOutliveTheSignal) {
  const CommandResult result = onScreen("application/signal-while-stuck");

  EXPECT_EQ(result.output, "did finish launching\n");
  EXPECT_EQ(result.status, 128 + SIGTERM);
}

// Its status is that of the second signal, not of the first, whose time would have been up later.
TEST(CocoaApplicationOnScreen, ASecondSignalEndsItAtOnce) {
  const CommandResult result = onScreen("application/signal-twice");

  EXPECT_EQ(result.output, "did finish launching\n");
  EXPECT_EQ(result.status, 128 + SIGHUP);
}

TEST(CocoaApplicationOnScreen, ADelegateThatThrowsIsLoggedAndTheApplicationGoesOn) {
  const CommandResult result = onScreen("application/throw");

  EXPECT_EQ(result.output,
            "did finish launching\napplicationDidFinishLaunching:: cannot launch\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaApplicationOnScreen, ActivatingItIsHarmless) {
  const CommandResult result = onScreen("application/activate");

  EXPECT_EQ(result.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaApplicationOnScreen, HasMenusForTheKeysThatAUserKnowsAndShowsNoneHere) {
  EXPECT_EQ(onScreen("application/menu").output,
            "did finish launching\n"
            "Karno (MainMenu)\n"
            "  About Karno (MainMenu), orderFrontStandardAboutPanel:, \n"
            "  Hide Karno (MainMenu), hide:, h\n"
            "  Quit Karno (MainMenu), terminate:, q\n"
            "Edit (MainMenu)\n"
            "  Copy (MainMenu), copy:, c\n"
            "  Select All (MainMenu), selectAll:, a\n"
            "Window (MainMenu)\n"
            "  Close (MainMenu), performClose:, w\n"
            "  Minimize (MainMenu), performMiniaturize:, m\n"
            "\n"
            "0 windows to see\n"
            "will terminate\n");
}

// GNUstep would take an argument for a document and say in an alert that it cannot open it.
TEST(CocoaApplicationOnScreen, ArgumentsAreNotTakenForDocuments) {
  const CommandResult result = runCommand(
      {KARNO_WITH_DISPLAY, KARNO_COCOA_SCENARIOS, "application/terminate", "/etc/hostname", "-NSHost", "x"},
      std::chrono::seconds(60));

  EXPECT_EQ(result.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

// GNUstep would end the process before there is anybody to tell.
TEST(CocoaApplicationOnScreen, AVariableAndAnArgumentNeedNotBeUTF8) {
  const CommandResult result = runCommand({KARNO_WITH_DISPLAY, "env", "KARNO_ODD=\xFF",
                                           "\xFF=", KARNO_COCOA_SCENARIOS, "application/terminate", "\xFF"},
                                          std::chrono::seconds(60));

  EXPECT_EQ(result.output, "did finish launching\nwill terminate\n");
  EXPECT_EQ(result.status, 0);
}

TEST(CocoaApplicationOnScreen, TheMainThreadSleepsWhileNothingHappens) {
  EXPECT_EQ(onScreen("application/idle").output,
            "did finish launching\nwoken 0 times in 5 s\nwill terminate\n");
}

TEST(CocoaApplicationOnScreen, KnowsItsMainThread) {
  EXPECT_EQ(
      onScreen("application/threads").output,
      "did finish launching\nmain thread: true\nother thread: false\nmain queue: true\nwill terminate\n");
}

// GNUstep keeps its sockets in the folder named by TEMP; its daemons would stay behind there.
TEST(CocoaApplicationOnScreen, StartsNoDaemonsAndLeavesNothingBehind) {
  const std::string command = std::string(KARNO_COCOA_SCENARIOS) + " application/terminate; ls -A \"$TEMP\"";

  EXPECT_EQ(runCommand({KARNO_WITH_DISPLAY, "bash", "-c", command}, std::chrono::seconds(60)).output,
            "did finish launching\nwill terminate\n");
}

TEST(CocoaApplication, WithoutADisplayItEndsWithAnErrorStatus) {
  const CommandResult result = runCommand(
      {"env", "-u", "DISPLAY", KARNO_COCOA_SCENARIOS, "application/terminate"}, std::chrono::seconds(60));

  EXPECT_EQ(result.output, "application: there is no display (DISPLAY is not set)\n");
  EXPECT_EQ(result.status, 1);
}

TEST(CocoaApplication, WithADisplayThatIsNotThereItEndsWithAnErrorStatus) {
  const CommandResult result = runCommand(
      {"env", "DISPLAY=:65000", KARNO_COCOA_SCENARIOS, "application/terminate"}, std::chrono::seconds(60));

  EXPECT_THAT(result.output,
              testing::EndsWith("application: NSWindowServerCommunicationException: Unable to connect to X "
                                "Server `:65000'\n"));
  EXPECT_EQ(result.status, 1);
}

}  // namespace
}  // namespace karno::test
