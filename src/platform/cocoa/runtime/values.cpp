#include "platform/cocoa/runtime/values.h"

#include <cstring>
#include <limits>

#include "platform/cocoa/runtime/strings.h"
#include "platform/property_lists/limits.h"
#include "platform/property_lists/scalar_texts.h"

namespace karno::platform::cocoa {
namespace {

using lists::kMaxValueDepth;
using objc::Id;
using objc::Object;
using objc::send;
using objc::UInteger;

constexpr double kNanosecondsPerSecond = 1e9;

std::optional<Value> valueAtDepth(Id object, int depth);

bool isBoolean(Id number) {
  // Both systems have a class of their own for booleans, since their C type says only "char".
  static const Class booleanClass =
      send<Class>(send(objc::classNamed("NSNumber"), "numberWithBool:", true), "class");
  return send<bool>(number, "isKindOfClass:", booleanClass);
}

Value numberValue(Id number) {
  if (isBoolean(number)) {
    return Value(send<bool>(number, "boolValue"));
  }
  const char type = *send<const char*>(number, "objCType");
  if (type == 'f' || type == 'd') {
    return Value(send<double>(number, "doubleValue"));
  }
  constexpr auto kLargest = static_cast<unsigned long long>(std::numeric_limits<std::int64_t>::max());
  if (type == 'Q' && send<unsigned long long>(number, "unsignedLongLongValue") > kLargest) {
    return Value(send<double>(number, "doubleValue"));
  }
  return Value(std::int64_t{send<long long>(number, "longLongValue")});
}

std::optional<Value> dateValue(Id date) {
  const auto moment = lists::dateSince1970(send<double>(date, "timeIntervalSince1970"));
  return moment ? std::optional(Value(*moment)) : std::nullopt;
}

Value dataValue(Id data) {
  const auto length = send<UInteger>(data, "length");
  Value::Data bytes(length);
  if (length > 0) {
    std::memcpy(bytes.data(), send<const void*>(data, "bytes"), length);
  }
  return Value(std::move(bytes));
}

std::optional<Value> arrayValue(Id array, int depth) {
  const auto count = send<UInteger>(array, "count");
  Value::Array values;
  values.reserve(count);
  for (UInteger index = 0; index < count; ++index) {
    auto element = valueAtDepth(send(array, "objectAtIndex:", index), depth + 1);
    if (!element) {
      return std::nullopt;
    }
    values.push_back(std::move(*element));
  }
  return Value(std::move(values));
}

std::optional<Value> dictionaryValue(Id dictionary, int depth) {
  const Id keys = send(dictionary, "allKeys");
  const auto count = send<UInteger>(keys, "count");
  Value::Dictionary values;
  for (UInteger index = 0; index < count; ++index) {
    const Id key = send(keys, "objectAtIndex:", index);
    if (!objc::isKindOf(key, "NSString")) {
      return std::nullopt;
    }
    auto element = valueAtDepth(send(dictionary, "objectForKey:", key), depth + 1);
    if (!element) {
      return std::nullopt;
    }
    values.insert_or_assign(objc::text(key), std::move(*element));
  }
  return Value(std::move(values));
}

std::optional<Value> valueAtDepth(Id object, int depth) {
  if (objc::isKindOf(object, "NSString")) {
    return Value(objc::text(object));
  }
  if (objc::isKindOf(object, "NSNumber")) {
    return numberValue(object);
  }
  if (objc::isKindOf(object, "NSDate")) {
    return dateValue(object);
  }
  if (objc::isKindOf(object, "NSData")) {
    return dataValue(object);
  }
  if (depth > kMaxValueDepth) {
    return std::nullopt;
  }
  if (objc::isKindOf(object, "NSArray")) {
    return arrayValue(object, depth);
  }
  if (objc::isKindOf(object, "NSDictionary")) {
    return dictionaryValue(object, depth);
  }
  return std::nullopt;
}

// Makes the object for each kind of value.
struct ObjectMaker {
  int depth;

  Object operator()(bool truth) const {
    return Object::retaining(send(objc::classNamed("NSNumber"), "numberWithBool:", truth));
  }
  Object operator()(std::int64_t number) const {
    return Object::retaining(
        send(objc::classNamed("NSNumber"), "numberWithLongLong:", static_cast<long long>(number)));
  }
  Object operator()(double number) const {
    return Object::retaining(send(objc::classNamed("NSNumber"), "numberWithDouble:", number));
  }
  Object operator()(const std::string& text) const { return objc::string(text); }
  Object operator()(Date date) const {
    const double seconds = static_cast<double>(date.time_since_epoch().count()) / kNanosecondsPerSecond;
    return Object::retaining(send(objc::classNamed("NSDate"), "dateWithTimeIntervalSince1970:", seconds));
  }
  Object operator()(const Value::Data& data) const {
    const void* const bytes = data.data();
    return Object::retaining(
        send(objc::classNamed("NSData"), "dataWithBytes:length:", bytes, UInteger{data.size()}));
  }
  Object operator()(const Value::Array& values) const {
    if (depth > kMaxValueDepth) {
      return {};
    }
    Object array = objc::make("NSMutableArray");
    for (const Value& value : values) {
      const Object element = std::visit(ObjectMaker{depth + 1}, value.storage());
      if (!element) {
        return {};
      }
      send<void>(array, "addObject:", element);
    }
    return array;
  }
  Object operator()(const Value::Dictionary& values) const {
    if (depth > kMaxValueDepth) {
      return {};
    }
    Object dictionary = objc::make("NSMutableDictionary");
    for (const auto& [key, value] : values) {
      const Object element = std::visit(ObjectMaker{depth + 1}, value.storage());
      if (!element) {
        return {};
      }
      send<void>(dictionary, "setObject:forKey:", element, objc::string(key));
    }
    return dictionary;
  }
};

}  // namespace

std::optional<Value> valueOf(Id object) {
  if (object == nullptr) {
    return std::nullopt;
  }
  return valueAtDepth(object, 1);
}

Object objectOf(const Value& value) { return std::visit(ObjectMaker{1}, value.storage()); }

}  // namespace karno::platform::cocoa
