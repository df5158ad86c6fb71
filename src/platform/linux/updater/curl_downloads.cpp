#include "platform/linux/updater/curl_downloads.h"

#include <fcntl.h>

#include <cerrno>
#include <string_view>

#include "platform/linux/updater/update_errors.h"
#include "platform/linux/web/curl_transfer.h"
#include "platform/linux/web/url_address.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform::updates {
namespace {

constexpr long kFirstFailure = 400;

// Where the bytes of one transfer go.
struct Destination {
  const CurlTransfer& transfer;
  int file = -1;
  std::uint64_t bytesMax = 0;
  const Progress& progress;
  std::uint64_t received = 0;
  int writeError = 0;
  bool isCancelled = false;
};

// Bodies of redirects and failures are none of the file's.
bool isWanted(const CurlTransfer& transfer) {
  const long status = transfer.number(CURLINFO_RESPONSE_CODE);
  return status >= 200 && status < 300;
}

// libcurl's write function: a result other than the number of bytes ends the transfer.
std::size_t take(const char* bytes, std::size_t size, std::size_t count, void* pointer) {
  Destination& destination = *static_cast<Destination*>(pointer);
  const std::size_t length = size * count;
  if (!isWanted(destination.transfer)) return length;
  if (length > destination.bytesMax - destination.received) return 0;
  destination.writeError = writeAll(destination.file, {bytes, length});
  if (destination.writeError != 0) return 0;
  destination.received += length;
  return length;
}

// libcurl's progress function: a result other than 0 ends the transfer. Also called when nothing comes.
int report(void* pointer, curl_off_t total, curl_off_t, curl_off_t, curl_off_t) {
  Destination& destination = *static_cast<Destination*>(pointer);
  const auto expected = total > 0 && isWanted(destination.transfer) ? static_cast<std::uint64_t>(total) : 0;
  destination.isCancelled = !destination.progress(destination.received, expected);
  return destination.isCancelled ? 1 : 0;
}

std::optional<Error> failureOf(const Destination& destination, CURLcode failure,
                               const std::string& serverName) {
  if (destination.isCancelled) return updateError(UpdateErrorCode::Cancelled, "The download was cancelled.");
  if (destination.writeError != 0) return Error::posix(destination.writeError);
  if (failure != CURLE_OK) return urlError(destination.transfer.codeOf(failure), serverName);
  return std::nullopt;
}

// Asks once. Absent error with a redirect: nothing has been written.
struct Step {
  std::optional<Error> error;
  std::optional<std::string> redirectTarget;
};

Step ask(const CurlLibrary& curl, const std::string& url, const URLAddress& address,
         const std::string& userAgent, const URLLimits& limits, int file, std::uint64_t bytesMax,
         const Progress& progress) {
  CurlTransfer transfer(curl);
  if (!transfer) return {.error = urlError(URLErrorCode::Unknown), .redirectTarget = {}};
  Destination destination{.transfer = transfer, .file = file, .bytesMax = bytesMax, .progress = progress};
  transfer.prepare(url, userAgent, limits);
  transfer.set(CURLOPT_WRITEFUNCTION, &take);
  transfer.set(CURLOPT_WRITEDATA, static_cast<void*>(&destination));
  transfer.set(CURLOPT_XFERINFOFUNCTION, &report);
  transfer.set(CURLOPT_XFERINFODATA, static_cast<void*>(&destination));
  transfer.set(CURLOPT_NOPROGRESS, 0L);
  const CURLcode failure = transfer.perform();
  Step step{.error = failureOf(destination, failure, address.host),
            .redirectTarget = transfer.text(CURLINFO_REDIRECT_URL)};
  const bool isRefused = transfer.number(CURLINFO_RESPONSE_CODE) >= kFirstFailure;
  if (!step.error && isRefused) step.error = unopenedFile(address.lastPathComponent);
  return step;
}

}  // namespace

std::optional<Error> CurlDownloads::download(const std::string& url, const std::string& path,
                                             std::uint64_t bytesMax, const Progress& progress) {
  const Result<CurlLibrary>& curl = CurlLibrary::instance();
  if (!curl) return curl.error();
  const ScopedDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.isOpen()) return Error::posix(errno);

  std::string current = url;
  for (int redirects = 0; redirects <= limits_.redirectsMax; ++redirects) {
    const Result<URLAddress> address = addressOf(current);
    if (!address) return address.error();
    if (redirects > 0 && !address.value().isSecure())
      return urlError(URLErrorCode::InsecureConnectionRefused);
    const Step step = ask(curl.value(), current, address.value(), userAgentOf(bundles_.mainBundle()), limits_,
                          file.get(), bytesMax, progress);
    if (step.error || !step.redirectTarget) return step.error;
    current = *step.redirectTarget;
  }
  return urlError(URLErrorCode::TooManyRedirects);
}

}  // namespace karno::platform::updates
