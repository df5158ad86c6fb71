#include "platform/linux/web/url_loading.h"

#include <algorithm>

namespace karno::platform {
namespace {

class Contents final : public URLSink {
 public:
  std::optional<Error> take(std::string_view bytes) override {
    text_.append(bytes);
    return std::nullopt;
  }
  std::string text() && { return std::move(text_); }

 private:
  std::string text_;
};

}  // namespace

std::string userAgentOf(const Bundle& bundle) {
  const std::optional<Value> version = bundle.objectForInfoDictionaryKey("CFBundleVersion");
  const std::string* text = version ? version->get<std::string>() : nullptr;
  const auto isPlain = [](char letter) { return letter > ' ' && letter <= '~'; };
  if (text == nullptr || text->empty() || !std::all_of(text->begin(), text->end(), isPlain)) return "Karno";
  return "Karno/" + *text;
}

Result<std::string> CurlURLLoading::contentsOfURL(const std::string& url) {
  Contents contents;
  if (const auto error = fetchURL(url, userAgentOf(bundles_.mainBundle()), limits_, contents)) return *error;
  return std::move(contents).text();
}

}  // namespace karno::platform
