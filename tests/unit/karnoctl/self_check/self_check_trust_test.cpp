#include <gtest/gtest.h>

#include <csignal>

#include "self_check_fixture.h"

namespace karno::karnoctl {
namespace {

using platform::CommandEnd;
using platform::TerminationReason;

constexpr const char* kQuarantine =
    "/bin/sh|-c|/usr/bin/xattr '-p' 'com.apple.quarantine' '/Applications/Karno.app' 2>&1";
constexpr const char* kVerification =
    "/bin/sh|-c|/usr/bin/codesign '--verify' '--deep' '--strict' '/Applications/Karno.app' 2>&1";
constexpr const char* kSignature =
    "/bin/sh|-c|/usr/bin/codesign '--display' '--verbose=2' '/Applications/Karno.app' 2>&1";
constexpr const char* kAssessment =
    "/bin/sh|-c|/usr/sbin/spctl '--assess' '--type' 'execute' '--verbose=2' '/Applications/Karno.app' 2>&1";
constexpr const char* kListing = "/bin/sh|-c|/bin/ls '-ld' '/Applications/Karno.app' 2>&1";

constexpr int kNoSuchAttribute = 1;
constexpr int kNotFoundByShell = 127;

constexpr const char* kIsFine =
    "Nothing is wrong with /Applications/Karno.app: 4 programs, 9 property lists, 8 tables of texts and 211 "
    "messages to the system were checked.\n";
constexpr const char* kInQuarantine =
    "Note: The bundle is in quarantine, since it was brought by Safari: macOS asks at its first opening, and "
    "may run it from a random place where it asks to be moved.\n";

CommandEnd ended(int status, const std::string& text) {
  return {.end = {.terminationStatus = status, .terminationReason = TerminationReason::Exit},
          .standardOutput = text};
}

// A Mac whose tools say what a test lets them say; at first, that a Developer ID has signed the bundle and
// that Gatekeeper accepts it.
class KarnoctlSelfCheckOfTrust : public test::SelfCheckedMachine {
 protected:
  KarnoctlSelfCheckOfTrust() {
    bundle_.becomeMacBundle();
    answer(kQuarantine, kNoSuchAttribute,
           "xattr: /Applications/Karno.app: No such xattr: com.apple.quarantine\n");
    answer(kVerification, 0, "");
    answer(kSignature, 0,
           "Executable=/Applications/Karno.app/Contents/MacOS/Karno\n"
           "Authority=Developer ID Application: Vantul (ABCDE12345)\n"
           "Authority=Developer ID Certification Authority\n"
           "TeamIdentifier=ABCDE12345\n");
    answer(kAssessment, 0, "/Applications/Karno.app: accepted\nsource=Notarized Developer ID\n");
  }

  void answer(const std::string& line, int status, const std::string& text) {
    machine_.commands.answers.insert_or_assign(line, ended(status, text));
  }

  void bringBySafari() { answer(kQuarantine, 0, "0083;5f5e1000;Safari;8E2D\n"); }

