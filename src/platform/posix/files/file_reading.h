#pragma once
#include "platform/file_reading.h"

namespace karno::platform {

class PosixFileReading final : public FileReading {
 public:
  Result<std::unique_ptr<ReadableFile>> open(const std::string& path) const override;
};

}  // namespace karno::platform
