#include <gmock/gmock.h>

#include "elements_are.h"
#include "linux_updater_fixture.h"
#include "platform/linux/updater/feed/appcast.h"

// What the fields of a feed make of an update.
namespace karno::platform::updates {
namespace {

using karno::test::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using RequestedUpdate = LinuxUpdaterTest;

TEST_F(RequestedUpdate, ShowsTheNotesInTheUsersLanguage) {
  languages = {"pt-BR", "de-AT", "fr"};
  machine.network.bodies[kFeed] = feedOf(
      "<item><sparkle:version>1.1</sparkle:version><enclosure url=\"https://files.example.org/a.zip\"/>"
      "<description>Better</description><description xml:lang=\"fr\">Mieux</description>"
      "<description xml:lang=\"de\">&lt;b&gt;Besser&lt;/b&gt;</description></item>");

  check();

  EXPECT_EQ(offers.shown.at(0).notes, "Besser");
}

TEST_F(RequestedUpdate, ShowsTheNotesForEverybodyToAUserOfAnotherLanguage) {
  languages = {"ja"};
  machine.network.bodies[kFeed] = feedOf(
      "<item><sparkle:version>1.1</sparkle:version><enclosure url=\"https://files.example.org/a.zip\"/>"
      "<description xml:lang=\"de\">Besser</description><description>Better</description></item>");

  check();

  EXPECT_EQ(offers.shown.at(0).notes, "Better");
}

TEST_F(RequestedUpdate, OfAnArchiveOfLengthZeroIsOfUnknownLength) {
  machine.network.bodies[kFeed] = feedOf(
      "<item><sparkle:version>1.1</sparkle:version>"
      "<enclosure url=\"https://files.example.org/a.zip\" length=\"0\"/></item>");

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_EQ(downloads.requests.at(0).bytesMax, 4294967296U);
  EXPECT_EQ(installer.requests.at(0).length, std::nullopt);
}

TEST_F(RequestedUpdate, OffersPlainNotesAsTheyAre) {
  machine.network.bodies[kFeed] = feedOf(
      "<item><sparkle:version>1.1</sparkle:version><enclosure url=\"https://files.example.org/a.zip\"/>"
      "<description sparkle:format=\"plain-text\">1 &lt;2 &amp;amp; 3&gt; 2</description></item>");

  check();

  ASSERT_THAT(offers.shown, SizeIs(1));
  EXPECT_EQ(offers.shown[0].notes, "1 <2 &amp; 3> 2");
}

// A window with all of them would hold up the main thread for seconds.
TEST_F(RequestedUpdate, OffersTheBeginningOfNotesWithoutEnd) {
  const std::string endless(1'000'000, 'x');
  machine.network.bodies[kFeed] = feedOf(
      "<item><sparkle:version>1.1</sparkle:version><enclosure url=\"https://files.example.org/a.zip\"/>"
      "<description>" +
      endless + "</description></item>");

  check();

  ASSERT_THAT(offers.shown, SizeIs(1));
  EXPECT_THAT(offers.shown[0].notes, SizeIs(100'000 + std::string("\n…").size()));
}

TEST_F(RequestedUpdate, ThatIsCriticalCannotBeSkipped) {
  machine.network.bodies[kFeed] = feedOf(item("1.1", "<sparkle:criticalUpdate/>"));

  check();

  EXPECT_EQ(offers.shown.at(0).skip, "");
}

TEST_F(RequestedUpdate, ThatIsOnlyToBeReadOpensThePageAndInstallsNothing) {
  machine.network.bodies[kFeed] =
      feedOf("<item><sparkle:version>2</sparkle:version><link>https://a/news</link></item>");

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_EQ(offers.shown.at(0).install, "LEARN_MORE");
  EXPECT_EQ(machine.workspace.opened.at(0).url, "https://a/news");
  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "found (null) 2", "choice 2"));
  EXPECT_FALSE(updater.sessionInProgress());
}

TEST_F(RequestedUpdate, ThatTheSystemCannotRunIsNoneAndTheUserHearsWhy) {
  machine.network.bodies[kFeed] =
      feedOf(item("1.1", "<sparkle:minimumSystemVersion>15</sparkle:minimumSystemVersion>"));
  check();
  machine.network.bodies[kFeed] =
      feedOf(item("1.1", "<sparkle:maximumSystemVersion>13</sparkle:maximumSystemVersion>"));
  check();

  EXPECT_THAT(delegate.calls, ElementsAre("loaded", "nothing 1001 SYSTEM_TOO_OLD", "aborted 1001", "loaded",
                                          "nothing 1001 SYSTEM_TOO_NEW", "aborted 1001"));
}

TEST_F(RequestedUpdate, OfAFeedThatIsNoXMLIsAborted) {
  machine.network.bodies[kFeed] = "<html>";

  check();

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1000"));
}

TEST_F(RequestedUpdate, OfAFeedThatIsTooLargeIsAborted) {
  std::string tooMuch;
  for (std::size_t count = 0; count < kFeedElementsMax; ++count) tooMuch += "<a/>";
  machine.network.bodies[kFeed] = feedOf(item("1.1") + tooMuch);

  check();

  EXPECT_THAT(delegate.calls, ElementsAre("aborted 1000"));
  EXPECT_THAT(machine.alerts.shown().at(0).informativeText,
              HasSubstr("it has too many elements or attributes"));
}

struct Address {
  const char* url;
  bool isRefused;
};

class AddressOfAFeed : public LinuxUpdaterTest, public ::testing::WithParamInterface<Address> {};

TEST_P(AddressOfAFeed, IsHttps) {
  delegate.feed = GetParam().url;
  machine.network.bodies[GetParam().url] = feedOf("");

  check();

  EXPECT_EQ(machine.network.requests.empty(), GetParam().isRefused);
  EXPECT_EQ(delegate.calls.at(0).starts_with("aborted "), GetParam().isRefused);
}

INSTANTIATE_TEST_SUITE_P(Addresses, AddressOfAFeed,
                         ::testing::Values(Address{"https://a.example.org/feed", false},
                                           Address{"HTTPS://a.example.org/feed", false},
                                           Address{"http://a.example.org/feed", true},
                                           Address{"http://127.0.0.1:80/feed", true},
                                           Address{"http://localhost/feed", true},
                                           Address{"ftp://a/feed", true}, Address{"file:///feed", true},
                                           Address{"feed.xml", true}, Address{"", true}));

TEST_F(RequestedUpdate, IsNotDownloadedOverPlainHttp) {
  machine.network.bodies[kFeed] =
      feedOf("<item><sparkle:version>2</sparkle:version><enclosure url=\"http://a.example.org/b\"/></item>");

  check();
  answer(kUserUpdateChoiceInstall);

  EXPECT_THAT(downloads.requests, IsEmpty());
  EXPECT_EQ(delegate.calls.back(), "aborted 3");
}

}  // namespace
}  // namespace karno::platform::updates
