#include "platform/posix/files/append_stream.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <cerrno>
#include <system_error>

#include "platform/posix/console_line.h"
#include "platform/posix/retry.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {

std::unique_ptr<FileAppendStream> FileAppendStream::open(const std::string& path) {
  ScopedDescriptor file(retryOnInterrupt(
      [&] { return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666); }));
  if (!file.isOpen()) return nullptr;

  std::FILE* stream = ::fdopen(file.get(), "a");
  if (stream == nullptr) return nullptr;
  file.release();
  return std::make_unique<FileAppendStream>(stream, path);
}

void FileAppendStream::writeLine(std::string_view line) {
  if (isFailing_) std::fputc('\n', stream_.get());
  std::fwrite(line.data(), 1, line.size(), stream_.get());
  std::fputc('\n', stream_.get());
}

void FileAppendStream::flush() {
  const bool isWritten = std::fflush(stream_.get()) == 0;
  const int failure = errno;
  if (!isWritten && !isFailing_) {
    writeConsoleLine(
        fmt::format("“{}” cannot be written: {}", path_, std::generic_category().message(failure)));
  }
  std::clearerr(stream_.get());
  isFailing_ = !isWritten;
}

}  // namespace karno::platform
