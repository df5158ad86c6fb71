#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "support/update_place.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNotOneBundle = "3002 The archive does not hold exactly one application bundle.";

std::string badName(const std::string& name, const std::string& reason) {
  return "3000 The archive holds the name \"" + name + "\", which " + reason + ".";
}

std::string badEntry(const std::string& name, const std::string& reason) {
  return "3000 The archive's entry \"" + name + "\" " + reason + ".";
}

class HostileArchive : public testing::TestWithParam<Format> {
 protected:
  // What is said of a bundle with these entries behind it. Nothing may be left, in the folder or beside it.
  std::string said(const std::vector<Item>& more, const installer::UnpackLimits& limits = {}) {
    UpdatePlace place;
    place.request.limits = limits;
    place.makeArchive(joined(bundleItems(), more), GetParam());
    const std::string before = treeText(place.folder().path());
    std::string text = place.unpack();
    EXPECT_EQ(treeText(place.folder().path()), before);
    return text;
  }
};

TEST_P(HostileArchive, MayNotNameAbsolutePlaces) {
  EXPECT_EQ(said({file("/evil", "x")}), badName("/evil", "is absolute"));
}

TEST_P(HostileArchive, MayNotNamePlacesAboveTheFolder) {
  EXPECT_EQ(said({file("../evil", "x")}), badName("../evil", "leads out of its folder"));
  EXPECT_EQ(said({file("Karno.app/../../evil", "x")}),
            badName("Karno.app/../../evil", "leads out of its folder"));
  EXPECT_EQ(said({folder("Karno.app/..")}), badName("Karno.app/../", "leads out of its folder"));
  EXPECT_EQ(said({link("../evil", "x")}), badName("../evil", "leads out of its folder"));
}

TEST_P(HostileArchive, MayNotHideBadNamesAmongWhatIsPassedOver) {
  EXPECT_EQ(said({file("__MACOSX/../../evil", "x")}),
            badName("__MACOSX/../../evil", "leads out of its folder"));
}

TEST_P(HostileArchive, MayNotHoldNamesThatAreNotUTF8) {
  EXPECT_EQ(said({file("Karno.app/\xE9t\xE9", "x")}), badName("Karno.app/?t?", "is not UTF-8"));
}

TEST_P(HostileArchive, MayNotHoldLinksOutOfTheBundle) {
  EXPECT_EQ(said({link("Karno.app/evil", "/etc/passwd")}),
            badEntry("Karno.app/evil", "leads out of the bundle"));
  EXPECT_EQ(said({link("Karno.app/evil", "..")}), badEntry("Karno.app/evil", "leads out of the bundle"));
  EXPECT_EQ(said({link("Karno.app/a/evil", "../../other")}),
            badEntry("Karno.app/a/evil", "leads out of the bundle"));
}

// Each of the links stays inside as it is written; one behind the other would lead out.
TEST_P(HostileArchive, MayNotLeadOutByTwoLinks) {
  EXPECT_EQ(said({link("Karno.app/a/b/c/up", "../../.."), link("Karno.app/out", "a/b/c/up/../..")}),
            badEntry("Karno.app/out", "leads out of the bundle"));
}

TEST_P(HostileArchive, MayNotWriteThroughALink) {
  EXPECT_EQ(said({link("Karno.app/door", "Contents"), file("Karno.app/door/evil", "x")}),
            badEntry("Karno.app/door/evil", "lies in something that is no folder"));
  EXPECT_EQ(said({link("Karno.app/door", "Contents"), link("Karno.app/door/MacOS/evil", "x")}),
            badEntry("Karno.app/door/MacOS/evil", "lies in something that is no folder"));
  EXPECT_EQ(said({link("Karno.app/door", "Contents"), folder("Karno.app/door")}),
            badEntry("Karno.app/door", "lies in something that is no folder"));
  EXPECT_EQ(said({link("Karno.app/door", "Contents/Info.plist"), file("Karno.app/door", "x")}),
            badEntry("Karno.app/door", "comes twice"));
}

TEST_P(HostileArchive, MayNotWriteIntoAFile) {
  EXPECT_EQ(said({file("Karno.app/Contents/Info.plist/evil", "x")}),
            badEntry("Karno.app/Contents/Info.plist/evil", "lies in something that is no folder"));
}

TEST_P(HostileArchive, MayNotHoldAnEntryTwice) {
  EXPECT_EQ(said({file("Karno.app/Contents/MacOS/Karno", "other")}),
            badEntry("Karno.app/Contents/MacOS/Karno", "comes twice"));
  EXPECT_EQ(said({file("Karno.app/Contents", "x")}), badEntry("Karno.app/Contents", "comes twice"));
  EXPECT_EQ(said({link("Karno.app/Contents", "x")}), badEntry("Karno.app/Contents", "comes twice"));
}

