#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "release_manager.h"

namespace karno::appcast::test {
namespace {

using karno::test::contentOf;

constexpr const char* kBegin = R"(<?xml version="1.0"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel>
    <title>Karno</title>
)";
constexpr const char* kEnd = R"(  </channel>
</rss>
)";

// An item without notes, as the feed of this test has it.
std::string item(ReleaseManager& manager, const std::string& archive, const std::string& version,
                 const std::string& shortVersion) {
  return "    <item>\n      <title>Karno " + shortVersion +
         "</title>\n"
         "      <pubDate>Tue, 14 Nov 2023 22:13:20 +0000</pubDate>\n"
         "      <sparkle:version>" +
         version +
         "</sparkle:version>\n"
         "      <sparkle:shortVersionString>" +
         shortVersion +
         "</sparkle:shortVersionString>\n"
         "      <sparkle:minimumSystemVersion>10.14.6</sparkle:minimumSystemVersion>\n"
         "      <enclosure url=\"https://localhost/updates/" +
         archive + "\" length=\"" + manager.lengthOf(archive) +
         "\" type=\"application/octet-stream\" sparkle:edSignature=\"" + manager.signatureOf(archive) +
         "\" />\n    </item>\n";
}

TEST(Feed, OffersTheReleasesOfAFolderNewestFirst) {
  ReleaseManager manager;
  manager.addRelease("Karno-1.9.zip", "9", "1.9");
  manager.addRelease("Karno-1.10.tar.xz", "10", "1.10");

  const int status = manager.writeFeed();

  EXPECT_EQ(status, 0);
  EXPECT_EQ(manager.out(),
            manager.inFolder("appcast.eddsa.xml") + " offers 2 releases of " + manager.folder() + "\n");
  EXPECT_EQ(manager.feed(), kBegin + item(manager, "Karno-1.10.tar.xz", "10", "1.10") +
                                item(manager, "Karno-1.9.zip", "9", "1.9") + kEnd);
}

TEST(Feed, MayBeReadByAServer) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");

  manager.writeFeed();

  struct stat status = {};
  ::stat(manager.inFolder("appcast.eddsa.xml").c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777, 0644U);
}

TEST(Feed, ReadsEveryKindOfArchive) {
  ReleaseManager manager;
  manager.addRelease("a.zip", "1", "1");
  manager.addRelease("b.tar.gz", "2", "2");
  manager.addRelease("c.tar.xz", "3", "3");
  manager.addRelease("d.tar.bz2", "4", "4");
  manager.addRelease("e.tar", "5", "5");
  manager.addRelease("f.tar.zst", "6", "6");
  manager.addFile("g.dmg", "no release");

  const int status = manager.writeFeed();

  EXPECT_EQ(status, 0) << manager.err();
  EXPECT_EQ(manager.feed(), kBegin + item(manager, "f.tar.zst", "6", "6") + item(manager, "e.tar", "5", "5") +
                                item(manager, "d.tar.bz2", "4", "4") + item(manager, "c.tar.xz", "3", "3") +
                                item(manager, "b.tar.gz", "2", "2") + item(manager, "a.zip", "1", "1") +
                                kEnd);
}

TEST(Feed, CarriesPlainNotes) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");
  manager.addFile("Karno.txt", "Schöner & <schneller>.\nAnd ]]> is no end.\n");

  manager.writeFeed({"--output", manager.desk() / "feed.xml"});

  EXPECT_EQ(contentOf(manager.desk() / "feed.xml"),
            std::string(kBegin) + R"(    <item>
      <title>Karno 1.0</title>
      <pubDate>Tue, 14 Nov 2023 22:13:20 +0000</pubDate>
      <sparkle:version>1</sparkle:version>
      <sparkle:shortVersionString>1.0</sparkle:shortVersionString>
      <sparkle:minimumSystemVersion>10.14.6</sparkle:minimumSystemVersion>
      <description sparkle:format="plain-text"><![CDATA[Schöner & <schneller>.
And ]]]]><![CDATA[> is no end.
]]></description>
      <enclosure url="https://localhost/updates/Karno.zip" length=")" +
                manager.lengthOf("Karno.zip") + R"(" type="application/octet-stream" sparkle:edSignature=")" +
                manager.signatureOf("Karno.zip") + "\" />\n    </item>\n" + kEnd);
}

