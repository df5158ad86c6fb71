#include "platform/linux/web/curl_transfer.h"

#include <unistd.h>

#include <cerrno>

#include "platform/system_path.h"

namespace karno::platform {

void CurlTransfer::prepare(const std::string& url, const std::string& userAgent, const URLLimits& limits) {
  set(CURLOPT_URL, url.c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_USERAGENT, userAgent.c_str());
  set(CURLOPT_NOSIGNAL, 1L);  // a time-out by SIGALRM would hit any thread
  set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.connecting.count()));
  set(CURLOPT_LOW_SPEED_LIMIT, 1L);
  set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.silence.count()));
  set(CURLOPT_TIMEOUT, static_cast<long>(limits.request.count()));

  const std::string authorities = systemPath("/etc/ssl/cert.pem");
  if (::access(authorities.c_str(), F_OK) != 0) return;
  set(CURLOPT_CAINFO, authorities.c_str());
  set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
}

long CurlTransfer::number(CURLINFO info) const {
  long number = 0;
  curl_.easyGetInfo(handle_.get(), info, &number);
  return number;
}

std::optional<std::string> CurlTransfer::text(CURLINFO info) const {
  const char* text = nullptr;
  curl_.easyGetInfo(handle_.get(), info, &text);
  return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

URLErrorCode CurlTransfer::codeOfFailedConnection() const {
  const long error = number(CURLINFO_OS_ERRNO);
  const bool isOffline = error == ENETUNREACH || error == ENETDOWN;
  return isOffline ? URLErrorCode::NotConnectedToInternet : URLErrorCode::CannotConnectToHost;
}

URLErrorCode CurlTransfer::codeOf(CURLcode failure) const {
  switch (failure) {
    case CURLE_URL_MALFORMAT:
      return URLErrorCode::BadURL;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
      return URLErrorCode::CannotFindHost;
    case CURLE_COULDNT_CONNECT:
      return codeOfFailedConnection();
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
    case CURLE_WRITE_ERROR:  // the receiver of the bytes refused
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

}  // namespace karno::platform
