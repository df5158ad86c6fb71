#include "platform/linux/web/url_request.h"

#include <exception>
#include <utility>

#include "platform/linux/web/curl_library.h"
#include "platform/linux/web/curl_transfer.h"
#include "platform/linux/web/url_errors.h"

namespace karno::platform {
namespace {

struct Body {
  std::string bytes;
  std::size_t bytesMax = 0;
};

// libcurl's write function: a result other than the number of bytes ends the transfer.
std::size_t take(const char* bytes, std::size_t size, std::size_t count, void* destination) {
  Body& body = *static_cast<Body*>(destination);
  const std::size_t length = size * count;
  if (length > body.bytesMax - body.bytes.size()) return 0;
  try {
    body.bytes.append(bytes, length);
  } catch (const std::exception&) {
    return 0;
  }
  return length;
}

}  // namespace

Result<URLAnswer> requestURL(const std::string& url, const URLAddress& address, const std::string& userAgent,
                             const URLLimits& limits) {
  const Result<CurlLibrary>& curl = CurlLibrary::instance();
  if (!curl) return curl.error();
  CurlTransfer transfer(curl.value());
  if (!transfer) return urlError(URLErrorCode::Unknown);
  Body body{.bytes = {}, .bytesMax = limits.bodyBytesMax};
  transfer.prepare(url, userAgent, limits);
  transfer.set(CURLOPT_WRITEFUNCTION, &take);
  transfer.set(CURLOPT_WRITEDATA, static_cast<void*>(&body));

  const CURLcode failure = transfer.perform();
  if (failure != CURLE_OK) return urlError(transfer.codeOf(failure), address.host);
  URLAnswer answer;
  answer.status = transfer.number(CURLINFO_RESPONSE_CODE);
  answer.body = std::move(body.bytes);
  answer.redirectTarget = transfer.text(CURLINFO_REDIRECT_URL);
  return answer;
}

}  // namespace karno::platform
