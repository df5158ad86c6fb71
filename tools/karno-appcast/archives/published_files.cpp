#include "karno-appcast/archives/published_files.h"

#include <fcntl.h>

#include <cerrno>

#include "karno-appcast/archives/mapped_file.h"
#include "karno-appcast/failure.h"
#include "platform/linux/updater/feed/update_address.h"
#include "platform/posix/files/whole_file.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::appcast {
namespace {

using platform::Error;

constexpr const char* kUserAgent = "Karno";

class Text final : public platform::URLSink {
 public:
  std::optional<Error> take(std::string_view bytes) override {
    text_ += bytes;
    return std::nullopt;
  }
  std::string&& text() && { return std::move(text_); }

 private:
  std::string text_;
};

class File final : public platform::URLSink {
 public:
  explicit File(int descriptor) : descriptor_(descriptor) {}
  std::optional<Error> take(std::string_view bytes) override {
    const int error = platform::writeAll(descriptor_, bytes);
    return error == 0 ? std::nullopt : std::optional(Error::posix(error));
  }

 private:
  const int descriptor_;
};

void fetchSafely(const std::string& url, const platform::URLLimits& limits, platform::URLSink& sink,
                 const Fetch& fetch) {
  if (const auto refusal = platform::updates::refusalOfAddress(url))
    throw Failure(refusal->localizedDescription());
  if (const auto error = fetch(url, limits, sink))
    throw Failure("cannot fetch " + url + ": " + error->localizedDescription());
}

}  // namespace

std::optional<Error> fetchFromTheWeb(const std::string& url, const platform::URLLimits& limits,
                                     platform::URLSink& sink) {
  return platform::fetchURL(url, kUserAgent, limits, sink);
}

std::string readFeed(const std::string& place, const Fetch& fetch) {
  if (place.find("://") != std::string::npos) {
    Text text;
    fetchSafely(place, {.bodyBytesMax = kFeedBytesMax}, text, fetch);
    return std::move(text).text();
  }
  auto file = platform::readWholeFile(place);
  if (!file) throw systemFailure("cannot read " + place, static_cast<int>(file.error().code()));
  if (file.value().bytes.size() > kFeedBytesMax)
    throw Failure(place + " is larger than 16 MiB, and launchers read no more");
  return std::move(file.value().bytes);
}

void fetchInto(const std::string& path, const std::string& url, const Fetch& fetch) {
  const platform::ScopedDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.isOpen()) throw systemFailure("cannot make " + path, errno);
  File sink(file.get());
  // A release may be large and a line slow.
  fetchSafely(url, {.request = std::chrono::hours(12), .bodyBytesMax = kArchiveBytesMax}, sink, fetch);
}

void fetchPage(const std::string& url, const Fetch& fetch) {
  Text text;
  fetchSafely(url, {}, text, fetch);
}

}  // namespace karno::appcast
