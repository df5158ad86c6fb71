#pragma once
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "platform/files.h"

namespace karno::platform {

// An AppendStream on a C stream, whose buffer it has until flush() or its end. A line on the console says
// when it begins to fail, and why; a line that could not be written whole does not join the one after it.
class FileAppendStream final : public AppendStream {
 public:
  // Null when the file cannot be opened.
  static std::unique_ptr<FileAppendStream> open(const std::string& path);

  FileAppendStream(std::FILE* stream, std::string path) : stream_(stream), path_(std::move(path)) {}

  void writeLine(std::string_view line) override;
  void flush() override;

 private:
  struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
  };

  const std::unique_ptr<std::FILE, Close> stream_;
  const std::string path_;
  bool isFailing_ = false;
};

}  // namespace karno::platform
