#include "platform/linux/updater/feed/notes_text.h"

#include <gtest/gtest.h>

namespace karno::platform::updates {
namespace {

TEST(ReleaseNotes, KeepTheirWordsAndLoseTheirTags) {
  EXPECT_EQ(
      plainTextOfHTML("<h1>What’s new</h1>\n<ul>\n <li>Faster <b>start</b></li><li>A &amp; B</li></ul>\n"
                      "<h2>Mended</h2><p>One\n  two<br/>three</p>"),
      "What’s new\n• Faster start\n• A & B\n\nMended\nOne two\nthree");
}

TEST(ReleaseNotes, LeaveOutScriptsStylesAndComments) {
  EXPECT_EQ(plainTextOfHTML("<head><title>x</title></head><STYLE>b{}</STYLE >"
                            "a<!-- <p>no</p> --><script>if (a < b) {}</script>b"),
            "ab");
}

TEST(ReleaseNotes, ResolveEntitiesAndKeepWhatIsNone) {
  EXPECT_EQ(plainTextOfHTML("&lt;&gt;&quot;&#65;&#x20AC;&#128512;&hellip; &unknown; R&D &#0; & &#xD800;"),
            "<>\"A€😀… &unknown; R&D \uFFFD & \uFFFD");
}

TEST(ReleaseNotes, GiveSomeTextForAnything) {
  EXPECT_EQ(plainTextOfHTML(""), "");
  EXPECT_EQ(plainTextOfHTML("<"), "");
  EXPECT_EQ(plainTextOfHTML("<!--"), "");
  EXPECT_EQ(plainTextOfHTML("a<b"), "a");
  EXPECT_EQ(plainTextOfHTML("<script>"), "");
  EXPECT_EQ(plainTextOfHTML("&"), "&");
}

TEST(ReleaseNotes, AreShownInFullUpToALimit) {
  const std::string longest(kShownNotesBytesMax, 'x');

  EXPECT_EQ(shownNotes("short"), "short");
  EXPECT_EQ(shownNotes(longest), longest);
  EXPECT_EQ(shownNotes(longest + "x"), longest + "\n…");
}

TEST(ReleaseNotes, AreNotCutWithinACharacter) {
  const std::string before(kShownNotesBytesMax - 2, 'x');

  EXPECT_EQ(shownNotes(before + "€ and more"), before + "\n…");
  EXPECT_EQ(shownNotes(before + "é and more"), before + "é\n…");
}

TEST(ReleaseNotes, ThatAreNoUTF8AreCutAllTheSame) {
  EXPECT_EQ(shownNotes(std::string(kShownNotesBytesMax + 1, '\x80')), "\n…");
}

}  // namespace
}  // namespace karno::platform::updates
