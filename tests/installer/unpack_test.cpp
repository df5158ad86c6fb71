#include "installer/unpack.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>

#include "subprocess.h"
#include "support/no_threads.h"
#include "support/update_place.h"

namespace karno::test {
namespace {

using namespace std::chrono_literals;

std::uint64_t bytesIn(const std::vector<Item>& items) {
  std::uint64_t bytes = 0;
  for (const Item& item : items) bytes += item.kind == Kind::File ? item.content.size() : 0;
  return bytes;
}

class EveryFormat : public testing::TestWithParam<Format> {};

TEST_P(EveryFormat, IsUnpackedAsItWasPacked) {
  UpdatePlace place;

  const std::string said = place.unpack(bundleItems(), GetParam());

  EXPECT_EQ(said, "ready Karno.app");
  EXPECT_EQ(place.unpackedTree(), treeOf(bundleItems()));
}

TEST_P(EveryFormat, HoldsLargeFiles) {
  UpdatePlace place;
  std::string content;
  for (std::uint64_t number = 0; content.size() < 3'000'000; ++number)
    content += std::to_string(number * number);
  const auto items = joined(bundleItems(), {file("Karno.app/large", content), file("Karno.app/empty", "")});

  const std::string said = place.unpack(items, GetParam());

  EXPECT_EQ(said, "ready Karno.app");
  EXPECT_TRUE(place.unpackedTree() == treeOf(items));
}

INSTANTIATE_TEST_SUITE_P(Unpacking, EveryFormat,
                         testing::Values(Format::Zip, Format::Tar, Format::TarGzip, Format::TarBzip2,
                                         Format::TarXz, Format::TarZstd),
                         testing::PrintToStringParamName());

TEST(Unpacking, ReadsWhatTheCommandsPack) {
  UpdatePlace place;
  const TemporaryFolder folder;
  writeItems(folder / "in", bundleItems());
  const std::vector<std::string> commands{
      "zip -q -r -y ../out.zip Karno.app && mv ../out.zip ../out",
      "zip -q -r -y ../out.zip . && mv ../out.zip ../out",
      "tar -cf ../out Karno.app",
      "tar -czf ../out ./Karno.app",
      "tar -cJf ../out .",
      "tar --format=posix -cf - Karno.app | zstd -q -o ../out",
      "tar --format=v7 -cjf ../out Karno.app",
  };
  for (const std::string& command : commands) {
    const CommandResult packed = runCommand({"sh", "-c", "cd " + (folder / "in") + " && " + command}, 20s);
    ASSERT_EQ(packed.status, 0) << command << "\n" << packed.output;
    place.setArchive(contentOf(folder / "out"));
    std::filesystem::remove(folder / "out");

    EXPECT_EQ(place.unpack(), "ready Karno.app") << command;

    EXPECT_EQ(place.unpackedTree(), treeOf(bundleItems())) << command;
    std::filesystem::remove_all(place.into() + "/Karno.app");
  }
}

TEST(Unpacking, MakesFoldersThatTheArchiveOnlyImplies) {
  UpdatePlace place;
  const std::vector<Item> items{bundleItems()[2], bundleItems()[4]};

  const std::string said = place.unpack(items, Format::TarGzip);

  EXPECT_EQ(said, "ready Karno.app");
  EXPECT_EQ(place.unpackedTree(), treeOf(items));
}

TEST(Unpacking, PassesOverWhatAMacsArchiverAdds) {
  UpdatePlace place;
  const auto items = joined({folder("__MACOSX"), file("._Karno.app", "fork")},
                            joined(bundleItems(), {file("__MACOSX/Karno.app/._Contents", "fork"),
                                                   link("__MACOSX/link", "/etc/passwd"),
                                                   file("Karno.app/Contents/._Info.plist", "fork")}));

  const std::string said = place.unpack(items);

  EXPECT_EQ(said, "ready Karno.app");
  EXPECT_EQ(place.unpackedTree(), treeOf(bundleItems()));
}

TEST(Unpacking, LeavesTheRightToWriteToTheOwnerAlone) {
  UpdatePlace place;
  const auto items = joined(bundleItems(), {folder("Karno.app/a", 07777), file("Karno.app/a/b", "b", 06777),
                                            file("Karno.app/a/c", "c", 0444), folder("Karno.app/d", 0500),
                                            file("Karno.app/e", "e", 0111)});

  const std::string said = place.unpack(items, Format::Tar);

  EXPECT_EQ(said, "ready Karno.app");
  EXPECT_EQ(place.unpackedTree(),
            treeOf(joined(bundleItems(), {folder("Karno.app/a", 0755), file("Karno.app/a/b", "b", 0755),
                                          file("Karno.app/a/c", "c", 0644), folder("Karno.app/d", 0700),
                                          file("Karno.app/e", "e", 0711)})));
}

TEST(Unpacking, TellsNamesApartThatDifferInCase) {
  UpdatePlace place;
  const auto items = joined(bundleItems(), {file("Karno.app/a", "small"), file("Karno.app/A", "large")});

  const std::string said = place.unpack(items);

  EXPECT_EQ(said, "ready Karno.app");
  EXPECT_EQ(place.unpackedTree(), treeOf(items));
}

TEST(Unpacking, KeepsFilesWithHolesAsTheyAre) {
  UpdatePlace place;
  const TemporaryFolder folder;
  writeItems(folder.path(), bundleItems());
  const std::string script = "cd " + folder.path() +
                             " && truncate -s 1M Karno.app/holes && echo middle | dd of=Karno.app/holes bs=1 "
                             "seek=500000 conv=notrunc status=none && tar -cSf out Karno.app";
  ASSERT_EQ(runCommand({"sh", "-c", script}, 20s).status, 0);
  place.setArchive(contentOf(folder / "out"));

  const std::string said = place.unpack();

  EXPECT_EQ(said, "ready Karno.app");
  EXPECT_TRUE(contentOf(place.into() + "/Karno.app/holes") == contentOf(folder / "Karno.app/holes"));
}

TEST(Unpacking, ComparesTheBundleWithThePresentOne) {
  UpdatePlace place;

  EXPECT_EQ(place.unpack(bundleItems({.identifier = "it.vantul.Other"})),
            "3002 The update is of \"it.vantul.Other\", not of \"it.vantul.KarnoWrapper\".");
  EXPECT_EQ(place.unpack(bundleItems({.version = "1"})),
            "4006 The update has version 1, which is not newer than 1.");
  EXPECT_EQ(place.unpack(bundleItems({.version = "0.9"})),
            "4006 The update has version 0.9, which is not newer than 1.");
  EXPECT_EQ(place.unpack(bundleItems({.executable = "Elsewhere"})),
            "3002 The bundle's executable is missing or cannot be executed.");
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(Unpacking, NeedsThePresentBundle) {
  UpdatePlace place;
  place.request.bundle = place.folder() / "Nothing.app";

  EXPECT_EQ(place.unpack(bundleItems()),
            "3002 Of the present bundle: The bundle's Info.plist cannot be read.");
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(Unpacking, TakesNoNameOfABundleWithAControlCharacterInIt) {
  UpdatePlace place;
  for (const char* const name : {"Ka\x7Frno", "Ka\nrno", ""}) {
    auto items = bundleItems();
    for (Item& item : items) item.name.replace(0, 5, name);

    EXPECT_EQ(place.unpack(items), "3002 The archive does not hold exactly one application bundle.");
  }
}

TEST(Unpacking, TakesAnotherNameOfTheBundle) {
  UpdatePlace place;
  auto items = bundleItems();
  for (Item& item : items) item.name.replace(0, 5, "Karno 2");

  EXPECT_EQ(place.unpack(items), "ready Karno 2.app");
}

TEST(Unpacking, TakesAsManyEntriesAsItsLimitSays) {
  UpdatePlace place;
  place.request.limits.entriesMax = bundleItems().size();

  EXPECT_EQ(place.unpack(bundleItems()), "ready Karno.app");
}

TEST(Unpacking, TakesAsManyBytesAsItsLimitSays) {
  UpdatePlace place;
  const auto items = joined(bundleItems(), {file("__MACOSX/passed over", "0123456789")});
  place.request.limits.unpackedBytesMax = bytesIn(items);

  EXPECT_EQ(place.unpack(items), "ready Karno.app");
}

TEST(Unpacking, CountsWhatItPassesOver) {
  UpdatePlace place;
  const auto items = joined(bundleItems(), {file("__MACOSX/passed over", "0123456789")});
  place.request.limits.unpackedBytesMax = bytesIn(items) - 1;

  EXPECT_EQ(place.unpack(joined(items, {file("Karno.app/empty", "")})),
            "3000 The archive is too large when unpacked.");
  EXPECT_EQ(place.unpack(joined({items.back()}, bundleItems())),
            "3000 The archive is too large when unpacked.");
}

TEST(Unpacking, LeavesAFolderAloneThatIsNotEmpty) {
  UpdatePlace place;
  place.folder().write(".karno-update-test/mine", "mine");

  const std::string said = place.unpack(bundleItems());

  EXPECT_EQ(said, "3000 The folder to unpack into is not empty.");
  EXPECT_EQ(place.unpackedTree(), "644 mine: mine\n");
}

TEST(Unpacking, NeedsAFolderThatNobodyElseMayEnter) {
  UpdatePlace place;

  ::chmod(place.into().c_str(), 0710);
  EXPECT_EQ(place.unpack(bundleItems()), "3000 The folder to unpack into is open to others.");
  ::chmod(place.into().c_str(), 0701);
  EXPECT_EQ(place.unpack(bundleItems()), "3000 The folder to unpack into is open to others.");
}

TEST(Unpacking, NeedsAFolder) {
  UpdatePlace place;
  std::filesystem::remove(place.into());
  EXPECT_EQ(place.unpack(bundleItems()),
            "3000 The archive could not be unpacked: No such file or directory.");

  std::filesystem::create_symlink(place.bundle(), place.into());
  EXPECT_EQ(place.unpack(bundleItems()), "3000 The archive could not be unpacked: Not a directory.");
}

TEST(Unpacking, NeedsNoSecondThread) {
  UpdatePlace place;
  const NoThreads none;

  EXPECT_EQ(place.unpack(bundleItems(), Format::TarGzip), "ready Karno.app");
  EXPECT_EQ(place.unpackedTree(), treeOf(bundleItems()));
}

TEST(Unpacking, StopsWhenItIsNoLongerWanted) {
  UpdatePlace place;
  place.goesOn = [](std::uint64_t bytesRead) { return bytesRead == 0; };

  EXPECT_EQ(place.unpack(bundleItems(), Format::TarGzip), "3000 The update was cancelled.");
  EXPECT_EQ(place.unpackedTree(), "");
}

// A zip has a sum of each file's bytes.
TEST(Unpacking, NoticesDamageInAFileThoughTheEntriesBehindItAreWhole) {
  UpdatePlace place;
  std::string noise;
  for (std::uint32_t number = 1; noise.size() < 10'000; number = number * 1'664'525U + 1'013'904'223U)
    noise += static_cast<char>(number >> 24U);
  place.makeArchive(joined({file("Karno.app/noise", noise)}, bundleItems()));
  std::string bytes = contentOf(place.archive());
  bytes.at(5000) = static_cast<char>(bytes.at(5000) ^ 1);
  place.setArchive(bytes);

  const std::string said = place.unpack();

  EXPECT_TRUE(said.starts_with("3000 The archive could not be unpacked: ")) << said;
  EXPECT_EQ(place.unpackedTree(), "");
}

TEST(Unpacking, AsksAlsoInTheMiddleOfALargeFile) {
  UpdatePlace place;
  const auto items = joined(bundleItems(), {file("Karno.app/x", std::string(2'000'000, 'x'))});
  std::size_t questions = 0;
  place.goesOn = [&](std::uint64_t) {
    ++questions;
    return true;
  };

  EXPECT_EQ(place.unpack(items, Format::TarGzip), "ready Karno.app");
  EXPECT_GT(questions, 2 * items.size() + 10);
}

TEST(Unpacking, TellsHowFarItHasCome) {
  UpdatePlace place;
  place.makeArchive(joined(bundleItems(), {file("Karno.app/x", std::string(2'000'000, 'x'))}), Format::Tar);
  std::uint64_t last = 0;
  place.goesOn = [&last](std::uint64_t bytesRead) {
    last = bytesRead;
    return true;
  };

  place.unpack();

  EXPECT_EQ(last, *place.request.lengthInBytes);
}

}  // namespace
}  // namespace karno::test
