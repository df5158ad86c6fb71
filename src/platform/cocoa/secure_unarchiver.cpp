#include "platform/cocoa/secure_unarchiver.h"

#include "platform/cocoa/property_list_error.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::send;

objc::Object allowedClasses() {
  const objc::Object classes = objc::make("NSMutableArray");
  for (const Class allowed :
       {objc::classNamed("NSDictionary"), objc::classNamed("NSArray"), objc::classNamed("NSString"),
        objc::classNamed("NSNumber"), objc::classNamed("NSData"), objc::classNamed("NSDate")}) {
    send<void>(classes, "addObject:", reinterpret_cast<Id>(allowed));
  }
  return objc::Object::retaining(send(objc::classNamed("NSSet"), "setWithArray:", classes));
}

Result<Value::Dictionary> unarchive(std::string_view bytes) {
  const void* const begin = bytes.data();
  const Id data =
      send(objc::classNamed("NSData"), "dataWithBytes:length:", begin, objc::UInteger{bytes.size()});
  Id problem = nullptr;
  Id* const error = &problem;
  const Id root = send(objc::classNamed("NSKeyedUnarchiver"),
                       "unarchivedObjectOfClasses:fromData:error:", allowedClasses(), data, error);
  if (root == nullptr) {
    return unreadableArchive(problem == nullptr ? "no reason is known"
                                                : objc::text(send(problem, "localizedDescription")));
  }
  const auto value = valueOf(root);
  const auto* const dictionary = value ? value->get<Value::Dictionary>() : nullptr;
  if (dictionary == nullptr) {
    return unreadableArchive("its root is no dictionary");
  }
  return *dictionary;
}

}  // namespace

bool hasSecureUnarchiver() {
  const objc::Sel message = objc::registered("unarchivedObjectOfClasses:fromData:error:");
  return send<bool>(objc::classNamed("NSKeyedUnarchiver"), "respondsToSelector:", message);
}

Result<Value::Dictionary> unarchiveSecurely(std::string_view bytes) {
  const objc::AutoreleasePool pool;
  const auto answer = objc::guarded("read a keyed archive", [bytes] { return unarchive(bytes); });
  return answer ? answer.value() : answer.error();
}

}  // namespace karno::platform::cocoa
