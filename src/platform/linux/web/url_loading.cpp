#include "platform/linux/web/url_loading.h"

#include <algorithm>
#include <cerrno>

namespace karno::platform {
namespace {

class Contents final : public URLSink {
 public:
  explicit Contents(const std::function<bool()>& isWanted) : isWanted_(isWanted) {}

  std::optional<Error> take(std::string_view bytes) override {
    text_.append(bytes);
    return std::nullopt;
  }
  std::optional<Error> report(std::uint64_t /*received*/, std::uint64_t /*total*/) override {
    return isWanted_() ? std::nullopt : std::optional(Error::posix(ECANCELED));
  }
  std::string text() && { return std::move(text_); }

 private:
  const std::function<bool()>& isWanted_;
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
  return contentsOfURL(url, [] { return true; });
}

Result<std::string> CurlURLLoading::contentsOfURL(const std::string& url,
                                                  const std::function<bool()>& isWanted) {
  Contents contents(isWanted);
  if (const auto error = fetchURL(url, userAgentOf(bundles_.mainBundle()), limits_, contents)) return *error;
  return std::move(contents).text();
}

}  // namespace karno::platform
