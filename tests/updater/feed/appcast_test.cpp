#include "platform/linux/updater/feed/appcast.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace karno::platform::updates {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::string feedOf(const std::string& items) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<rss version=\"2.0\" "
         "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><title>Karno</"
         "title>" +
         items + "</channel></rss>";
}

std::vector<FeedItem> itemsOf(const std::string& items) {
  const auto read = parseAppcast(feedOf(items));
  return read ? read.value() : std::vector<FeedItem>();
}

TEST(Appcast, TellsEverythingOfAnItem) {
  const auto items = itemsOf(R"(<item>
    <title> Karno 1.1 </title><link>https://a/news</link>
    <sparkle:version>110</sparkle:version><sparkle:shortVersionString>1.1</sparkle:shortVersionString>
    <sparkle:minimumSystemVersion>12.3</sparkle:minimumSystemVersion>
    <sparkle:maximumSystemVersion>15.9.9</sparkle:maximumSystemVersion>
    <sparkle:minimumUpdateVersion>90</sparkle:minimumUpdateVersion>
    <sparkle:channel>beta</sparkle:channel><sparkle:criticalUpdate/>
    <description><![CDATA[<b>New</b> & <i>nice</i>]]></description>
    <sparkle:releaseNotesLink> https://a/notes </sparkle:releaseNotesLink>
    <enclosure url="https://a/Karno-1.1.zip" length="1234567890123" type="application/octet-stream"
      sparkle:os="macos" sparkle:edSignature="c2lnbmF0dXJl"/></item>)");

  ASSERT_THAT(items, SizeIs(1));
  const FeedItem& item = items[0];
  EXPECT_EQ(item.title, "Karno 1.1");
  EXPECT_EQ(item.informationURL, "https://a/news");
  EXPECT_EQ(item.version, "110");
  EXPECT_EQ(item.displayVersion, "1.1");
  EXPECT_EQ(item.minimumSystemVersion, "12.3");
  EXPECT_EQ(item.maximumSystemVersion, "15.9.9");
  EXPECT_EQ(item.minimumUpdateVersion, "90");
  EXPECT_EQ(item.channel, "beta");
  EXPECT_TRUE(item.isCritical);
  EXPECT_EQ(item.notes, "<b>New</b> & <i>nice</i>");
  EXPECT_EQ(item.notesFormat, NotesFormat::HTML);
  EXPECT_EQ(item.notesURL, "https://a/notes");
  EXPECT_EQ(item.downloadURL, "https://a/Karno-1.1.zip");
  EXPECT_EQ(item.length, 1234567890123U);
  EXPECT_EQ(item.operatingSystem, "macos");
  EXPECT_EQ(item.edSignature, "c2lnbmF0dXJl");
  EXPECT_FALSE(item.isInformationOnly);
}

TEST(Appcast, TellsWhichHostsAnItemIsCriticalAndInformationFor) {
  const auto items = itemsOf(R"(<item><sparkle:version>2</sparkle:version><enclosure url="https://a/b"/>
    <sparkle:criticalUpdate sparkle:version="1.5"/>
    <sparkle:informationalUpdate><sparkle:version>1.0</sparkle:version><sparkle:version>1.1</sparkle:version>
    <sparkle:belowVersion>0.9</sparkle:belowVersion></sparkle:informationalUpdate></item>
    <item><sparkle:version>3</sparkle:version><enclosure url="https://a/b"/><sparkle:informationalUpdate/></item>)");

  ASSERT_THAT(items, SizeIs(2));
  EXPECT_TRUE(items[0].isCritical);
  EXPECT_EQ(items[0].criticalBelow, "1.5");
  EXPECT_EQ(items[0].informationVersions, (std::vector<std::string>{"1.0", "1.1"}));
  EXPECT_EQ(items[0].informationBelow, std::vector<std::string>{"0.9"});
  EXPECT_FALSE(items[0].isInformationOnly);
  EXPECT_TRUE(items[1].isInformationOnly);
}

