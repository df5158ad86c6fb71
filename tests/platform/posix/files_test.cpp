#include "platform/posix/files.h"
#include "elements_are.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "../support/scoped_environment.h"
#include "../support/temporary_folder.h"
#include "platform/posix/folder_walk.h"
#include "platform/posix/whole_file.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using test::ScopedEnvironment;
using test::TemporaryFolder;
using testing::UnorderedElementsAre;

constexpr const char* kNameThatIsNoUTF8 = "caf\xE9 \xFF.txt";

std::vector<std::string> pathsIn(const Files& files, const std::string& folder) {
  std::vector<std::string> paths;
  files.enumerate(folder, [&](const DirectoryEntry& entry) {
    paths.push_back(entry.relativePath);
    return true;
  });
  return paths;
}

TEST(PosixFiles, FindsTheUsersFoldersInTheHomeFolder) {
  const ScopedEnvironment home("HOME", "/home/ann/");
  const PosixFiles files;

  EXPECT_EQ(files.homeDirectory(), "/home/ann");
  EXPECT_THAT(files.searchPath(UserFolder::Library), ElementsAre("/home/ann/Library"));
  EXPECT_THAT(files.searchPath(UserFolder::Caches), ElementsAre("/home/ann/Library/Caches"));
  EXPECT_THAT(files.searchPath(UserFolder::Downloads), ElementsAre("/home/ann/Downloads"));
  EXPECT_THAT(files.searchPath(UserFolder::Applications), ElementsAre("/home/ann/Applications"));
  EXPECT_THAT(files.searchPath(UserFolder::Trash), ElementsAre("/home/ann/.Trash"));
}

TEST(PosixFiles, TakesTheHomeFolderOfTheAccountWithoutHOME) {
  const ScopedEnvironment home("HOME", std::nullopt);
  const PosixFiles files;

  EXPECT_EQ(files.homeDirectory(), ::getpwuid(::getuid())->pw_dir);
  EXPECT_TRUE(files.fileExists(files.homeDirectory()));
}

TEST(PosixFiles, FindsTheLibraryOfTheWholeMachineInItsRoot) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "/some/machine");

  EXPECT_EQ(PosixFiles().localLibraryFolders(), std::vector<std::string>{"/some/machine/Library"});
}

TEST(PosixFiles, ReadsAFileWithAnyBytes) {
  const TemporaryFolder folder;
  const std::string content("a\0b\xFF\n", 5);
  const PosixFiles files;

  const auto read = files.read(folder.write("file", content));

  ASSERT_TRUE(read);
  EXPECT_EQ(read.value(), content);
}

TEST(PosixFiles, ReadsAFileThatTellsNoSize) {
  const PosixFiles files;

  const auto read = files.read("/proc/self/comm");

  ASSERT_TRUE(read);
  EXPECT_FALSE(read.value().empty());
}

TEST(PosixFiles, RefusesToReadAFolder) {
  const TemporaryFolder folder;
  const PosixFiles files;

  const auto read = files.read(folder.path());

  ASSERT_FALSE(read);
  EXPECT_EQ(read.error(), Error::posix(EISDIR));
}

TEST(PosixFiles, RefusesToReadAPipeInsteadOfWaitingForAWriter) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  const PosixFiles files;

  const auto read = files.read(folder / "pipe");

  ASSERT_FALSE(read);
  EXPECT_EQ(read.error(), Error::posix(EINVAL));
}

TEST(PosixFiles, RefusesToReadAFileAboveTheLimit) {
  const TemporaryFolder folder;
  const std::string path = folder.write("big", "");
  std::filesystem::resize_file(path, kFileReadBytesMax + 1);
  const PosixFiles files;

  const auto read = files.read(path);

  ASSERT_FALSE(read);
  EXPECT_EQ(read.error(), Error::posix(EFBIG));
}

TEST(PosixFiles, ReadsAFileJustAtTheLimit) {
  const TemporaryFolder folder;
  const std::string path = folder.write("big", "");
  std::filesystem::resize_file(path, kFileReadBytesMax);
  const PosixFiles files;

  const auto read = files.read(path);

  ASSERT_TRUE(read);
  EXPECT_EQ(read.value().size(), kFileReadBytesMax);
}

TEST(PosixFiles, SaysWhichFileIsMissing) {
  const TemporaryFolder folder;
  const PosixFiles files;

  EXPECT_FALSE(files.fileExists(folder / "none"));
  EXPECT_EQ(files.sizeInBytes(folder / "none"), std::nullopt);
  EXPECT_EQ(files.read(folder / "none").error(), Error::posix(ENOENT));
}

