#include "platform/error.h"

#include <fmt/format.h>

#include <system_error>

namespace karno::platform {
namespace {

std::string posixText(std::int64_t code) { return std::generic_category().message(static_cast<int>(code)); }

std::string userInfoText(const Error::UserInfo& userInfo) {
  std::string text;
  for (const auto& [key, value] : userInfo) {
    if (!text.empty()) text += ", ";
    text += key + "=" + value;
  }
  return text;
}

}  // namespace

Error Error::posix(int code) { return Error(std::string(kPOSIXErrorDomain), code); }

std::string Error::localizedDescription() const {
  if (userInfo_) {
    if (const auto entry = userInfo_->find(kLocalizedDescriptionKey); entry != userInfo_->end())
      return entry->second;
  }
  if (domain_ == kPOSIXErrorDomain) return "The operation couldn’t be completed. " + posixText(code_);
  return fmt::format("The operation couldn’t be completed. ({} error {}.)", domain_, code_);
}

std::string Error::description() const {
  std::string summary = "(null)";
  if (userInfo_ && userInfo_->contains(kLocalizedDescriptionKey)) {
    summary = userInfo_->find(kLocalizedDescriptionKey)->second;
  } else if (domain_ == kPOSIXErrorDomain) {
    summary = posixText(code_);
  }
  std::string text = fmt::format("Error Domain={} Code={} \"{}\"", domain_, code_, summary);
  if (userInfo_ && !userInfo_->empty()) text += fmt::format(" UserInfo={{{}}}", userInfoText(*userInfo_));
  return text;
}

}  // namespace karno::platform