TEST(Appcast, TellsNotesByTheirLanguages) {
  const auto items = itemsOf(R"(<item><sparkle:version>2</sparkle:version><enclosure url="https://a/b"/>
    <description xml:lang="de" sparkle:format="plain-text">Neu</description><description>New</description></item>
    <item><sparkle:version>3</sparkle:version><enclosure url="https://a/b"/>
    <description xml:lang="fr">Nouveau</description></item>)");

  ASSERT_THAT(items, SizeIs(2));
  EXPECT_EQ(items[0].notes, "New");
  EXPECT_EQ(items[0].notesFormat, NotesFormat::HTML);
  ASSERT_THAT(items[0].translatedNotes, SizeIs(1));
  EXPECT_EQ(items[0].translatedNotes[0].language, "de");
  EXPECT_EQ(items[0].translatedNotes[0].notes, "Neu");
  EXPECT_EQ(items[0].translatedNotes[0].format, NotesFormat::PlainText);
  EXPECT_EQ(items[1].notes, "Nouveau");
}

// A log and a terminal would obey them.
TEST(Appcast, HasEscapesForWhatIsNotToBeSeenInTitleAndVersions) {
  const auto items = itemsOf(R"(<item><title>1.1&#10;2026-01-01 [INFO]&#27;[2J</title>
    <sparkle:version>110&#x202E;</sparkle:version><sparkle:channel>be&#10;ta</sparkle:channel>
    <sparkle:minimumSystemVersion>12&#27;</sparkle:minimumSystemVersion>
    <description>Two&#10;lines</description>
    <enclosure url="https://a/b" sparkle:shortVersionString="1.1&#27;"/></item>)");

  ASSERT_THAT(items, SizeIs(1));
  EXPECT_EQ(items[0].title, "1.1\\n2026-01-01 [INFO]\\u001b[2J");
  EXPECT_EQ(items[0].version, "110\\u202e");
  EXPECT_EQ(items[0].displayVersion, "1.1\\u001b");
  EXPECT_EQ(items[0].channel, "be\\nta");
  EXPECT_EQ(items[0].minimumSystemVersion, "12\\u001b");
  EXPECT_EQ(items[0].notes, "Two\nlines");
}