TEST(PosixFiles, TellsSizesOfFilesWithUnusualNames) {
  const TemporaryFolder folder;
  const std::string path = folder.write(kNameThatIsNoUTF8, "12345");
  const PosixFiles files;

  EXPECT_TRUE(files.fileExists(path));
  EXPECT_EQ(files.sizeInBytes(path), 5U);
}

TEST(PosixFiles, ReadsWhereALinkLeadsWithoutFollowingItFurther) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("../some/where else", folder / "link");
  const PosixFiles files;

  const auto destination = files.destinationOfSymbolicLink(folder / "link");

  ASSERT_TRUE(destination);
  EXPECT_EQ(destination.value(), "../some/where else");
}

TEST(PosixFiles, SaysWhenAFileIsNoLink) {
  const TemporaryFolder folder;
  const PosixFiles files;

  EXPECT_EQ(files.destinationOfSymbolicLink(folder.write("file", "")).error(), Error::posix(EINVAL));
  EXPECT_EQ(files.destinationOfSymbolicLink(folder / "none").error(), Error::posix(ENOENT));
}

TEST(PosixFiles, CreatesAFolderWithThoseAboveItAndIsContentWithOneThatIsThere) {
  const TemporaryFolder folder;
  PosixFiles files;

  EXPECT_EQ(files.createDirectory(folder / "a/b/c"), std::nullopt);
  EXPECT_EQ(files.createDirectory(folder / "a/b/c"), std::nullopt);

  EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b/c"));
}

TEST(PosixFiles, CreatesNoFolderWhereAFileIsInTheWay) {
  const TemporaryFolder folder;
  folder.write("file", "");
  PosixFiles files;

  EXPECT_EQ(files.createDirectory(folder / "file"), Error::posix(ENOTDIR));
  EXPECT_EQ(files.createDirectory(folder / "file/inner"), Error::posix(ENOTDIR));
}

TEST(PosixFiles, RemovesAFolderWithAllItHoldsButNotWhatLinksLeadTo) {
  const TemporaryFolder folder;
  folder.write("kept/inner", "precious");
  folder.write("gone/deep/file", "");
  std::filesystem::create_symlink(folder / "kept", folder / "gone/link");
  PosixFiles files;

  EXPECT_EQ(files.remove(folder / "gone"), std::nullopt);

  EXPECT_FALSE(std::filesystem::exists(folder / "gone"));
  EXPECT_EQ(test::contentOf(folder / "kept/inner"), "precious");
}

TEST(PosixFiles, RemovesALinkAndNotItsTarget) {
  const TemporaryFolder folder;
  folder.write("kept/inner", "precious");
  std::filesystem::create_directory_symlink(folder / "kept", folder / "link");
  PosixFiles files;

  EXPECT_EQ(files.remove(folder / "link"), std::nullopt);

  EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(test::contentOf(folder / "kept/inner"), "precious");
}

TEST(PosixFiles, SaysWhenThereIsNothingToRemove) {
  const TemporaryFolder folder;
  PosixFiles files;

  EXPECT_EQ(files.remove(folder / "none"), Error::posix(ENOENT));
}

TEST(PosixFiles, MovesAFileWithItsContent) {
  const TemporaryFolder folder;
  const std::string from = folder.write("from", "content");
  PosixFiles files;

  EXPECT_EQ(files.move(from, folder / "to"), std::nullopt);

  EXPECT_FALSE(std::filesystem::exists(from));
  EXPECT_EQ(test::contentOf(folder / "to"), "content");
}

TEST(PosixFiles, DoesNotMoveBetweenFileSystems) {
  const TemporaryFolder folder;
  const std::string from = folder.write("from", "content");
  const std::string to = "/dev/shm/karno-test-" + std::to_string(::getpid());
  PosixFiles files;

  EXPECT_EQ(files.move(from, to), Error::posix(EXDEV));

  EXPECT_EQ(test::contentOf(from), "content");
  EXPECT_FALSE(std::filesystem::exists(to));
}

TEST(PosixFiles, WalksAFolderWithTypesAndPaths) {
  const TemporaryFolder folder;
  folder.write("folder/inner/file", "");
  std::filesystem::create_symlink("folder", folder / "link");
  ::mkfifo((folder / "pipe").c_str(), 0600);
  const PosixFiles files;

  std::vector<std::pair<std::string, FileType>> seen;
  files.enumerate(folder.path(), [&](const DirectoryEntry& entry) {
    seen.emplace_back(entry.relativePath, entry.type);
    return true;
  });

  EXPECT_THAT(seen, UnorderedElementsAre(std::pair("folder", FileType::Directory),
                                         std::pair("folder/inner", FileType::Directory),
                                         std::pair("folder/inner/file", FileType::Regular),
                                         std::pair("link", FileType::SymbolicLink),
                                         std::pair("pipe", FileType::Other)));
}

