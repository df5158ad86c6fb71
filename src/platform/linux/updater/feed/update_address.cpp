#include "platform/linux/updater/feed/update_address.h"

#include <fmt/format.h>

#include "platform/linux/updater/update_errors.h"
#include "platform/linux/web/url_address.h"
#include "platform/text/one_line.h"

namespace karno::platform::updates {

std::optional<Error> refusalOfAddress(const std::string& url) {
  const Result<URLAddress> address = addressOf(url);
  if (!address)
    return updateError(UpdateErrorCode::InvalidFeedURL,
                       fmt::format("“{}” is no address that an update can come from.", inOneLine(url)));
  if (address.value().isSecure()) return std::nullopt;
  return updateError(UpdateErrorCode::InsecureFeedURL,
                     fmt::format("Updates come over https only, not from “{}”.", inOneLine(url)));
}

}  // namespace karno::platform::updates
