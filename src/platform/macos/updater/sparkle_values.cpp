#include "platform/macos/updater/sparkle_values.h"

#include <utility>

#include "platform/cocoa/runtime/errors.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/text/one_line.h"

namespace karno::platform::sparkle {
namespace {

Error errorWithCode(std::int64_t code, std::string description) {
  return Error(std::string(kErrorDomain), code,
               {{std::string(kLocalizedDescriptionKey), std::move(description)}});
}

// A feed may have any text there.
std::string lineOf(objc::Id text) { return inOneLine(objc::text(text)); }

}  // namespace

AppcastItem appcastItemOf(objc::Id item) {
  AppcastItem read;
  if (const objc::Id title = objc::send(item, "title"); title != nullptr) read.title = lineOf(title);
  read.displayVersionString = lineOf(objc::send(item, "displayVersionString"));
  if (read.displayVersionString.empty()) {
    read.displayVersionString = lineOf(objc::send(item, "versionString"));
  }
  return read;
}

std::string urlOf(objc::Id request) {
  return objc::text(objc::send(objc::send(request, "URL"), "absoluteString"));
}

Error errorOf(objc::Id error) {
  const Error told = cocoa::errorOf(error, errorWithCode(0, "unknown error"));
  if (!told.userInfo()) return told;
  Error::UserInfo lines;
  for (const auto& [key, text] : *told.userInfo()) lines.emplace(key, inOneLine(text));
  return Error(told.domain(), told.code(), std::move(lines));
}

Error updaterError(std::string description) { return errorWithCode(kUpdaterError, std::move(description)); }

}  // namespace karno::platform::sparkle