TEST(PosixFiles, ShowsAFolderBeforeWhatItHolds) {
  const TemporaryFolder folder;
  folder.write("a/b/c", "");
  const PosixFiles files;

  EXPECT_THAT(pathsIn(files, folder.path()), ElementsAre("a", "a/b", "a/b/c"));
}

TEST(PosixFiles, DoesNotEnterAFolderThatTheVisitorDeclines) {
  const TemporaryFolder folder;
  folder.write("closed/file", "");
  const PosixFiles files;
  std::vector<std::string> seen;

  files.enumerate(folder.path(), [&](const DirectoryEntry& entry) {
    seen.push_back(entry.relativePath);
    return false;
  });

  EXPECT_THAT(seen, ElementsAre("closed"));
}

TEST(PosixFiles, DoesNotWalkDownWithoutEnd) {
  const TemporaryFolder folder;
  std::filesystem::path deep = folder.path();
  for (int i = 0; i < kFolderDepthMax + 10; ++i) deep /= "d";
  std::filesystem::create_directories(deep);
  const PosixFiles files;

  EXPECT_THAT(pathsIn(files, folder.path()), testing::SizeIs(kFolderDepthMax));
}

TEST(PosixFiles, WalksOverNamesThatAreNoUTF8) {
  const TemporaryFolder folder;
  folder.write(kNameThatIsNoUTF8, "");
  const PosixFiles files;

  EXPECT_THAT(pathsIn(files, folder.path()), ElementsAre(kNameThatIsNoUTF8));
}

TEST(PosixFiles, AMissingFolderAndAFileHaveNoEntries) {
  const TemporaryFolder folder;
  const PosixFiles files;

  EXPECT_THAT(pathsIn(files, folder / "none"), ElementsAre());
  EXPECT_THAT(pathsIn(files, folder.write("file", "")), ElementsAre());
}

TEST(PosixFiles, TellsWhenAFileWasCreatedWhateverItsOtherTimesSay) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "");
  std::filesystem::last_write_time(path,
                                   std::filesystem::file_time_type::clock::now() - std::chrono::hours(1000));
  const PosixFiles files;
  std::optional<Date> created;

  files.enumerate(folder.path(), [&](const DirectoryEntry& entry) {
    created = entry.creationDate;
    return true;
  });

  ASSERT_TRUE(created);
  EXPECT_LT(std::chrono::abs(std::chrono::system_clock::now() - *created), std::chrono::minutes(1));
}

TEST(PosixFiles, DoesNotTakeALaterChangeOfAFileForItsCreation) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "");
  const PosixFiles files;
  std::vector<std::optional<Date>> created;
  const auto note = [&](const DirectoryEntry& entry) {
    created.push_back(entry.creationDate);
    return true;
  };

  files.enumerate(folder.path(), note);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  ::chmod(path.c_str(), 0600);
  files.enumerate(folder.path(), note);

  ASSERT_EQ(created.size(), 2U);
  EXPECT_EQ(created[0], created[1]);
}

TEST(PosixFiles, AppendsLinesToWhatIsThere) {
  const TemporaryFolder folder;
  const std::string path = folder.write("log", "old\n");
  PosixFiles files;

  const auto stream = files.openForAppending(path);
  ASSERT_NE(stream, nullptr);
  stream->writeLine("first");
  stream->writeLine("");
  stream->flush();

  EXPECT_EQ(test::contentOf(path), "old\nfirst\n\n");
}

TEST(PosixFiles, AppendedLinesReachTheFileAtTheLatestWhenTheStreamGoes) {
  const TemporaryFolder folder;
  PosixFiles files;

  files.openForAppending(folder / "log")->writeLine("only");

  EXPECT_EQ(test::contentOf(folder / "log"), "only\n");
}

TEST(PosixFiles, OpensNothingForAppendingInAMissingFolder) {
  const TemporaryFolder folder;
  PosixFiles files;

  EXPECT_EQ(files.openForAppending(folder / "none/log"), nullptr);
  EXPECT_EQ(files.openForAppending(folder.path()), nullptr);
}

TEST(PosixFiles, FailsQuietlyWhenTheDiskIsFull) {
  PosixFiles files;

  const auto stream = files.openForAppending("/dev/full");
  ASSERT_NE(stream, nullptr);
  stream->writeLine("lost");
  stream->flush();

  EXPECT_TRUE(files.fileExists("/dev/full"));
}

}  // namespace
}  // namespace karno::platform
