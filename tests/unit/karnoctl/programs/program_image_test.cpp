#include "karnoctl/programs/program_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "made_up_programs.h"

namespace karno::karnoctl {
namespace {

using ::testing::IsEmpty;

using test::ELF;
using test::kAppleSilicon;
using test::kELFArm;
using test::kIntel;
using test::MachO;
using test::Numbers;
using test::universal;

class FileInMemory : public platform::ReadableFile {
 public:
  explicit FileInMemory(std::string bytes) : bytes_(std::move(bytes)) {}

  platform::FileIdentity identity() const override { return {}; }
  std::uint64_t sizeInBytes() const override { return bytes_.size(); }
  platform::Result<std::string> read(std::uint64_t offset, std::size_t bytesMax) const override {
    return bytes_.substr(std::min<std::uint64_t>(offset, bytes_.size()), bytesMax);
  }

 private:
  const std::string bytes_;
};

platform::Result<ProgramImage> imageOf(const std::string& bytes) { return programImage(FileInMemory(bytes)); }

std::string objectionTo(const std::string& bytes) {
  const auto image = imageOf(bytes);
  return image ? "none" : image.error().localizedDescription();
}

// The sizes to which the file can be cut and still count as a program.
std::vector<std::size_t> cutsThatAreTaken(const std::string& bytes) {
  std::vector<std::size_t> taken;
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    if (imageOf(bytes.substr(0, size))) taken.push_back(size);
  }
  return taken;
}

TEST(ProgramImage, IsReadFromAMacProgramForOneProcessor) {
  const auto image = imageOf(MachO{.processor = kAppleSilicon}.bytes());

  ASSERT_TRUE(image) << image.error().description();
  EXPECT_EQ(image.value(), (ProgramImage{ProgramSystem::MacOS, {{"arm64", true}}}));
}

TEST(ProgramImage, HasASliceForEachProcessorOfAUniversalProgram) {
  const auto image =
      imageOf(universal({{.processor = kIntel}, {.processor = kAppleSilicon, .isSigned = false}}));

  ASSERT_TRUE(image) << image.error().description();
  EXPECT_EQ(image.value(), (ProgramImage{ProgramSystem::MacOS, {{"x86_64", true}, {"arm64", false}}}));
}

TEST(ProgramImage, IsReadFromAProgramOfLinux) {
  EXPECT_EQ(imageOf(ELF{}.bytes()).value(), (ProgramImage{ProgramSystem::Linux, {{"x86_64", false}}}));
  EXPECT_EQ(imageOf(ELF{.processor = kELFArm, .kind = 2}.bytes()).value(),
            (ProgramImage{ProgramSystem::Linux, {{"arm64", false}}}));
}

TEST(ProgramImage, GivesProcessorsWithoutANameTheirNumber) {
  EXPECT_EQ(imageOf(ELF{.processor = 243}.bytes()).value().slices.front().processor, "processor 243");
  EXPECT_EQ(imageOf(MachO{.processor = 18}.bytes()).value().slices.front().processor, "processor 0x12");
}

TEST(ProgramImage, IsReadInTheByteOrderOfTheFile) {
  EXPECT_EQ(imageOf(MachO{.isBigEndian = true}.bytes()).value(),
            (ProgramImage{ProgramSystem::MacOS, {{"x86_64", true}}}));
  EXPECT_EQ(imageOf(ELF{.processor = kELFArm, .isBigEndian = true}.bytes()).value(),
            (ProgramImage{ProgramSystem::Linux, {{"arm64", false}}}));
}

TEST(ProgramImage, IsNotSignedWithAnEmptySignature) {
  EXPECT_FALSE(imageOf(MachO{.signatureBytes = 0}.bytes()).value().slices.front().isSigned);
}

TEST(ProgramImage, IsNotInOtherFiles) {
  EXPECT_EQ(objectionTo(""), "it is empty");
  EXPECT_EQ(objectionTo("# a text"), "its first bytes are those of no program");
  EXPECT_EQ(objectionTo("\xbe\xba\xfe\xca" + std::string(100, '\0')),
            "its first bytes are those of no program");
}

TEST(ProgramImage, IsAScriptWithTheInterpreterThatItNames) {
  EXPECT_EQ(imageOf("#!/bin/sh\nexit 0\n").value().interpreter, "/bin/sh");
  EXPECT_EQ(imageOf("#! /usr/bin/env python3\n").value().interpreter, "/usr/bin/env");
  EXPECT_EQ(imageOf("#!/bin/sh").value().interpreter, "/bin/sh");
  EXPECT_TRUE(imageOf("#!/bin/sh\n").value().slices.empty());
  EXPECT_EQ(objectionTo("#!\n/bin/sh\n"), "it is a script that names no interpreter");
}

// The number of Java's format stands where a universal program has the count of its slices.
TEST(ProgramImage, IsNotInAClassFileOfJava) {
  EXPECT_EQ(objectionTo(Numbers(true).u32(0xcafebabe).u32(52).text() + std::string(100, 'x')),
            "its first bytes are those of no program");
}

TEST(ProgramImage, IsNotInLibrariesAndObjectFiles) {
  EXPECT_EQ(objectionTo(MachO{.kind = 6}.bytes()), "it is a library or an object file");
  EXPECT_EQ(objectionTo(ELF{.kind = 1}.bytes()), "it is an object file");
}

TEST(ProgramImage, IsNotInProgramsOf32Bits) {
  EXPECT_EQ(objectionTo(MachO{.magic = 0xfeedface}.bytes()), "it is for 32-bit processors");
  EXPECT_EQ(objectionTo(ELF{.width = 1}.bytes()), "it is for 32-bit processors");
  EXPECT_EQ(objectionTo(ELF{.isBigEndian = true, .width = 1}.bytes()), "it is for 32-bit processors");
}

TEST(ProgramImage, WantsCodeForAProcessor) {
  EXPECT_EQ(objectionTo(universal({})), "it has no code for any processor");
}

TEST(ProgramImage, WantsEachSliceToBeWhatTheListSays) {
  std::string program = universal({{.processor = kIntel}});
  program.replace(8, 4, Numbers(true).u32(kAppleSilicon).text());

  EXPECT_EQ(objectionTo(program), "one of its slices is for another processor than it says");
}

TEST(ProgramImage, WantsEachSliceToBeAProgram) {
  std::string program = universal({{.processor = kIntel}});
  program.replace(28, 4, "text");

  EXPECT_EQ(objectionTo(program), "one of its slices is no program");
}

TEST(ProgramImage, WantsSlicesWithinTheFile) {
  const Numbers list =
      Numbers(true).u32(0xcafebabe).u32(1).u32(kIntel).u32(0).u32(0xfffffff0).u32(0x40).u32(0);

  EXPECT_EQ(objectionTo(list.text()), "its end is missing");
}

TEST(ProgramImage, WantsWideOffsetsWithinTheFile) {
  const Numbers list =
      Numbers(true).u32(0xcafebabf).u32(1).u32(kIntel).u32(0).u64(~0ULL).u64(2).u32(0).u32(0);

  EXPECT_EQ(objectionTo(list.text()), "its end is missing");
}

TEST(ProgramImage, RefusesAbsurdCounts) {
  EXPECT_EQ(objectionTo(MachO{.commandCount = 0xffffffff}.bytes()), "its headers are damaged");
  EXPECT_EQ(objectionTo(MachO{.commandBytes = 0xffffffff}.bytes()), "its headers are damaged");
  EXPECT_EQ(objectionTo(MachO{.segmentCommandBytes = 0}.bytes()), "its headers are damaged");
  EXPECT_EQ(objectionTo(MachO{.segmentCommandBytes = 0xffffffff}.bytes()), "its headers are damaged");
  EXPECT_EQ(objectionTo(ELF{.segmentCount = 0}.bytes()), "its headers are damaged");
  EXPECT_EQ(objectionTo(ELF{.segmentCount = 0xffff}.bytes()), "its headers are damaged");
  EXPECT_EQ(objectionTo(ELF{.segmentEntryBytes = 1}.bytes()), "its headers are damaged");
  EXPECT_EQ(objectionTo(ELF{.width = 9}.bytes()), "its headers are damaged");
}

TEST(ProgramImage, RefusesALastCommandThatEndsBehindTheOthers) {
  EXPECT_EQ(objectionTo(MachO{.commandCount = 1, .segmentCommandBytes = 0xffffff}.bytes()),
            "its headers are damaged");
}

TEST(ProgramImage, HasUpToSixteenSlices) {
  const auto image = imageOf(universal(std::vector<MachO>(16)));

  ASSERT_TRUE(image) << image.error().description();
  EXPECT_EQ(image.value().slices.size(), 16U);
  EXPECT_EQ(objectionTo(universal(std::vector<MachO>(17))), "its first bytes are those of no program");
}

TEST(ProgramImage, MissesWhatCannotBeReadOfAFileThatSaysMore) {
  class FileThatSaysMore final : public FileInMemory {
    using FileInMemory::FileInMemory;
    platform::Result<std::string> read(std::uint64_t offset, std::size_t bytesMax) const override {
      return FileInMemory::read(offset, std::min<std::size_t>(bytesMax, 20));
    }
  };

  const auto image = programImage(FileThatSaysMore(MachO{}.bytes()));

  ASSERT_FALSE(image);
  EXPECT_EQ(image.error().localizedDescription(), "its end is missing");
}

TEST(ProgramImage, MissesCodeBehindTheEndOfTheFile) {
  EXPECT_EQ(objectionTo(MachO{.segmentBytes = 121}.bytes()), "its end is missing");
  EXPECT_EQ(objectionTo(MachO{.segmentBytes = ~0ULL}.bytes()), "its end is missing");
  EXPECT_EQ(objectionTo(MachO{.signatureBytes = 1000}.bytes()), "its end is missing");
  EXPECT_EQ(objectionTo(ELF{.segmentsOffset = ~0ULL}.bytes()), "its end is missing");
  EXPECT_EQ(objectionTo(ELF{.segmentBytes = 121}.bytes()), "its end is missing");
  EXPECT_EQ(objectionTo(ELF{.sectionsOffset = 121}.bytes()), "its end is missing");
}

TEST(ProgramImage, SaysWhyTheFileCannotBeRead) {
  class FileOnADamagedDisk final : public FileInMemory {
    using FileInMemory::FileInMemory;
    platform::Result<std::string> read(std::uint64_t, std::size_t) const override {
      return platform::Error::posix(EIO);
    }
  };

  const auto image = programImage(FileOnADamagedDisk(std::string(1000, 'x')));

  ASSERT_FALSE(image);
  EXPECT_EQ(image.error().localizedDescription(), "The operation couldn’t be completed. Input/output error");
}

TEST(ProgramImage, IsInNoFileThatWasCutOffAnywhere) {
  EXPECT_THAT(cutsThatAreTaken(universal({{.processor = kIntel}})), IsEmpty());
  EXPECT_THAT(cutsThatAreTaken(MachO{}.bytes()), IsEmpty());
  EXPECT_THAT(cutsThatAreTaken(ELF{}.bytes()), IsEmpty());
}

}  // namespace
}  // namespace karno::karnoctl
