#include "platform/cocoa/runtime/errors.h"

#include <string>
#include <utility>

#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::cocoa {
namespace {

std::string shownText(objc::Id object) {
  return objc::text(objc::isKindOf(object, "NSString") ? object : objc::send(object, "description"));
}

Error::UserInfo userInfoOf(objc::Id error) {
  Error::UserInfo userInfo;
  const objc::Id entries = objc::send(error, "userInfo");
  const objc::Id keys = objc::send(entries, "allKeys");
  const auto count = objc::send<objc::UInteger>(keys, "count");
  for (objc::UInteger index = 0; index < count; ++index) {
    const objc::Id key = objc::send(keys, "objectAtIndex:", index);
    userInfo.emplace(shownText(key), shownText(objc::send(entries, "objectForKey:", key)));
  }
  // The framework makes up a sentence where the error brings none. GNUstep does so as well where the text is
  // under the key that macOS has.
  userInfo.emplace(kLocalizedDescriptionKey, objc::text(objc::send(error, "localizedDescription")));
  return userInfo;
}

}  // namespace

Error errorOf(objc::Id error, Error otherwise) {
  if (error == nullptr) return otherwise;
  return Error(objc::text(objc::send(error, "domain")), objc::send<objc::Integer>(error, "code"),
               userInfoOf(error));
}

}  // namespace karno::platform::cocoa
