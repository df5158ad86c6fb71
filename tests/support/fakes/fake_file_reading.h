#pragma once
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fake_files.h"
#include "platform/file_reading.h"

namespace karno::test {

// Reads the files of the fake file system piece by piece and counts the bytes.
class FakeFileReading final : public platform::FileReading {
 public:
  explicit FakeFileReading(const FakeFiles& files) : files_(files) {}

  platform::Result<std::unique_ptr<platform::ReadableFile>> open(const std::string& path) const override {
    if (auto content = files_.content(path)) {
      return std::unique_ptr<platform::ReadableFile>(
          std::make_unique<ReadableFile>(std::move(content), *bytesRead_));
    }
    return files_.read(path).error();
  }

  std::uint64_t bytesRead() const { return *bytesRead_; }

 private:
  class ReadableFile final : public platform::ReadableFile {
   public:
    ReadableFile(std::shared_ptr<const FakeFiles::Content> content, std::uint64_t& bytesRead)
        : content_(std::move(content)), bytesRead_(bytesRead) {}

    platform::FileIdentity identity() const override {
      return {.device = 1, .number = reinterpret_cast<std::uintptr_t>(content_.get())};
    }

    std::uint64_t sizeInBytes() const override { return content_->bytesBefore + content_->text.size(); }

    platform::Result<std::string> read(std::uint64_t offset, std::size_t bytesMax) const override {
      if (offset >= sizeInBytes()) return std::string();
      const std::uint64_t end = std::min(sizeInBytes(), offset + bytesMax);
      bytesRead_ += end - offset;
      const std::uint64_t before = content_->bytesBefore;
      const std::uint64_t inFront = offset < before ? std::min(end, before) - offset : 0;
      std::string bytes(inFront, 'x');
      if (end > before)
        bytes += content_->text.substr(std::max(offset, before) - before, end - std::max(offset, before));
      return bytes;
    }

   private:
    const std::shared_ptr<const FakeFiles::Content> content_;
    std::uint64_t& bytesRead_;
  };

  const FakeFiles& files_;
  const std::unique_ptr<std::uint64_t> bytesRead_ = std::make_unique<std::uint64_t>(0);
};

}  // namespace karno::test
