#include "platform/linux/updater/curl_downloads.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/linux/updater/update_errors.h"
#include "platform/linux/web/curl_transfer.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform::updates {
namespace {

class Destination final : public URLSink {
 public:
  Destination(int file, const Progress& progress) : file_(file), progress_(progress) {}

  std::optional<Error> take(std::string_view bytes) override {
    const int error = writeAll(file_, bytes);
    return error == 0 ? std::nullopt : std::optional(Error::posix(error));
  }

  std::optional<Error> report(std::uint64_t received, std::uint64_t total) override {
    if (progress_(received, total)) return std::nullopt;
    return updateError(UpdateErrorCode::Cancelled, "The download was cancelled.");
  }

 private:
  const int file_;
  const Progress& progress_;
};

}  // namespace

std::optional<Error> CurlDownloads::download(const std::string& url, const std::string& path,
                                             std::uint64_t bytesMax, const Progress& progress) {
  const ScopedDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.isOpen()) return Error::posix(errno);
  Destination destination(file.get(), progress);
  // A release may be large and a line slow.
  const URLLimits limits{.request = std::chrono::hours(12), .bodyBytesMax = bytesMax};
  return fetchURL(url, userAgentOf(bundles_.mainBundle()), limits, destination);
}

}  // namespace karno::platform::updates
