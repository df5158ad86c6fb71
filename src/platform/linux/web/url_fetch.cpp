#include "platform/linux/web/url_fetch.h"

#include <exception>

#include "platform/linux/web/curl_transfer.h"
#include "platform/linux/web/url_address.h"
#include "platform/linux/web/url_errors.h"

namespace karno::platform {
namespace {

// One request of a chain of redirects, and what came of it.
struct Request {
  CurlTransfer transfer;
  URLSink& sink;
  std::uint64_t bytesMax = 0;
  std::uint64_t received = 0;
  std::optional<Error> error = std::nullopt;

  bool hasSucceeded() const {
    const long status = transfer.number(CURLINFO_RESPONSE_CODE);
    return status >= 200 && status < 300;
  }
};

// libcurl's write function: a result other than the number of bytes ends the transfer.
std::size_t take(const char* bytes, std::size_t size, std::size_t count, void* pointer) {
  Request& request = *static_cast<Request*>(pointer);
  const std::size_t length = size * count;
  if (!request.hasSucceeded()) return length;
  if (length > request.bytesMax - request.received) return 0;
  try {
    request.error = request.sink.take({bytes, length});
  } catch (const std::exception&) {
    return 0;
  }
  request.received += length;
  return request.error ? 0 : length;
}

// libcurl's progress function: a result other than 0 ends the transfer.
int report(void* pointer, curl_off_t total, curl_off_t, curl_off_t, curl_off_t) {
  Request& request = *static_cast<Request*>(pointer);
  const auto expected = total > 0 && request.hasSucceeded() ? static_cast<std::uint64_t>(total) : 0;
  // libcurl goes on reporting for a while when the sink has refused.
  if (!request.error) request.error = request.sink.report(request.received, expected);
  return request.error ? 1 : 0;
}

// Asks once. The redirect's target, absolute; none when the answer was a success.
Result<std::optional<std::string>> ask(const CurlLibrary& curl, const std::string& url,
                                       const URLAddress& address, const std::string& userAgent,
                                       const URLLimits& limits, URLSink& sink) {
  Request request{.transfer = CurlTransfer(curl), .sink = sink, .bytesMax = limits.bodyBytesMax};
  CurlTransfer& transfer = request.transfer;
  if (!transfer) return urlError(URLErrorCode::Unknown);
  transfer.prepare(url, userAgent, limits);
  transfer.set(CURLOPT_WRITEFUNCTION, &take);
  transfer.set(CURLOPT_WRITEDATA, static_cast<void*>(&request));
  transfer.set(CURLOPT_XFERINFOFUNCTION, &report);
  transfer.set(CURLOPT_XFERINFODATA, static_cast<void*>(&request));
  transfer.set(CURLOPT_NOPROGRESS, 0L);

  const CURLcode failure = transfer.perform();
  if (request.error) return *request.error;
  if (failure != CURLE_OK) return urlError(transfer.codeOf(failure), address.host);
  auto target = transfer.text(CURLINFO_REDIRECT_URL);
  if (!target && !request.hasSucceeded()) return unopenedFile(address.lastPathComponent);
  return target;
}

}  // namespace

std::optional<Error> fetchURL(const std::string& url, const std::string& userAgent, const URLLimits& limits,
                              URLSink& sink) {
  std::string current = url;
  bool isSecure = false;
  const auto end = std::chrono::steady_clock::now() + limits.request;
  for (int redirects = 0; redirects <= limits.redirectsMax; ++redirects) {
    const Result<URLAddress> address = addressOf(current);
    if (!address) return address.error();
    if (isSecure && !address.value().isSecure()) return urlError(URLErrorCode::InsecureConnectionRefused);
    isSecure = address.value().isSecure();
    URLLimits left = limits;
    left.request = std::chrono::ceil<std::chrono::seconds>(end - std::chrono::steady_clock::now());
    // libcurl takes 0 for no limit.
    if (left.request <= std::chrono::seconds(0))
      return urlError(URLErrorCode::TimedOut, address.value().host);
    auto target = ask(CurlLibrary::instance().value(), current, address.value(), userAgent, left, sink);
    if (!target) return target.error();
    if (!target.value()) return std::nullopt;
    current = std::move(*target.value());
  }
  return urlError(URLErrorCode::TooManyRedirects);
}

}  // namespace karno::platform
