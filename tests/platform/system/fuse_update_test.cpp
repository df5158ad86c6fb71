#include <gmock/gmock.h>

#include <filesystem>
#include <mutex>

#include "../support/scoped_environment.h"
#include "../support/temporary_folder.h"
#include "elements_are.h"
#include "fake_bundles.h"
#include "platform/never_destroyed.h"
#include "platform/platform.h"
#include "system/fuse_manager.h"
#include "web_server.h"

namespace karno {
namespace {

namespace fs = std::filesystem;

using karno::test::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kPath = "/repos/macfuse/macfuse/releases/latest";

// Console lines without their date and process.
class Console final : public platform::ConsoleLog {
 public:
  void log(std::string_view line) override {
    const std::scoped_lock lock(mutex_);
    lines_.emplace_back(line.substr(std::min(line.find('['), line.size())));
  }
  void clear() {
    const std::scoped_lock lock(mutex_);
    lines_.clear();
  }
  std::vector<std::string> lines() const {
    const std::scoped_lock lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

platform::Platform withBundlesAndConsole(platform::Bundles& bundles, platform::ConsoleLog& console) {
  const platform::Platform& host = platform::host();
  return {host.application,
          host.alerts,
          host.windows,
          host.workspace,
          host.dispatch,
          host.clock,
          host.tasks,
          host.processes,
          bundles,
          host.userDefaults,
          host.managedPreferences,
          host.distributedNotifications,
          host.files,
          host.text,
          console,
          host.systemVersion,
          host.updaters,
          host.shell,
          host.urlLoading,
          host.identifiers,
          host.processList,
          host.fileReading,
          host.fileManager,
          host.standardFolders,
          host.mounts,
          host.commands,
          host.appleScripts,
          host.authorisations};
}

// The log's writer uses them until the process ends.
struct Services {
  test::FakeBundles bundles;
  Console console;
  platform::Platform platform = withBundlesAndConsole(bundles, console);
};

Services& services() {
  static platform::NeverDestroyed<Services> services;
  return *services;
}

// The launcher's question for the latest macFUSE, asked over this system's network of a server of its own.
class LatestFuse : public ::testing::Test {
 protected:
  LatestFuse() {
    fs::create_directories(folder_ / "server");
    fs::create_directories(folder_ / "machine/etc/ssl");
    server_ = std::make_unique<test::WebServer>(KARNO_WEB_SERVER, folder_ / "server");
    fs::copy(server_->authority(), folder_ / "machine/etc/ssl/cert.pem");
    services().bundles.main().info.insert_or_assign("KarnoReleasesHost", server_->httpsHost());
    services().console.clear();
    platform::install(services().platform);
  }

  // What the record makes of the latest version.
  std::optional<std::string> latest(const std::string& record) {
    server_->putPage(kPath, record);
    return FuseManager::instance().retrieveLatestVersionAvailable();
  }

  std::string failure() const {
    return services().console.lines().size() == 2
               ? services().console.lines()[1]
               : std::to_string(services().console.lines().size()) + " lines";
  }

  const test::TemporaryFolder folder_;
  const test::ScopedEnvironment root_{"KARNO_MACHINE_ROOT", folder_ / "machine"};
  const test::ScopedEnvironment home_{"HOME", folder_ / "home"};
  std::unique_ptr<test::WebServer> server_;
};

TEST_F(LatestFuse, IsInTheName) {
  EXPECT_EQ(latest(R"({"name": "macFUSE 4.5.0", "tag_name": "macfuse-4.4.1"})"), "4.5.0");
  EXPECT_THAT(
      services().console.lines(),
      ElementsAre("[INFO] Fuse[UPDATE] Checking for update (" + server_->https(kPath) + ")",
                  "[INFO] Fuse[UPDATE] Latest version: name='macFUSE 4.5.0' (tag_name='macfuse-4.4.1') => "
                  "'4.5.0'"));
  EXPECT_THAT(server_->requests(), HasSubstr(std::string("GET ") + kPath));
}

TEST_F(LatestFuse, IsInTheTagWithoutAName) { EXPECT_EQ(latest(R"({"tag_name": "macfuse-4.5.0"})"), "4.5.0"); }

TEST_F(LatestFuse, IsNowhereInARecordWithoutBoth) { EXPECT_EQ(latest(R"({"id": 4.5})"), std::nullopt); }

TEST_F(LatestFuse, IsNotReadFromNumbers) {
  EXPECT_EQ(latest(R"({"name": 4.5, "tag_name": 4.6})"), std::nullopt);
}

TEST_F(LatestFuse, IsNotInGarbage) {
  EXPECT_EQ(latest("<html>4.5.0</html>"), std::nullopt);
  EXPECT_THAT(failure(),
              ::testing::StartsWith("[*** ERROR ***] Fuse[UPDATE] Failed to parse metadata. Reason: "));
}

TEST_F(LatestFuse, IsNotInAnArray) {
  EXPECT_EQ(latest(R"([{"name": "4.5.0"}])"), std::nullopt);
  EXPECT_EQ(
      failure(),
      "[*** ERROR ***] Fuse[UPDATE] Failed to parse metadata. Reason: The record is no object but array.");
}

TEST_F(LatestFuse, IsFoundBehindARedirect) {
  server_->putPage("/page", R"({"name": "4.5.0"})");

  EXPECT_EQ(latest("behave as /redirected"), "4.5.0");
}

struct Trouble {
  const char* behaviour;
  const char* reason;
};

void PrintTo(const Trouble& trouble, std::ostream* out) { *out << trouble.behaviour; }

class LatestFuseInTrouble : public LatestFuse, public ::testing::WithParamInterface<Trouble> {};

TEST_P(LatestFuseInTrouble, IsNotKnownAndTheLogSaysWhy) {
  EXPECT_EQ(latest(std::string("behave as ") + GetParam().behaviour), std::nullopt);
  EXPECT_EQ(failure(), std::string("[*** ERROR ***] Fuse[UPDATE] Failed to retrieve metadata. Reason: ") +
                           GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(Servers, LatestFuseInTrouble,
                         ::testing::Values(Trouble{"/hang-up", "The network connection was lost."},
                                           Trouble{"/hang-up-half-way", "The network connection was lost."},
                                           Trouble{"/endless", "resource exceeds maximum size"},
                                           Trouble{"/loop", "too many HTTP redirects"}));

TEST_F(LatestFuse, IsNotTakenFromAServerThatNobodyVouchesFor) {
  fs::remove(folder_ / "machine/etc/ssl/cert.pem");

  EXPECT_EQ(latest(R"({"name": "4.5.0"})"), std::nullopt);
  EXPECT_THAT(failure(), HasSubstr("The certificate for this server is invalid."));
}

TEST_F(LatestFuse, IsNotOnAMissingPage) {
  EXPECT_EQ(FuseManager::instance().retrieveLatestVersionAvailable(), std::nullopt);
  EXPECT_EQ(failure(),
            "[*** ERROR ***] Fuse[UPDATE] Failed to retrieve metadata. Reason: The file “latest” couldn’t be "
            "opened.");
}

}  // namespace
}  // namespace karno
