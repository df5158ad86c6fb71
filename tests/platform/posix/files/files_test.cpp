#include "platform/posix/files/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "../../support/scoped_environment.h"
#include "../../support/standard_error_capture.h"
#include "../../support/temporary_folder.h"
#include "elements_are.h"
#include "platform/posix/files/folder_walk.h"
#include "platform/posix/files/whole_file.h"

namespace karno::platform {
namespace {

using karno::test::ElementsAre;
using test::contentOf;
using test::ScopedEnvironment;
using test::StandardErrorCapture;
using test::TemporaryFolder;

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

TEST(PosixFiles, HaveTheirPlaceBelowTheRootWhereThatIsTheHomeFolder) {
  const ScopedEnvironment home("HOME", "/");

  EXPECT_THAT(PosixFiles().searchPath(UserFolder::Library), ElementsAre("/Library"));
}

TEST(PosixFiles, FindsTheLibraryOfTheWholeMachineInItsRoot) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "/some/machine");

  EXPECT_EQ(PosixFiles().localLibraryFolders(), std::vector<std::string>{"/some/machine/Library"});
}

TEST(PosixFiles, ReadsAFileThatTellsNoSize) {
  const PosixFiles files;

  const auto read = files.read("/proc/self/comm");

  ASSERT_TRUE(read);
  EXPECT_FALSE(read.value().empty());
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

TEST(PosixFiles, TellsSizesOfFilesWithUnusualNames) {
  const TemporaryFolder folder;
  const std::string path = folder.write(kNameThatIsNoUTF8, "12345");
  const PosixFiles files;

  EXPECT_TRUE(files.fileExists(path));
  EXPECT_EQ(files.sizeInBytes(path), 5U);
}

TEST(PosixFiles, CreatesAFileAsReadableAsThoseOfOtherPrograms) {
  const TemporaryFolder folder;
  const std::string ofOthers = folder.write("other", "");

  EXPECT_EQ(PosixFiles().createFile(folder / "file"), std::nullopt);

  EXPECT_EQ(std::filesystem::status(folder / "file").permissions(),
            std::filesystem::status(ofOthers).permissions());
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

// As long as the file may grow no further, which a disk that is full comes to.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : before_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &usual_);
    const rlimit limit{bytes, usual_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &usual_);
    ::signal(SIGXFSZ, before_);
  }

 private:
  void (*const before_)(int);
  rlimit usual_ = {};
};

TEST(PosixFiles, SaysOnceWhyAStreamCannotBeWritten) {
  const TemporaryFolder folder;
  folder.write("log", std::string(1000, 'x'));
  const FileSizeLimit limit(1000);
  const StandardErrorCapture console;
  const auto stream = PosixFiles().openForAppending(folder / "log");
  ASSERT_NE(stream, nullptr);

  for (const char* line : {"lost", "lost as well"}) {
    stream->writeLine(line);
    stream->flush();
  }

  EXPECT_EQ(console.text(), "“" + (folder / "log") + "” cannot be written: File too large\n");
}

TEST(PosixFiles, GoesOnWithAWholeLineOnceThereIsRoomAgain) {
  const TemporaryFolder folder;
  PosixFiles files;
  const auto stream = files.openForAppending(folder / "log");
  const auto write = [&stream](const char* line) {
    stream->writeLine(line);
    stream->flush();
  };

  write("first");
  {
    const FileSizeLimit limit(8);
    write("second");
    write("third");
  }
  write("fourth");
  write("fifth");

  EXPECT_EQ(contentOf(folder / "log"), "first\nse\nfourth\nfifth\n");
}

TEST(ReplaceFile, LeavesNothingBehindWhenItFails) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "taken/inner");

  EXPECT_NE(replaceFile(folder / "taken", "new"), 0);

  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()),
                          std::filesystem::directory_iterator()),
            1);
}

}  // namespace
}  // namespace karno::platform
