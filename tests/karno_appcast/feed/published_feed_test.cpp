#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "release_manager.h"
#include "scoped_environment.h"
#include "web_server.h"

namespace karno::appcast::test {
namespace {

namespace fs = std::filesystem;
using karno::test::ScopedEnvironment;
using karno::test::WebServer;
using ::testing::HasSubstr;

// A release and its feed on a web server, and a machine root that trusts the server.
class FeedOnAServer : public testing::Test {
 protected:
  FeedOnAServer() : server_(KARNO_WEB_SERVER, folderOfTheServer()) {
    fs::create_directories(fs::path(manager_.desk() / "machine/etc/ssl"));
    fs::copy_file(server_.authority(), manager_.desk() / "machine/etc/ssl/cert.pem");
    manager_.addRelease("Karno-2.zip", "2", "2.0");
    manager_.addFile("Karno-2.txt", "New in 2");
    manager_.run({"feed", manager_.folder(), "--private", manager_.keyFile(), "--url-prefix",
                  server_.https("/"), "--notes-link", server_.https("/notes.html")});
    server_.putPage("/appcast.xml", manager_.feed());
    server_.putPage("/Karno-2.zip", karno::test::contentOf(manager_.inFolder("Karno-2.zip")));
    server_.putPage("/notes.html", "<p>New</p>");
  }

  int check() { return manager_.run({"check", server_.https("/appcast.xml"), "--public-key", kPublicKey}); }

  ReleaseManager manager_;
  WebServer server_;
  const ScopedEnvironment root_{"KARNO_MACHINE_ROOT", manager_.desk() / "machine"};

 private:
  std::string folderOfTheServer() const {
    fs::create_directory(manager_.desk() / "server");
    return manager_.desk() / "server";
  }
};

TEST_F(FeedOnAServer, IsFetchedWithItsArchivesAndNotes) {
  EXPECT_EQ(check(), 0) << manager_.out() << manager_.err();
  EXPECT_EQ(manager_.out(), "2.0 (2)\n");
  EXPECT_THAT(server_.requests(), HasSubstr("/Karno-2.zip"));
  EXPECT_THAT(server_.requests(), HasSubstr("/notes.html"));
}

TEST_F(FeedOnAServer, IsWrongWhenItsArchiveIsCutOff) {
  server_.putPage("/Karno-2.zip", karno::test::contentOf(manager_.inFolder("Karno-2.zip")).substr(0, 100));

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("  wrong: The archive has 100 bytes instead of "));
}

TEST_F(FeedOnAServer, IsWrongWhenWhatItOffersIsMissing) {
  std::string feed = manager_.feed();
  server_.putPage("/appcast.xml", feed.replace(feed.find("/Karno-2.zip"), 12, "/nowhere.zip"));

  EXPECT_EQ(check(), 1);
  EXPECT_THAT(manager_.out(), HasSubstr("  wrong: cannot fetch " + server_.https("/nowhere.zip")));
}

TEST_F(FeedOnAServer, IsNotReadFromAServerThatTheMachineDoesNotTrust) {
  fs::remove(manager_.desk() / "machine/etc/ssl/cert.pem");

  EXPECT_EQ(check(), 1);
  EXPECT_EQ(manager_.out(), "");
  EXPECT_THAT(manager_.err(), HasSubstr("The certificate for this server is invalid."));
}

}  // namespace
}  // namespace karno::appcast::test
