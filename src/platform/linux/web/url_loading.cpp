#include "platform/linux/web/url_loading.h"

#include <algorithm>

#include "platform/linux/web/url_address.h"
#include "platform/linux/web/url_errors.h"
#include "platform/linux/web/url_request.h"

namespace karno::platform {
namespace {

constexpr long kFirstFailure = 400;

}  // namespace

std::string userAgentOf(const Bundle& bundle) {
  const std::optional<Value> version = bundle.objectForInfoDictionaryKey("CFBundleVersion");
  const std::string* text = version ? version->get<std::string>() : nullptr;
  const auto isPlain = [](char letter) { return letter > ' ' && letter <= '~'; };
  if (text == nullptr || text->empty() || !std::all_of(text->begin(), text->end(), isPlain)) return "Karno";
  return "Karno/" + *text;
}

Result<std::string> CurlURLLoading::contentsOfURL(const std::string& url) {
  const Result<URLAddress> wanted = addressOf(url);
  if (!wanted) return wanted.error();
  const std::string userAgent = userAgentOf(bundles_.mainBundle());

  std::string current = url;
  URLAddress address = wanted.value();
  for (int redirects = 0; redirects <= limits_.redirectsMax; ++redirects) {
    Result<URLAnswer> answer = requestURL(current, address, userAgent, limits_);
    if (!answer) return answer.error();
    if (!answer.value().redirectTarget) {
      if (answer.value().status >= kFirstFailure) return unopenedFile(wanted.value().lastPathComponent);
      return std::move(answer.value().body);
    }
    current = *answer.value().redirectTarget;
    const Result<URLAddress> next = addressOf(current);
    if (!next) return next.error();
    if (address.isSecure() && !next.value().isSecure())
      return urlError(URLErrorCode::InsecureConnectionRefused);
    address = next.value();
  }
  return urlError(URLErrorCode::TooManyRedirects);
}

}  // namespace karno::platform
