#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "elements_are.h"
#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using karno::test::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Feed, TakesANewTitleOnlyWhenItIsTold) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");
  manager.writeFeed({"--title", "Old"});

  manager.writeFeed();
  const std::string untold = manager.feed();
  manager.writeFeed({"--title", "New"});

  EXPECT_THAT(untold, HasSubstr("    <title>Old</title>\n"));
  EXPECT_THAT(manager.feed(), HasSubstr("  <channel>\n    <title>New</title>\n"));
  EXPECT_THAT(manager.feed(), Not(HasSubstr("Old")));
}

TEST(Feed, PutsATitleThatWasMissingInFrontOfEverything) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");
  manager.addFile("appcast.eddsa.xml",
                  "<?look here?>\n<rss version=\"2.0\"><channel><language>en</language></channel></rss>");

  manager.writeFeed();

  EXPECT_THAT(manager.feed(), HasSubstr("  <channel>\n    <title>Karno</title>\n    <language>"));
  EXPECT_THAT(manager.feed(), HasSubstr("<?look here?>"));
}

// The items of an earlier feed, in the order in which it has their addresses now.
class EarlierFeed : public testing::Test {
 protected:
  std::vector<std::string> addressesAfterRelease2(const std::string& items) {
    manager_.addRelease("Karno-2.zip", "2", "2.0");
    manager_.addFile("appcast.eddsa.xml",
                     "<rss xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>" +
                         items + "</channel></rss>");
    manager_.writeFeed({"--older", "--replace", "2"});
    return addressesIn(manager_.feed());
  }

 private:
  static std::vector<std::string> addressesIn(const std::string& feed) {
    std::vector<std::string> found;
    constexpr std::string_view kBefore = "url=\"https://localhost/";
    for (std::size_t at = feed.find(kBefore); at != std::string::npos; at = feed.find(kBefore, at + 1)) {
      const std::size_t begin = at + kBefore.size();
      found.push_back(feed.substr(begin, feed.find('"', begin) - begin));
    }
    return found;
  }

  ReleaseManager manager_;
};

TEST_F(EarlierFeed, LosesTheSameVersionInAnotherPlaceHoweverItIsWritten) {
  const auto addresses = addressesAfterRelease2(
      "<item><sparkle:version> 2.0\n</sparkle:version><enclosure url=\"https://localhost/a\"/></item>"
      "<item><enclosure url=\"https://localhost/b\" sparkle:version=\"2\"/></item>"
      "<item><sparkle:version><![CDATA[ ]]></sparkle:version><enclosure url=\"https://localhost/blank\" "
      "sparkle:version=\"2\"/></item>"
      "<item><sparkle:version>\n1 </sparkle:version><enclosure url=\"https://localhost/c\"/></item>");

  EXPECT_THAT(addresses, ElementsAre("updates/Karno-2.zip", "c"));
}

TEST_F(EarlierFeed, IsSortedByTheVersionsOfEnclosuresAsWell) {
  const auto addresses = addressesAfterRelease2(
      "<item><enclosure url=\"https://localhost/none\"/></item>"
      "<item><enclosure url=\"https://localhost/1\" sparkle:version=\"1\"/></item>"
      "<item><enclosure url=\"https://localhost/3\" sparkle:version=\" 3 \"/></item>");

  EXPECT_THAT(addresses, ElementsAre("3", "updates/Karno-2.zip", "1", "none"));
}

}  // namespace
}  // namespace karno::appcast::test
