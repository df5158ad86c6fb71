#include "foundation_objects.h"

#include <objc/runtime.h>

#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"

namespace karno::platform::trial {
namespace {

using objc::Id;

// Sends messages that are not in the launcher's table, since it never sends them.
template <class Result, class... Arguments>
Result sendUnlisted(const char* className, Id instance, const char* selectorName, Arguments... arguments) {
  const Id receiver = instance != nullptr ? instance : reinterpret_cast<Id>(objc_getClass(className));
  const objc::Sel selector = sel_registerName(selectorName);
  using Method = Result (*)(Id, objc::Sel, Arguments...);
  return reinterpret_cast<Method>(objc::detail::messageFunction(receiver, selector, false))(
      receiver, selector, arguments...);
}

std::string bytesOf(Id data) {
  return {static_cast<const char*>(objc::send<const void*>(data, "bytes")),
          objc::send<objc::UInteger>(data, "length")};
}

}  // namespace

Id unsignedNumber(std::uint64_t number) {
  return sendUnlisted<Id>("NSNumber", nullptr,
                          "numberWithUnsignedLongLong:", static_cast<unsigned long long>(number));
}

void removeAllObjects(Id array) { sendUnlisted<void>("", array, "removeAllObjects"); }

Id substring(Id text, objc::Range units) { return sendUnlisted<Id>("", text, "substringWithRange:", units); }

Id error(const std::string& domain, objc::Integer code, const objc::Object& userInfo) {
  return sendUnlisted<Id>("NSError", nullptr, "errorWithDomain:code:userInfo:", objc::string(domain).get(),
                          code, userInfo.get());
}

Id explainedError(const std::string& domain, objc::Integer code, const std::string& explanation) {
  return error(domain, code,
               cocoa::objectOf(Value(Value::Dictionary{{"NSLocalizedDescription", Value(explanation)}})));
}

std::string archive(const objc::Object& root) {
  const objc::AutoreleasePool pool;
  return bytesOf(sendUnlisted<Id>("NSKeyedArchiver", nullptr, "archivedDataWithRootObject:", root.get()));
}

std::string archive(const Value& root) {
  const objc::AutoreleasePool pool;
  return archive(cocoa::objectOf(root));
}

std::string binaryList(const Value& value) {
  const objc::AutoreleasePool pool;
  constexpr objc::UInteger kBinaryFormat = 200;
  Id* const noError = nullptr;
  return bytesOf(sendUnlisted<Id>("NSPropertyListSerialization", nullptr,
                                  "dataWithPropertyList:format:options:error:", cocoa::objectOf(value).get(),
                                  kBinaryFormat, objc::UInteger{0}, noError));
}

}  // namespace karno::platform::trial
