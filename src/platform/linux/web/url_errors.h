#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/error.h"

// Failed fetches as Foundation reports them.
namespace karno::platform {

enum class URLErrorCode : std::int64_t {
  Unknown = -1,
  BadURL = -1000,
  TimedOut = -1001,
  UnsupportedURL = -1002,
  CannotFindHost = -1003,
  CannotConnectToHost = -1004,
  NetworkConnectionLost = -1005,
  TooManyRedirects = -1007,
  NotConnectedToInternet = -1009,
  CannotDecodeContent = -1016,
  CannotParseResponse = -1017,
  InsecureConnectionRefused = -1022,
  DataTooLong = -1103,
  SecureConnectionFailed = -1200,
  CertificateUntrusted = -1202,
};

// `host`: the server that was asked; only a certificate's text names it.
Error urlError(URLErrorCode code, std::string_view host = {});

// What NSData says of an answer that is no success: its name is the URL's last path component.
Error unopenedFile(std::string_view name);

}  // namespace karno::platform