TEST(Appcast, TakesVersionsFromTheEnclosureOfOlderFeeds) {
  const auto items = itemsOf(
      R"(<item><enclosure url="https://a/b" sparkle:version="7" sparkle:shortVersionString="0.7"/></item>)");

  ASSERT_THAT(items, SizeIs(1));
  EXPECT_EQ(items[0].version, "7");
  EXPECT_EQ(items[0].displayVersion, "0.7");
  EXPECT_EQ(items[0].title, std::nullopt);
  EXPECT_EQ(items[0].length, std::nullopt);
}

TEST(Appcast, ShowsTheVersionWhereThereIsNoOther) {
  const auto items =
      itemsOf(R"(<item><sparkle:version>7</sparkle:version><enclosure url="https://a/b"/></item>)");

  ASSERT_THAT(items, SizeIs(1));
  EXPECT_EQ(items[0].displayVersion, "7");
}

TEST(Appcast, GoesByTheNamespaceAndNotByThePrefix) {
  const auto read = parseAppcast(
      R"(<rss xmlns:u="http://www.andymatuschak.org/xml-namespaces/sparkle" xmlns:sparkle="https://elsewhere/">
      <channel><item><sparkle:version>99</sparkle:version><u:version>7</u:version>
      <enclosure url="https://a/b" u:edSignature="good" sparkle:edSignature="bad"/></item></channel></rss>)");

  ASSERT_TRUE(read);
  ASSERT_THAT(read.value(), SizeIs(1));
  EXPECT_EQ(read.value()[0].version, "7");
  EXPECT_EQ(read.value()[0].edSignature, "good");
}

TEST(Appcast, NeverTakesADeltaForTheUpdate) {
  const auto items = itemsOf(R"(<item><sparkle:version>7</sparkle:version><sparkle:deltas>
    <enclosure url="https://a/delta" sparkle:deltaFrom="6"/></sparkle:deltas>
    <enclosure url="https://a/whole"/></item>)");

  ASSERT_THAT(items, SizeIs(1));
  EXPECT_EQ(items[0].downloadURL, "https://a/whole");
}

TEST(Appcast, LeavesOutWhatHasNoVersionOrNothingBehindIt) {
  EXPECT_THAT(itemsOf(R"(<item><enclosure url="https://a/b"/></item>
    <item><sparkle:version>7</sparkle:version></item><item/><other/>)"),
              IsEmpty());
}

TEST(Appcast, KnowsItemsThatAreOnlyToBeRead) {
  const auto items = itemsOf(R"(<item><sparkle:version>7</sparkle:version><link>https://a/</link></item>
    <item><sparkle:version>8</sparkle:version><link>https://a/</link><sparkle:informationalUpdate/>
    <enclosure url="https://a/b"/></item>)");

  ASSERT_THAT(items, SizeIs(2));
  EXPECT_TRUE(items[0].isInformationOnly);
  EXPECT_TRUE(items[1].isInformationOnly);
}

// Whoever writes to the feed may not have anything else opened on the user's machine.
TEST(Appcast, SendsNobodyToWhatIsNoPageOfTheWeb) {
  const auto items = itemsOf(R"(<item><sparkle:version>7</sparkle:version><link>file:///a/b.app</link></item>
    <item><sparkle:version>8</sparkle:version><link>karno:quit</link><enclosure url="https://a/b"/></item>
    <item><sparkle:version>9</sparkle:version><link>HTTP://a/</link></item>)");

  ASSERT_THAT(items, SizeIs(2));
  EXPECT_EQ(items[0].version, "8");
  EXPECT_EQ(items[0].informationURL, "");
  EXPECT_EQ(items[1].informationURL, "HTTP://a/");
}

TEST(Appcast, ReadsNotesInSeveralPiecesToTheirEnd) {
  const auto items = itemsOf(R"(<item><sparkle:version>7</sparkle:version><enclosure url="https://a/b"/>
    <description><![CDATA[An array]]]]><![CDATA[> and more.]]> &amp; more<!-- here --> still.</description></item>)");

  ASSERT_THAT(items, SizeIs(1));
  EXPECT_EQ(items[0].notes, "An array]]> and more. & more still.");
}

TEST(Appcast, KnowsPlainNotes) {
  const auto items = itemsOf(R"(<item><sparkle:version>7</sparkle:version><enclosure url="https://a/b"/>
    <description sparkle:format="plain-text">1 &lt; 2</description></item>)");

  ASSERT_THAT(items, SizeIs(1));
  EXPECT_EQ(items[0].notes, "1 < 2");
  EXPECT_EQ(items[0].notesFormat, NotesFormat::PlainText);
}

TEST(Appcast, WithALengthThatIsNoNumberHasNone) {
  const auto items = itemsOf(
      R"(<item><sparkle:version>7</sparkle:version><enclosure url="https://a/b" length="12 MB"/></item>)");

  ASSERT_THAT(items, SizeIs(1));
  EXPECT_EQ(items[0].length, std::nullopt);
}

// Of the feed, so many elements: rss, channel, title and item are four of them.
std::string itemsWithElements(std::size_t elements) {
  std::string items = "<item>";
  for (std::size_t count = 4; count < elements; ++count) items += "<a/>";
  return items + "</item>";
}

// Of the feed, so many attributes: the version of RSS and the namespace are two of them.
std::string itemsWithAttributes(std::size_t attributes) {
  std::string items = "<item><enclosure";
  for (std::size_t count = 2; count < attributes; ++count) items += fmt::format(" a{}=''", count);
  return items + "/></item>";
}

TEST(Appcast, IsReadUpToALimitOfElements) {
  EXPECT_TRUE(parseAppcast(feedOf(itemsWithElements(kFeedElementsMax))));

  const auto tooLarge = parseAppcast(feedOf(itemsWithElements(kFeedElementsMax + 1)));

  ASSERT_FALSE(tooLarge);
  EXPECT_EQ(tooLarge.error().code(), 1000);
  EXPECT_EQ(tooLarge.error().localizedDescription(),
            "The feed could not be read: it has too many elements or attributes.");
}

TEST(Appcast, IsReadUpToALimitOfAttributes) {
  EXPECT_TRUE(parseAppcast(feedOf(itemsWithAttributes(kFeedAttributesMax))));

  const auto tooLarge = parseAppcast(feedOf(itemsWithAttributes(kFeedAttributesMax + 1)));

  ASSERT_FALSE(tooLarge);
  EXPECT_EQ(tooLarge.error().code(), 1000);
}

TEST(Appcast, LeavesOutItemsWithATextThatNobodyCouldRead) {
  const std::string longest(kFeedTextBytesMax, '7');
  const std::string item =
      R"(<item><title>{}</title><sparkle:version>{}</sparkle:version><enclosure url="{}"/></item>)";

  EXPECT_THAT(itemsOf(fmt::format(fmt::runtime(item), longest, longest, longest)), SizeIs(1));
  EXPECT_THAT(itemsOf(fmt::format(fmt::runtime(item), longest + "7", "7", "https://a/b")), IsEmpty());
  EXPECT_THAT(itemsOf(fmt::format(fmt::runtime(item), "7", longest + "7", "https://a/b")), IsEmpty());
  EXPECT_THAT(itemsOf(fmt::format(fmt::runtime(item), "7", "7", longest + "7")), IsEmpty());
}

TEST(Appcast, GoesByTheInnermostNamespaceOfAPrefix) {
  const auto items = itemsOf(R"(<item xmlns:sparkle="https://elsewhere/"><sparkle:version>99</sparkle:version>
    <sparkle:version xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">7</sparkle:version>
    <enclosure url="https://a/b" sparkle:os="bad"/></item>
    <item><sparkle:version>8</sparkle:version><enclosure url="https://a/b"
      sparkle:os="windows" xmlns:sparkle="https://elsewhere/"/></item>)");

  ASSERT_THAT(items, SizeIs(2));
  EXPECT_EQ(items[0].version, "7");
  EXPECT_EQ(items[0].operatingSystem, "");
  EXPECT_EQ(items[1].operatingSystem, "");
}

TEST(Appcast, StopsAfterAThousandItems) {
  std::string many;
  for (int count = 0; count < 1200; ++count)
    many += fmt::format(R"(<item><sparkle:version>{}</sparkle:version><enclosure url="https://a/b"/></item>)",
                        count);

  EXPECT_THAT(itemsOf(many), SizeIs(kFeedItemsMax));
}

class NoFeed : public ::testing::TestWithParam<const char*> {};

TEST_P(NoFeed, IsAnErrorWithAReason) {
  const auto read = parseAppcast(GetParam());

  ASSERT_FALSE(read);
  EXPECT_EQ(read.error().domain(), "SUSparkleErrorDomain");
  EXPECT_EQ(read.error().code(), 1000);
  EXPECT_THAT(read.error().localizedDescription(), HasSubstr("The feed could not be read: "));
}

INSTANTIATE_TEST_SUITE_P(Bytes, NoFeed,
                         ::testing::Values("", "not found", "{\"items\": []}",
                                           "<html><body>Sorry</body></html>", "<rss></rss>",
                                           "<rss><channel><item></channel></rss>", "<rss", "\xFF\xFE\x00"));

TEST(Appcast, OfAMillionOpenElementsIsAnErrorAndNoCrash) {
  std::string deep;
  for (int count = 0; count < 1'000'000; ++count) deep += "<a>";

  EXPECT_FALSE(parseAppcast(deep));
}

TEST(Appcast, ReadsNoFilesAndBlowsUpNoEntities) {
  const auto items = parseAppcast(
      R"(<!DOCTYPE rss [<!ENTITY a "aaaa"><!ENTITY b "&a;&a;&a;&a;"><!ENTITY f SYSTEM "file:///etc/passwd">]>
      <rss xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><item><title>&b;&f;</title>
      <s:version>1</s:version><enclosure url="https://a/b"/></item></channel></rss>)");

  ASSERT_TRUE(items);
  ASSERT_THAT(items.value(), SizeIs(1));
  EXPECT_EQ(items.value()[0].title, "&b;&f;");
}

}  // namespace
}  // namespace karno::platform::updates