TEST(Feed, CarriesHypertextNotesAndTheDateOfTheArchive) {
  ReleaseManager manager;
  manager.addArchive("Kärno 1&2.tar.gz", bundle(infoPlist("1", "1.0 &amp; more", "11"), "Kärno"));
  manager.setDate("Kärno 1&2.tar.gz", 1'600'000'000);
  manager.addFile("Kärno 1&2.html", "<p>New</p>");

  manager.writeFeed({"--title", "Karno & Co"});

  EXPECT_EQ(manager.feed(), R"(<?xml version="1.0"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel>
    <title>Karno &amp; Co</title>
    <item>
      <title>Karno 1.0 &amp; more</title>
      <pubDate>Sun, 13 Sep 2020 12:26:40 +0000</pubDate>
      <sparkle:version>1</sparkle:version>
      <sparkle:shortVersionString>1.0 &amp; more</sparkle:shortVersionString>
      <sparkle:minimumSystemVersion>11.0.0</sparkle:minimumSystemVersion>
      <description><![CDATA[<p>New</p>]]></description>
      <enclosure url="https://localhost/updates/K%C3%A4rno%201%262.tar.gz" length=")" +
                                manager.lengthOf("Kärno 1&2.tar.gz") +
                                R"(" type="application/octet-stream" sparkle:edSignature=")" +
                                manager.signatureOf("Kärno 1&2.tar.gz") + "\" />\n    </item>\n" + kEnd);
}

TEST(Feed, NamesAnApplicationAfterItsFolderWhereItsBundleDoesNot) {
  ReleaseManager manager;
  manager.addArchive("a.zip", bundle(infoPlistWith("<key>CFBundleVersion</key><string>7</string>"
                                                   "<key>SUPublicEDKey</key><string>" +
                                                   std::string(kPublicKey) + "</string>"),
                                     "Kärno"));

  manager.writeFeed();

  EXPECT_EQ(manager.feed(), R"(<?xml version="1.0"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel>
    <title>Kärno</title>
    <item>
      <title>Kärno 7</title>
      <pubDate>Tue, 14 Nov 2023 22:13:20 +0000</pubDate>
      <sparkle:version>7</sparkle:version>
      <sparkle:shortVersionString>7</sparkle:shortVersionString>
      <enclosure url="https://localhost/updates/a.zip" length=")" +
                                manager.lengthOf("a.zip") +
                                R"(" type="application/octet-stream" sparkle:edSignature=")" +
                                manager.signatureOf("a.zip") + "\" />\n    </item>\n" + kEnd);
}

TEST(Feed, TakesTheLowestSystemFromTheCommandLine) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");
  manager.writeFeed({"--minimum-system", "10.14.6"});
  const std::string before = manager.feed();

  manager.writeFeed({"--for", "1", "--minimum-system", "12.1"});

  const std::string system = "<sparkle:minimumSystemVersion>10.14.6<";
  std::string expected = before;
  expected.replace(before.find(system), system.size(), "<sparkle:minimumSystemVersion>12.1.0<");
  EXPECT_EQ(manager.feed(), expected);
}

TEST(Feed, WrittenAgainIsTheSame) {
  ReleaseManager manager;
  manager.addRelease("Karno-1.zip", "1", "1.0");
  manager.addRelease("Karno-2.zip", "2", "2.0");
  manager.addFile("Karno-1.txt", "One\n\n  two");
  manager.writeFeed();
  const std::string before = manager.feed();

  manager.writeFeed();

  EXPECT_EQ(manager.feed(), before);
}

