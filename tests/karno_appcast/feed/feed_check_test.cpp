#include <gmock/gmock.h>

#include <optional>
#include <sstream>
#include <string>

#include "karno-appcast/feed/feed_check.h"

namespace karno::appcast::test {
namespace {

using platform::Error;
using platform::URLLimits;
using platform::URLSink;
using ::testing::StartsWith;

constexpr const char* kUpdatesNames = R"("http://www.andymatuschak.org/xml-namespaces/sparkle")";

std::optional<Error> webWithPagesAlone(const std::string& url, const URLLimits& /*limits*/, URLSink& sink) {
  if (url.ends_with(".html")) return sink.take("<p>New</p>");
  return Error("made-up", 404, {{std::string(platform::kLocalizedDescriptionKey), "Nothing is there."}});
}

// What is printed of a feed by whoever knows nothing of launchers and keys.
std::string checked(const std::string& feed) {
  std::ostringstream out;
  checkFeed(feed, {}, webWithPagesAlone, out);
  return out.str();
}

// Items of version 2 that are only to be read.
std::string feedOfPages(int count) {
  std::string feed = std::string("<rss xmlns:s=") + kUpdatesNames + "><channel>";
  for (int item = 0; item < count; ++item)
    feed += "<item><s:version>2</s:version><link>https://a/</link><description>New</description></item>";
  return feed + "</channel></rss>";
}

TEST(FeedCheck, FindsThePageWithTheNotesUnderAPrefixThatTheItemDeclares) {
  const std::string feed =
      std::string("<rss><channel><item xmlns:s=") + kUpdatesNames +
      "><s:version> 2 </s:version><link>https://a/</link>"
      "<s:releaseNotesLink> https://a/2.html\n</s:releaseNotesLink></item></channel></rss>";

  EXPECT_EQ(checked(feed), "2 (2)\n");
}

TEST(FeedCheck, ReadsAFeedWhoseOutermostElementUsesThePrefixForOtherNames) {
  const std::string feed = std::string("<rss xmlns:sparkle=\"https://a/names\"><channel xmlns:sparkle=") +
                           kUpdatesNames +
                           "><item><sparkle:version>2</sparkle:version><link>https://a/</link>"
                           "<description>New</description></item></channel></rss>";

  EXPECT_EQ(checked(feed), "2 (2)\n");
}

TEST(FeedCheck, ShowsAnAddressWithoutWhatSteersATerminal) {
  const std::string feed =
      std::string("<rss xmlns:s=") + kUpdatesNames +
      "><channel><item><s:version>2</s:version><description>New</description>"
      "<enclosure url=\"https://a/&#x9b;31m&#x202e;.zip\" length=\"7\"/></item></channel></rss>";

  EXPECT_EQ(checked(feed),
            "2 (2)\n"
            "  wrong: cannot fetch https://a/\\u009b31m\\u202e.zip: Nothing is there.\n");
}

TEST(FeedCheck, SaysThatLaunchersReadNoMoreThanAThousandItems) {
  const std::string feed = feedOfPages(1001);

  EXPECT_THAT(checked(feed),
              StartsWith("  wrong: 1 items that launchers pass over: no version, nothing behind "
                         "them, too long a text, or past the first thousand\n2 (2)\n"));
}

}  // namespace
}  // namespace karno::appcast::test
