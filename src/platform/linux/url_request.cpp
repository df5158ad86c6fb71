#include "platform/linux/url_request.h"

#include <curl/curl.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/linux/url_errors.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

struct FreeHandle {
  void operator()(CURL* handle) const { ::curl_easy_cleanup(handle); }
};
using Handle = std::unique_ptr<CURL, FreeHandle>;

Handle makeHandle() {
  static std::once_flag started;
  std::call_once(started, [] { ::curl_global_init(CURL_GLOBAL_DEFAULT); });
  return Handle(::curl_easy_init());
}

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

template <class Value>
void set(const Handle& handle, CURLoption option, Value value) {
  ::curl_easy_setopt(handle.get(), option, value);
}

void setWhatIsTrusted(const Handle& handle) {
  const std::string authorities = systemPath("/etc/ssl/cert.pem");
  if (::access(authorities.c_str(), F_OK) != 0) return;
  set(handle, CURLOPT_CAINFO, authorities.c_str());
  set(handle, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
}

void setLimits(const Handle& handle, const URLLimits& limits) {
  set(handle, CURLOPT_NOSIGNAL, 1L);  // a time-out by SIGALRM would hit any thread
  set(handle, CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.connecting.count()));
  set(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
  set(handle, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.silence.count()));
  set(handle, CURLOPT_TIMEOUT, static_cast<long>(limits.request.count()));
}

long numberOf(const Handle& handle, CURLINFO info) {
  long number = 0;
  ::curl_easy_getinfo(handle.get(), info, &number);
  return number;
}

URLErrorCode codeOfFailedConnection(const Handle& handle) {
  const long error = numberOf(handle, CURLINFO_OS_ERRNO);
  const bool isOffline = error == ENETUNREACH || error == ENETDOWN;
  return isOffline ? URLErrorCode::NotConnectedToInternet : URLErrorCode::CannotConnectToHost;
}

URLErrorCode codeOf(CURLcode failure, const Handle& handle) {
  switch (failure) {
    case CURLE_URL_MALFORMAT:
      return URLErrorCode::BadURL;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
      return URLErrorCode::CannotFindHost;
    case CURLE_COULDNT_CONNECT:
      return codeOfFailedConnection(handle);
    case CURLE_OPERATION_TIMEDOUT:
      return URLErrorCode::TimedOut;
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
      return URLErrorCode::NetworkConnectionLost;
    case CURLE_UNSUPPORTED_PROTOCOL:  // the bytes that came are no HTTP
    case CURLE_WEIRD_SERVER_REPLY:
      return URLErrorCode::CannotParseResponse;
    case CURLE_BAD_CONTENT_ENCODING:
      return URLErrorCode::CannotDecodeContent;
    case CURLE_WRITE_ERROR:  // take() refused
      return URLErrorCode::DataTooLong;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
      return URLErrorCode::CertificateUntrusted;
    case CURLE_SSL_CONNECT_ERROR:
      return URLErrorCode::SecureConnectionFailed;
    default:
      return URLErrorCode::Unknown;
  }
}

}  // namespace

Result<URLAnswer> requestURL(const std::string& url, const URLAddress& address, const std::string& userAgent,
                             const URLLimits& limits) {
  const Handle handle = makeHandle();
  if (handle == nullptr) return urlError(URLErrorCode::Unknown);
  Body body{.bytes = {}, .bytesMax = limits.bodyBytesMax};
  set(handle, CURLOPT_URL, url.c_str());
  set(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  set(handle, CURLOPT_USERAGENT, userAgent.c_str());
  set(handle, CURLOPT_WRITEFUNCTION, &take);
  set(handle, CURLOPT_WRITEDATA, static_cast<void*>(&body));
  setWhatIsTrusted(handle);
  setLimits(handle, limits);

  const CURLcode failure = ::curl_easy_perform(handle.get());
  if (failure != CURLE_OK) return urlError(codeOf(failure, handle), address.host);
  URLAnswer answer;
  answer.status = numberOf(handle, CURLINFO_RESPONSE_CODE);
  answer.body = std::move(body.bytes);
  const char* target = nullptr;
  ::curl_easy_getinfo(handle.get(), CURLINFO_REDIRECT_URL, &target);
  if (target != nullptr) answer.redirectTarget = target;
  return answer;
}

}  // namespace karno::platform