TEST(Feed, KeepsTheReleasesThatAreNotInTheFolder) {
  ReleaseManager manager;
  manager.addRelease("Karno-1.0.zip", "1", "1.0");
  manager.addFile("Karno-1.0.txt", "First.");
  manager.writeFeed();
  const std::string first = manager.feed().substr(std::string(kBegin).size());
  std::filesystem::remove(manager.inFolder("Karno-1.0.zip"));
  manager.addRelease("Karno-2.0.zip", "2", "2.0");

  const int status = manager.writeFeed();

  EXPECT_EQ(status, 0);
  EXPECT_EQ(manager.out(),
            manager.inFolder("appcast.eddsa.xml") + " offers 1 release of " + manager.folder() + "\n");
  EXPECT_EQ(manager.feed(), kBegin + item(manager, "Karno-2.0.zip", "2", "2.0") + first);
}

TEST(Feed, RenewsTheReleasesThatAreInTheFolder) {
  ReleaseManager manager;
  manager.addRelease("Karno-1.0.zip", "1", "1.0");
  manager.addRelease("Karno-2.0.zip", "2", "2.0");
  manager.writeFeed();
  manager.addRelease("Karno-2.0.zip", "2", "2.0 again");

  manager.writeFeed({"--replace", "2"});

  EXPECT_EQ(manager.feed(), kBegin + item(manager, "Karno-2.0.zip", "2", "2.0 again") +
                                item(manager, "Karno-1.0.zip", "1", "1.0") + kEnd);
}

TEST(Feed, ReplacesWhatLayInTheSamePlaceOnTheServer) {
  ReleaseManager manager;
  manager.addRelease("Karno.zip", "1", "1.0");
  manager.writeFeed();
  manager.addRelease("Karno.zip", "2", "2.0");

  manager.writeFeed();

  EXPECT_EQ(manager.feed(), kBegin + item(manager, "Karno.zip", "2", "2.0") + kEnd);
}

TEST(Feed, LeavesWhatItDoesNotKnowInAnEarlierFeed) {
  ReleaseManager manager;
  manager.addRelease("Karno-2.zip", "2", "2.0");
  manager.addFile("appcast.eddsa.xml", R"(<?xml version="1.0" encoding="utf-8"?>
<!-- by hand -->
<rss version="2.0" xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel>
    <title>By hand</title>
    <language>en</language>
    <item>
      <title>One</title>
      <s:channel>beta</s:channel>
      <description><![CDATA[<b>kept</b>]]></description>
      <enclosure url="https://localhost/one.zip" s:version="1" />
    </item>
    <item>
      <title>Three</title>
      <s:version>
        3
      </s:version>
      <link>https://localhost/three</link>
    </item>
    <item>
      <title>A page</title>
      <link>https://localhost/page</link>
    </item>
  </channel>
</rss>
)");

  const int status = manager.writeFeed({"--older"});

  EXPECT_EQ(status, 0) << manager.err();
  EXPECT_EQ(manager.feed(), R"(<?xml version="1.0"?>
<!-- by hand -->
<rss version="2.0" xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel>
    <title>By hand</title>
    <language>en</language>
    <item>
      <title>Three</title>
      <s:version>
        3
      </s:version>
      <link>https://localhost/three</link>
    </item>
    <item>
      <title>Karno 2.0</title>
      <pubDate>Tue, 14 Nov 2023 22:13:20 +0000</pubDate>
      <s:version>2</s:version>
      <s:shortVersionString>2.0</s:shortVersionString>
      <s:minimumSystemVersion>10.14.6</s:minimumSystemVersion>
      <enclosure url="https://localhost/updates/Karno-2.zip" length=")" +
                                manager.lengthOf("Karno-2.zip") +
                                R"(" type="application/octet-stream" s:edSignature=")" +
                                manager.signatureOf("Karno-2.zip") + R"(" />
    </item>
    <item>
      <title>One</title>
      <s:channel>beta</s:channel>
      <description><![CDATA[<b>kept</b>]]></description>
      <enclosure url="https://localhost/one.zip" s:version="1" />
    </item>
    <item>
      <title>A page</title>
      <link>https://localhost/page</link>
    </item>
  </channel>
</rss>
)");
}

}  // namespace
}  // namespace karno::appcast::test