TEST_P(HostileArchive, IsToldOfInOneLine) {
  EXPECT_EQ(said({file("Karno.app/a\nb", "x"), file("Karno.app/a\nb", "y")}),
            badEntry("Karno.app/a?b", "comes twice"));
}

TEST_P(HostileArchive, MayHoldOneBundleOnly) {
  EXPECT_EQ(said({folder("Second.app")}), kNotOneBundle);
  EXPECT_EQ(said({file("Second.app/Contents/Info.plist", "x")}), kNotOneBundle);
  EXPECT_EQ(said({file("README", "x")}), kNotOneBundle);
  EXPECT_EQ(said({link("Applications", "/Applications")}), kNotOneBundle);
}

TEST_P(HostileArchive, MayNotHoldTooManyEntries) {
  const std::size_t entries = bundleItems().size();

  EXPECT_EQ(said({file("Karno.app/more", "x")}, {.entriesMax = entries}),
            "3000 The archive holds too many entries.");
  EXPECT_EQ(said({file("__MACOSX/more", "x")}, {.entriesMax = entries}),
            "3000 The archive holds too many entries.");
}

TEST_P(HostileArchive, MayNotUnpackToTooMuch) {
  constexpr const char* kTooLarge = "3000 The archive is too large when unpacked.";
  const std::string zeros(100'000, '\0');

  EXPECT_EQ(said({file("Karno.app/bomb", zeros)}, {.unpackedBytesMax = 100'000}), kTooLarge);
  EXPECT_EQ(said({file("__MACOSX/bomb", zeros)}, {.unpackedBytesMax = 100'000}), kTooLarge);
  EXPECT_EQ(said({file("Karno.app/one", zeros), file("Karno.app/two", zeros)}, {.unpackedBytesMax = 200'000}),
            kTooLarge);
}

TEST_P(HostileArchive, MayNotBeTooDeep) {
  EXPECT_EQ(said({file("Karno.app/1/2/3/4/5/6/7", "x")}, {.depthMax = 7}),
            badName("Karno.app/1/2/3/4/5/6/7", "is too deep"));
}

TEST_P(HostileArchive, MayNotHoldNamesThatAreTooLong) {
  const std::string name = "Karno.app/" + std::string(300, 'n');

  EXPECT_EQ(said({file(name, "x")}, {.nameBytesMax = 309}), badName(name, "is too long"));
  EXPECT_EQ(said({file(name, "x")}), "3000 The archive could not be unpacked: File name too long.");
}

INSTANTIATE_TEST_SUITE_P(Formats, HostileArchive, testing::Values(Format::Zip, Format::TarGzip),
                         testing::PrintToStringParamName());

TEST(HostileTar, MayNotHoldHardLinks) {
  UpdatePlace place;

  EXPECT_EQ(
      place.unpack(joined(bundleItems(), {{"Karno.app/evil", Kind::HardLink, "/etc/passwd"}}), Format::Tar),
      badEntry("Karno.app/evil", "is a hard link"));
  EXPECT_EQ(place.unpack(
                joined(bundleItems(), {{"Karno.app/same", Kind::HardLink, "Karno.app/Contents/Info.plist"}}),
                Format::Tar),
            badEntry("Karno.app/same", "is a hard link"));
  EXPECT_EQ(place.unpackedTree(), "");
}

// The disk tells of the first only while the second is read.
TEST(HostileTar, IsRefusedForTheFirstOfItsFaults) {
  UpdatePlace place;

  const std::string said =
      place.unpack(joined(bundleItems(), {file("Karno.app/Contents/MacOS/Karno", "other"),
                                          {"Karno.app/evil", Kind::HardLink, "/etc/passwd"}}),
                   Format::Tar);

  EXPECT_EQ(said, badEntry("Karno.app/Contents/MacOS/Karno", "comes twice"));
}

TEST(HostileTar, MayNotHoldDevicesOrPipes) {
  UpdatePlace place;

  EXPECT_EQ(place.unpack(joined(bundleItems(), {{"Karno.app/null", Kind::Device, ""}}), Format::Tar),
            badEntry("Karno.app/null", "is neither file, folder nor symbolic link"));
  EXPECT_EQ(place.unpack(joined(bundleItems(), {{"Karno.app/pipe", Kind::Pipe, ""}}), Format::Tar),
            badEntry("Karno.app/pipe", "is neither file, folder nor symbolic link"));
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(HostileZip, MayNotBeEncrypted) {
  UpdatePlace place;

  EXPECT_EQ(place.unpack(bundleItems(), Format::EncryptedZip),
            badEntry("Karno.app/Contents/Info.plist", "is encrypted"));
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(UnknownArchive, IsRefused) {
  UpdatePlace place;
  constexpr const char* kUnknown = "3000 The archive could not be unpacked: Unrecognized archive format.";

  EXPECT_EQ(place.unpack(bundleItems(), Format::Cpio), kUnknown);
  EXPECT_EQ(place.unpack(bundleItems(), Format::SevenZip), kUnknown);
  place.setArchive(std::string(5000, 'g'));
  EXPECT_EQ(place.unpack(), kUnknown);
  place.setArchive("");
  EXPECT_EQ(place.unpack(), kUnknown);
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(EmptyArchive, HoldsNoBundle) {
  UpdatePlace place;

  EXPECT_EQ(place.unpack({}, Format::Tar), kNotOneBundle);
  EXPECT_EQ(place.unpack({}, Format::TarGzip), kNotOneBundle);
  EXPECT_EQ(place.unpack({file("__MACOSX/x", "x")}), kNotOneBundle);
}

TEST(ArchiveWithoutABundle, IsRefused) {
  UpdatePlace place;

  EXPECT_EQ(place.unpack({file("Karno.app", "x")}), kNotOneBundle);
  EXPECT_EQ(place.unpack({link("Karno.app", "/etc")}), kNotOneBundle);
  EXPECT_EQ(place.unpack({file(".app/Contents/Info.plist", "x")}), kNotOneBundle);
  EXPECT_EQ(place.unpack({file("Kar\nno.app/Contents/Info.plist", "x")}), kNotOneBundle);
  EXPECT_EQ(place.unpack({folder("Karno.app")}), "3002 The bundle's Info.plist cannot be read.");
  EXPECT_EQ(place.unpackedTree(), "");
}

class DamagedArchive : public testing::TestWithParam<Format> {
 protected:
  static constexpr unsigned kSeed = 20240914;
  UpdatePlace place;
  std::mt19937 random{kSeed};

  std::string goodBytes() {
    place.makeArchive(bundleItems(), GetParam());
    return contentOf(place.archive());
  }
  std::size_t anyPlaceIn(const std::string& bytes) {
    return std::uniform_int_distribution<std::size_t>(0, bytes.size() - 1)(random);
  }
};

TEST_P(DamagedArchive, IsNotUnpackedWithOneByteChangedAfterSigning) {
  const std::string good = goodBytes();
  for (int turn = 0; turn < 200; ++turn) {
    std::string bytes = good;
    const std::size_t position = anyPlaceIn(bytes);
    bytes[position] = static_cast<char>(bytes[position] ^ (1 << (turn % 8)));
    place.replaceArchive(bytes);

    EXPECT_EQ(place.unpack(), "3001 The signature does not belong to the archive.")
        << "byte " << position << ", seed " << kSeed;
  }
  EXPECT_EQ(place.unpackedTree(), "");
}

// Its publisher may have signed it damaged: whatever is said, nothing is left but a whole bundle.
TEST_P(DamagedArchive, LeavesAWholeBundleOrNothingWhenItWasSignedSo) {
  const std::string good = goodBytes();
  for (int turn = 0; turn < 300; ++turn) {
    std::string bytes = good;
    bytes[anyPlaceIn(bytes)] = static_cast<char>(random());
    bytes[anyPlaceIn(bytes)] = static_cast<char>(random());
    place.setArchive(bytes);

    const bool isReady = place.unpack().starts_with("ready ");

    EXPECT_EQ(place.unpackedTree().empty(), !isReady) << "turn " << turn << ", seed " << kSeed;
    for (const auto& entry : fs::directory_iterator(place.into())) fs::remove_all(entry);
  }
  EXPECT_EQ(treeText(place.bundle()), treeText(UpdatePlace().bundle()));
}

TEST_P(DamagedArchive, IsRefusedWhereverItIsCutOff) {
  const std::string good = goodBytes();
  for (int turn = 0; turn < 100; ++turn) {
    // A tar's closing zeros may be missing; its entries may not.
    const std::size_t size = anyPlaceIn(good) * 2 / 3;
    place.setArchive(good.substr(0, size));

    EXPECT_EQ(place.unpack().substr(0, 4), "3000") << size << " bytes, seed " << kSeed;
  }
  EXPECT_EQ(place.unpackedTree(), "");
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedArchive, testing::Values(Format::Zip, Format::TarGzip),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace karno::test
