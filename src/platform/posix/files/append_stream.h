#pragma once
#include <cstdio>
#include <memory>
#include <string>

#include "platform/files.h"

namespace karno::platform {

// An AppendStream on a C stream, whose buffer it has until flush() or its end.
class FileAppendStream final : public AppendStream {
 public:
  // Null when the file cannot be opened.
  static std::unique_ptr<FileAppendStream> open(const std::string& path);

  explicit FileAppendStream(std::FILE* stream) : stream_(stream) {}

  void writeLine(std::string_view line) override;
  void flush() override;

 private:
  struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
  };

  std::unique_ptr<std::FILE, Close> stream_;
};

}  // namespace karno::platform
