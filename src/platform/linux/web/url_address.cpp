#include "platform/linux/web/url_address.h"

#include <memory>

#include "platform/linux/web/curl_library.h"
#include "platform/linux/web/url_errors.h"

namespace karno::platform {
namespace {

class ParsedURL {
 public:
  explicit ParsedURL(const CurlLibrary& curl) : curl_(curl), url_(curl.url()) {}
  ParsedURL(const ParsedURL&) = delete;
  ParsedURL& operator=(const ParsedURL&) = delete;
  ~ParsedURL() { curl_.urlCleanup(url_); }

  bool parse(const std::string& text) {
    return curl_.urlSet(url_, CURLUPART_URL, text.c_str(), CURLU_NON_SUPPORT_SCHEME) == CURLUE_OK;
  }

  std::string part(CURLUPart which, unsigned flags = 0) const {
    char* text = nullptr;
    if (curl_.urlGet(url_, which, &text, flags) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(curl_.free)> owned(text, curl_.free);
    return owned.get();
  }

 private:
  const CurlLibrary& curl_;
  CURLU* const url_;
};

std::string lastComponentOf(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

}  // namespace

Result<URLAddress> addressOf(const std::string& url) {
  if (url.find(':') == std::string::npos) return urlError(URLErrorCode::UnsupportedURL);
  if (url.find('\0') != std::string::npos) return urlError(URLErrorCode::BadURL);
  const Result<CurlLibrary>& curl = CurlLibrary::instance();
  if (!curl) return curl.error();
  ParsedURL parsed(curl.value());
  if (!parsed.parse(url)) return urlError(URLErrorCode::BadURL);

  URLAddress address{.scheme = parsed.part(CURLUPART_SCHEME),
                     .host = parsed.part(CURLUPART_HOST),
                     .lastPathComponent = lastComponentOf(parsed.part(CURLUPART_PATH, CURLU_URLDECODE))};
  if (address.scheme != "http" && address.scheme != "https") return urlError(URLErrorCode::UnsupportedURL);
  return address;
}

}  // namespace karno::platform
