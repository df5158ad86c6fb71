#include "platform/macos/web/url_loading.h"

#include <utility>

#include "platform/cocoa/runtime/errors.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform {
namespace {

constexpr objc::UInteger kUncached = 2;  // NSDataReadingUncached

constexpr std::int64_t kURLErrorUnknown = -1;  // NSURLErrorUnknown
constexpr std::int64_t kBadURL = -1000;        // NSURLErrorBadURL

Error urlError(std::int64_t code, std::string description) {
  return Error(std::string(kURLErrorDomain), code,
               {{std::string(kLocalizedDescriptionKey), std::move(description)}});
}

Error errorFrom(objc::Id error) { return cocoa::errorOf(error, urlError(kURLErrorUnknown, "unknown error")); }

Result<std::string> fetch(const std::string& text) {
  const objc::Id url = objc::send(objc::classNamed("NSURL"), "URLWithString:", objc::string(text));
  if (url == nullptr) return urlError(kBadURL, "bad URL");
  objc::Id error = nullptr;
  const objc::Id data =
      objc::send(objc::classNamed("NSData"), "dataWithContentsOfURL:options:error:", url, kUncached, &error);
  if (data == nullptr) return errorFrom(error);
  const auto length = objc::send<objc::UInteger>(data, "length");
  if (length == 0) return std::string();
  return std::string(objc::send<const char*>(data, "bytes"), length);
}

}  // namespace

Result<std::string> FoundationURLLoading::contentsOfURL(const std::string& url) {
  const objc::AutoreleasePool pool;
  Result<Result<std::string>> contents = objc::guarded("fetching a URL", [&url] { return fetch(url); });
  return contents ? std::move(contents.value()) : contents.error();
}

}  // namespace karno::platform
