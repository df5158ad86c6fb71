#include "platform/linux/web/url_errors.h"

#include <fmt/format.h>

namespace karno::platform {
namespace {

constexpr std::int64_t kFileReadUnknown = 256;

// The English texts of CFNetwork, which begin with a capital letter only where they are meant to be shown.
std::string sentenceOf(URLErrorCode code, std::string_view host) {
  switch (code) {
    case URLErrorCode::Unknown:
      return "unknown error";
    case URLErrorCode::BadURL:
      return "bad URL";
    case URLErrorCode::TimedOut:
      return "The request timed out.";
    case URLErrorCode::UnsupportedURL:
      return "unsupported URL";
    case URLErrorCode::CannotFindHost:
      return "A server with the specified hostname could not be found.";
    case URLErrorCode::CannotConnectToHost:
      return "Could not connect to the server.";
    case URLErrorCode::NetworkConnectionLost:
      return "The network connection was lost.";
    case URLErrorCode::TooManyRedirects:
      return "too many HTTP redirects";
    case URLErrorCode::NotConnectedToInternet:
      return "The Internet connection appears to be offline.";
    case URLErrorCode::CannotDecodeContent:
      return "cannot decode content data";
    case URLErrorCode::CannotParseResponse:
      return "cannot parse response";
    case URLErrorCode::InsecureConnectionRefused:
      return "The resource could not be loaded because the App Transport Security policy requires the use of "
             "a secure connection.";
    case URLErrorCode::DataTooLong:
      return "resource exceeds maximum size";
    case URLErrorCode::SecureConnectionFailed:
      return "An SSL error has occurred and a secure connection to the server cannot be made.";
    case URLErrorCode::CertificateUntrusted:
      return fmt::format(
          "The certificate for this server is invalid. You might be connecting to a server that is "
          "pretending to be “{}” which could put your confidential information at risk.",
          host);
  }
  return {};
}

}  // namespace

Error urlError(URLErrorCode code, std::string_view host) {
  return Error(std::string(kURLErrorDomain), static_cast<std::int64_t>(code),
               {{std::string(kLocalizedDescriptionKey), sentenceOf(code, host)}});
}

Error unopenedFile(std::string_view name) {
  return Error(
      std::string(kCocoaErrorDomain), kFileReadUnknown,
      {{std::string(kLocalizedDescriptionKey), fmt::format("The file “{}” couldn’t be opened.", name)}});
}

}  // namespace karno::platform
