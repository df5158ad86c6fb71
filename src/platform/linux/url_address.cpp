#include "platform/linux/url_address.h"

#include <curl/curl.h>

#include <memory>

#include "platform/linux/url_errors.h"

namespace karno::platform {
namespace {

struct FreeURL {
  void operator()(CURLU* url) const { ::curl_url_cleanup(url); }
};
struct FreeText {
  void operator()(char* text) const { ::curl_free(text); }
};
using ParsedURL = std::unique_ptr<CURLU, FreeURL>;

std::string partOf(const ParsedURL& url, CURLUPart part, unsigned flags = 0) {
  char* text = nullptr;
  if (::curl_url_get(url.get(), part, &text, flags) != CURLUE_OK) return {};
  return std::unique_ptr<char, FreeText>(text).get();
}

std::string lastComponentOf(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

}  // namespace

Result<URLAddress> addressOf(const std::string& url) {
  if (url.find(':') == std::string::npos) return urlError(URLErrorCode::UnsupportedURL);
  if (url.find('\0') != std::string::npos) return urlError(URLErrorCode::BadURL);
  const ParsedURL parsed(::curl_url());
  const CURLUcode code = ::curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), CURLU_NON_SUPPORT_SCHEME);
  if (code != CURLUE_OK) return urlError(URLErrorCode::BadURL);

  URLAddress address{.scheme = partOf(parsed, CURLUPART_SCHEME),
                     .host = partOf(parsed, CURLUPART_HOST),
                     .lastPathComponent = lastComponentOf(partOf(parsed, CURLUPART_PATH, CURLU_URLDECODE))};
  if (address.scheme != "http" && address.scheme != "https") return urlError(URLErrorCode::UnsupportedURL);
  return address;
}

}  // namespace karno::platform
