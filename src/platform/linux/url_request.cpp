#include "platform/linux/url_request.h"

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <memory>
#include <utility>

#include "platform/linux/curl_library.h"
#include "platform/linux/url_errors.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

// One transfer of libcurl.
class Transfer {
 public:
  explicit Transfer(const CurlLibrary& curl) : curl_(curl), handle_(curl.easyInit(), curl.easyCleanup) {}

  explicit operator bool() const { return handle_ != nullptr; }

  template <class Value>
  void set(CURLoption option, Value value) {
    curl_.easySetOption(handle_.get(), option, value);
  }

  CURLcode perform() { return curl_.easyPerform(handle_.get()); }

  long number(CURLINFO info) const {
    long number = 0;
    curl_.easyGetInfo(handle_.get(), info, &number);
    return number;
  }

  std::optional<std::string> text(CURLINFO info) const {
    const char* text = nullptr;
    curl_.easyGetInfo(handle_.get(), info, &text);
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
  }

 private:
  const CurlLibrary& curl_;
  const std::unique_ptr<CURL, decltype(CurlLibrary::easyCleanup)> handle_;
};

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

void setWhatIsTrusted(Transfer& transfer) {
  const std::string authorities = systemPath("/etc/ssl/cert.pem");
  if (::access(authorities.c_str(), F_OK) != 0) return;
  transfer.set(CURLOPT_CAINFO, authorities.c_str());
  transfer.set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
}

void setLimits(Transfer& transfer, const URLLimits& limits) {
  transfer.set(CURLOPT_NOSIGNAL, 1L);  // a time-out by SIGALRM would hit any thread
  transfer.set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.connecting.count()));
  transfer.set(CURLOPT_LOW_SPEED_LIMIT, 1L);
  transfer.set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.silence.count()));
  transfer.set(CURLOPT_TIMEOUT, static_cast<long>(limits.request.count()));
}

URLErrorCode codeOfFailedConnection(Transfer& transfer) {
  const long error = transfer.number(CURLINFO_OS_ERRNO);
  const bool isOffline = error == ENETUNREACH || error == ENETDOWN;
  return isOffline ? URLErrorCode::NotConnectedToInternet : URLErrorCode::CannotConnectToHost;
}

URLErrorCode codeOf(CURLcode failure, Transfer& transfer) {
  switch (failure) {
    case CURLE_URL_MALFORMAT:
      return URLErrorCode::BadURL;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
      return URLErrorCode::CannotFindHost;
    case CURLE_COULDNT_CONNECT:
      return codeOfFailedConnection(transfer);
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
  const Result<CurlLibrary>& curl = CurlLibrary::instance();
  if (!curl) return curl.error();
  Transfer transfer(curl.value());
  if (!transfer) return urlError(URLErrorCode::Unknown);
  Body body{.bytes = {}, .bytesMax = limits.bodyBytesMax};
  transfer.set(CURLOPT_URL, url.c_str());
  transfer.set(CURLOPT_PROTOCOLS_STR, "http,https");
  transfer.set(CURLOPT_USERAGENT, userAgent.c_str());
  transfer.set(CURLOPT_WRITEFUNCTION, &take);
  transfer.set(CURLOPT_WRITEDATA, static_cast<void*>(&body));
  setWhatIsTrusted(transfer);
  setLimits(transfer, limits);

  const CURLcode failure = transfer.perform();
  if (failure != CURLE_OK) return urlError(codeOf(failure, transfer), address.host);
  URLAnswer answer;
  answer.status = transfer.number(CURLINFO_RESPONSE_CODE);
  answer.body = std::move(body.bytes);
  answer.redirectTarget = transfer.text(CURLINFO_REDIRECT_URL);
  return answer;
}

}  // namespace karno::platform
