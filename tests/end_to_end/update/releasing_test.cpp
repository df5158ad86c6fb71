#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <fstream>
#include <sstream>

#include "places.h"
#include "platform/posix/scoped_descriptor.h"
#include "release_document.h"
#include "update_machine.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;

constexpr std::chrono::seconds kReleaseLimit{60};
constexpr const char* kThisRelease = "What this release is";
constexpr const char* kTests = "The tests";
constexpr const char* kArchive = "The archive for Linux";
constexpr const char* kNotes = "The notes";
constexpr const char* kUpload = "The upload";
constexpr const char* kCheck = "What a launcher makes of it";

std::string freePort() {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  socklen_t size = sizeof(address);
  const platform::ScopedDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), size);
  ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
  return std::to_string(ntohs(address.sin_port));
}

// Who publishes releases from a folder of their own, by the document, and a machine that has the first one.
// In the place of a build of many minutes comes the present one's bundle, and the web server is on this
// computer.
class Releasing : public ::testing::Test {
 protected:
  Releasing()
      : place_(machine_->root().parent_path() / "releasing"),
        document_(releasingDocument(), place_ / "sources",
                  {{"HOME", place_},
                   {"PATH", standIns() + ":/usr/local/bin:/usr/bin:/bin"},
                   {"EDITOR", "editor"},
                   {"XZ_OPT", "-0"},
                   {"MACHINE", place_ / "trial machine"},
                   {"KARNO_MACHINE_ROOT", machine_->root()},
                   {"STAGED_BUNDLE", builtTools().bundle},
                   {"MAKE_RELEASE", makeReleaseProgram()},
                   {"PAGES", machine_.pages()}}) {
    document_.set("SYSTEM", "linux");
    document_.set("ARCHIVE", "Karno-$VERSION.tar.xz");
    document_.set("FEED_HOST", machine_.server().httpsHost());
    document_.set("LAUNCHER", machine_->bundle());
    const std::string port = freePort();
    document_.replace("-accept 8443", "-accept " + port);
    document_.replace("localhost:8443", "localhost:" + port);
    document_.replace("https://localhost:8443/my.xml", deployment());
    document_.replace("~/KARNOUPGRADE.debug", marker());
  }

  fs::path marker() const { return machine_->home() / "KARNOUPGRADE.debug"; }
  std::string deployment() const { return machine_.server().https("/updates/macos/appcast.eddsa.xml"); }

  // What the document's commands find on the way, and what the build and the web server are.
  std::string standIns() const {
    makeProgram("bin/cmake", R"(case "$*" in
  "--preset release "*) shift 2 && printf '%s\n' "$@" >definitions ;;
  "--build --preset release --target bundle karno-appcast")
    mkdir -p build/release && xargs python3 -B "$MAKE_RELEASE" build "$STAGED_BUNDLE" build/release <definitions ;;
  *) exit 64 ;;
esac
)");
    makeProgram("bin/rsync", R"(target=$PAGES/${2##*:/srv/}
mkdir -p "$target" && cp "$1" "$target"
)");
    makeProgram("bin/editor", "echo Better >\"$1\"\n");
    makeProgram("sources/scripts/test", "");
    fs::create_symlink(karnoAppcast(), place_ / "bin/karno-appcast");
    return place_ / "bin";
  }

  void makeProgram(const fs::path& name, const std::string& commands) const {
    fs::create_directories((place_ / name).parent_path());
    std::ofstream(place_ / name) << "#!/bin/bash\nset -e\n" << commands;
    fs::permissions(place_ / name, fs::perms::owner_all);
  }

  void begin(const std::string& version, const std::string& build, const std::string& key) {
    document_.set("VERSION", version);
    document_.set("BUILD", build);
    document_.set("KEY", key);
    document_.type(kThisRelease);
  }

  // A feed on one's own computer, which tells what somebody hears who asks for it.
  std::string tryFeed() {
    const fs::path output = place_ / "server.txt";
    document_.type("A certificate for localhost, and a feed");
    const auto server = document_.typeElsewhere("The server, in another shell", output);
    machine_->waitUntil(
        [&] {
          std::ostringstream text;
          text << std::ifstream(output).rdbuf();
          return text.str().find("ACCEPT") != std::string::npos;
        },
        kReleaseLimit);
    return document_.type("What it serves");
  }

  // The version that is installed after taking what is offered.
  std::string update(const std::string& wanted) {
    machine_.start();
    const auto offer = machine_.askForOffer();
    if (!offer) return "no offer: " + machine_->consoleText();
    machine_.answer(*offer, "Return");
    if (machine_->waitForEnd(kReleaseLimit) != 0) return "no end: " + machine_->consoleText();
    machine_->waitUntil([&] { return machine_.installedVersion() == wanted && machine_.remains().empty(); },
                        kReleaseLimit);
    return machine_.installedVersion();
  }

  UpdateMachine machine_;
  const fs::path place_;
  ReleaseDocument document_;
};

// The launcher sleeps through the release that changes the key, and is led over it.
TEST_F(Releasing, ByTheDocumentTakesALauncherOverAChangeOfKeys) {
  document_.type("The first key");
  begin("1.0", "1", "~/keys/karno-update.key");
  document_.type(kArchive);
  document_.type(kNotes);
  machine_.install(place_ / "sources/build/release/Karno.app");
  const std::string trial = tryFeed();
  document_.type("The feed");
  document_.type(kUpload);

  begin("2.0", "2", "~/keys/karno-update.key");
  document_.type("The second key, for the bundle that brings it");
  document_.type(kTests);
  document_.type(kArchive);
  document_.type(kNotes);
  document_.type("The last feed of the first key");
  document_.type(kUpload);
  const std::string second = document_.type(kCheck);

  begin("3.0", "3", "~/keys/karno-update-2.key");
  document_.type(kTests);
  document_.type(kArchive);
  document_.type(kNotes);
  document_.type("The feed");
  document_.type(kUpload);
  const std::string third = document_.type(kCheck);

  EXPECT_EQ(trial, "1.0 (1)\n");
  EXPECT_EQ(second, "2.0 (2): offered\n1.0 (1): not offered, it is what is installed\n");
  EXPECT_EQ(third,
            "3.0 (3): not offered, it needs version 2 to be installed first\n2.0 (2): offered\n"
            "1.0 (1): not offered, it is what is installed\n");
  EXPECT_EQ(update("2"), "2");
  document_.type("The feed that one machine is to read");
  EXPECT_EQ(update("3"), "3");
  EXPECT_TRUE(machine_.isBundleWhole());
  EXPECT_THAT(document_.untyped(), IsEmpty());
}

}  // namespace
}  // namespace karno::test