  const std::string kSigned =
      "Note: The bundle is signed by Developer ID Application: Vantul (ABCDE12345).\n";
};

TEST_F(KarnoctlSelfCheckOfTrust, SaysWhoseSignatureTheBundleHas) {
  EXPECT_EQ(said(), kSigned + kIsFine);

  EXPECT_EQ(status_, 0);
}

TEST_F(KarnoctlSelfCheckOfTrust, NamesASignatureThatDoesNotFit) {
  answer(kVerification, 1,
         "/Applications/Karno.app: a sealed resource is missing or invalid\n"
         "file added: /Applications/Karno.app/Contents/notes\n");

  EXPECT_EQ(said(),
            "The signature of the bundle does not fit (a sealed resource is missing or invalid): macOS may "
            "refuse to start it.\n");

  EXPECT_EQ(status_, 1);
}

TEST_F(KarnoctlSelfCheckOfTrust, GivesAComplaintAboutSomethingInsideAsItIs) {
  answer(kVerification, 1, "/Applications/Karno.app/Contents/Helpers/Karno.app: invalid signature\nmore\n");

  EXPECT_EQ(said(),
            "The signature of the bundle does not fit (/Applications/Karno.app/Contents/Helpers/Karno.app: "
            "invalid signature): macOS may refuse to start it.\n");
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesASignatureOfNobody) {
  answer(kSignature, 0, "Executable=/Applications/Karno.app\nSignature=adhoc\nTeamIdentifier=not set\n");

  EXPECT_EQ(said(),
            "Note: The bundle is signed ad hoc, by nobody: other Macs refuse it, and each new version has to "
            "be allowed anew what this one was.\n" +
                std::string(kIsFine));
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesASignatureThatIsGoodOnTheDevelopersMacAlone) {
  answer(kSignature, 0, "Authority=Apple Development: Ada (XYZ)\nAuthority=Apple Root CA\n");

  EXPECT_EQ(
      said(),
      "Note: The bundle is signed by Apple Development: Ada (XYZ), which is no Developer ID: other Macs "
      "refuse it.\n" +
          std::string(kIsFine));
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesWhatGatekeeperRejects) {
  answer(kAssessment, 3, "/Applications/Karno.app: rejected\nsource=Unnotarized Developer ID\n");

  EXPECT_EQ(said(),
            kSigned +
                "Note: Gatekeeper rejects the bundle (Unnotarized Developer ID): a Mac that downloads "
                "it does not open it.\n" +
                kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, NamesARejectedBundleInQuarantine) {
  bringBySafari();
  answer(kAssessment, 3, "/Applications/Karno.app: rejected\n");

  EXPECT_EQ(said(), "Gatekeeper rejects the bundle, which is in quarantine: macOS does not open it.\n" +
                        std::string(kInQuarantine) + kSigned);

  EXPECT_EQ(status_, 1);
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesAGatekeeperThatFails) {
  answer(kAssessment, 1, "/Applications/Karno.app: internal error in Code Signing subsystem\n");

  EXPECT_EQ(said(), kSigned +
                        "Note: /usr/sbin/spctl failed (internal error in Code Signing subsystem): what "
                        "Gatekeeper says of the bundle was not checked.\n" +
                        kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesQuarantine) {
  bringBySafari();

  EXPECT_EQ(said(), kInQuarantine + kSigned + kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesQuarantineWithoutABringer) {
  answer(kQuarantine, 0, "0083\n");

  EXPECT_EQ(
      said(),
      "Note: The bundle is in quarantine: macOS asks at its first opening, and may run it from a random "
      "place where it asks to be moved.\n" +
          kSigned + kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, NamesTranslocation) {
  const std::string place = "/private/var/folders/zz/T/AppTranslocation/4C3E/d";
  machine_.files.addDirectory(place);
  machine_.files.move("/Applications/Karno.app", place + "/Karno.app");
  machine_.files.addFile("/usr/local/bin/karnoctl", test::universal({{.processor = test::kIntel}}));
  terminal_.runtime().program = "/usr/local/bin/karnoctl";

  EXPECT_EQ(terminal_.run({"self-check", place + "/Karno.app"}), 1);

  EXPECT_TRUE(
      terminal_.out().starts_with("macOS runs the bundle from a random place that nobody can write to "
                                  "(AppTranslocation): the launcher asks to be moved, and no update can be "
                                  "installed.\n"))
      << terminal_.out();
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesABundleOfSomebodyElse) {
  machine_.files.readOnly.insert("/Applications/Karno.app");
  answer(kListing, 0, "drwxr-xr-x@ 3 root  wheel  96 Nov 22 10:00 /Applications/Karno.app\n");

  EXPECT_EQ(said(), kSigned +
                        "Note: The bundle belongs to root and is not for this user to change: an update asks "
                        "for an administrator's password.\n" +
                        kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, NotesABundleOfSomebodyWhoIsNotNamed) {
  machine_.files.readOnly.insert("/Applications/Karno.app");
  answer(kListing, kNotFoundByShell, "/bin/sh: /bin/ls: No such file or directory\n");

  EXPECT_EQ(said(), kSigned +
                        "Note: The bundle is not for this user to change: an update asks for an "
                        "administrator's password.\n" +
                        kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, NamesASystemThatIsTooOld) {
  bundle_.information.insert_or_assign("LSMinimumSystemVersion", "10.14.6");
  bundle_.writeInformation();
  machine_.systemVersion.running = {10, 14, 5};

  EXPECT_EQ(said(),
            "Contents/Info.plist wants macOS 10.14.6 or later, and this one is older: it does not start the "
            "launcher.\n" +
                kSigned);

  machine_.systemVersion.running = {10, 14, 6};
  EXPECT_EQ(said(), kSigned + kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, QuietlyDoesWithoutMissingTools) {
  for (const char* const line : {kQuarantine, kVerification, kSignature, kAssessment}) {
    answer(line, kNotFoundByShell, "/bin/sh: No such file or directory\n");
  }

  EXPECT_EQ(said(),
            "Note: There is no /usr/bin/xattr here: whether the bundle is in quarantine was not checked.\n"
            "Note: There is no /usr/bin/codesign here: the signature of the bundle was not checked.\n" +
                std::string(kIsFine));
}

TEST_F(KarnoctlSelfCheckOfTrust, QuietlyDoesWithoutGatekeeper) {
  answer(kAssessment, kNotFoundByShell, "");

  EXPECT_EQ(said(), kSigned +
                        "Note: There is no /usr/sbin/spctl here: what Gatekeeper says of the bundle was not "
                        "checked.\n" +
                        kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, TakesAToolThatIsKilledForAMissingOne) {
  machine_.commands.answers.insert_or_assign(
      kVerification, CommandEnd{.end = {.terminationStatus = SIGKILL,
                                        .terminationReason = TerminationReason::UncaughtSignal},
                                .standardOutput = ""});

  EXPECT_EQ(said(),
            "Note: There is no /usr/bin/codesign here: the signature of the bundle was not checked.\n" +
                std::string(kIsFine));
}

TEST_F(KarnoctlSelfCheckOfTrust, TakesAMissingShellForMissingTools) {
  machine_.commands.answers.insert_or_assign(kQuarantine, platform::Error::posix(ENOENT));

  EXPECT_EQ(said(),
            "Note: There is no /usr/bin/xattr here: whether the bundle is in quarantine was not checked.\n" +
                kSigned + kIsFine);
}

TEST_F(KarnoctlSelfCheckOfTrust, AsksNobodyAboutABundleWithoutASeal) {
  bundle_.remove("Contents/_CodeSignature");

  EXPECT_EQ(
      said(),
      "Contents/_CodeSignature/CodeResources is missing: the bundle as a whole is not signed, and macOS "
      "may refuse it.\n");

  EXPECT_EQ(machine_.commands.ran, std::vector<std::string>{kQuarantine});
}

// What the shell is asked with is one word whatever the path holds.
TEST_F(KarnoctlSelfCheckOfTrust, QuotesThePath) {
  const std::string place = "/Volumes/Ada's Disk";
  machine_.files.addDirectory(place);
  machine_.files.move("/Applications/Karno.app", place + "/Karno.app");
  machine_.files.addFile("/usr/local/bin/karnoctl", test::universal({{.processor = test::kIntel}}));
  terminal_.runtime().program = "/usr/local/bin/karnoctl";

  terminal_.run({"self-check", place + "/Karno.app"});

  EXPECT_EQ(machine_.commands.ran.front(),
            "/bin/sh|-c|/usr/bin/xattr '-p' 'com.apple.quarantine' '/Volumes/Ada'\\''s Disk/Karno.app' 2>&1");
}

}  // namespace
}  // namespace karno::karnoctl
