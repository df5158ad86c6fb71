#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/date.h"

namespace karno::platform {

// Any value that a property list can hold. Used for preferences, user defaults, Info.plist entries and
// the user information of notifications. A value type; strings are UTF-8.
class Value {
 public:
  using Data = std::vector<std::byte>;
  using Array = std::vector<Value>;
  using Dictionary = std::map<std::string, Value, std::less<>>;
  using Storage = std::variant<bool, std::int64_t, double, std::string, Date, Data, Array, Dictionary>;

  Value(bool value) : storage_(value) {}
  Value(int value) : storage_(std::int64_t{value}) {}
  Value(std::int64_t value) : storage_(value) {}
  Value(double value) : storage_(value) {}
  Value(const char* value) : storage_(std::string(value)) {}
  Value(std::string value) : storage_(std::move(value)) {}
  Value(Date value) : storage_(value) {}
  Value(Data value) : storage_(std::move(value)) {}
  Value(Array value) : storage_(std::move(value)) {}
  Value(Dictionary value) : storage_(std::move(value)) {}

  template <class T>
  const T* get() const {
    return std::get_if<T>(&storage_);
  }
  const Storage& storage() const { return storage_; }

  // A boolean, an integer or a floating-point number: all three are numbers to the platform.
  bool isNumber() const;
  bool isString() const { return get<std::string>() != nullptr; }

  // The text that "%@" prints: a string stands bare, true is 1, containers print in the old
  // property-list style with elements that need it in quotes.
  std::string description() const;

  bool operator==(const Value&) const = default;

 private:
  Storage storage_;
};

// The entry of that key and type; null where there is none, and of a value that is no dictionary.
template <class T>
const T* entryOf(const Value::Dictionary& entries, std::string_view key) {
  const auto entry = entries.find(key);
  return entry == entries.end() ? nullptr : entry->second.get<T>();
}
template <class T>
const T* entryOf(const Value& value, std::string_view key) {
  const auto* const entries = value.get<Value::Dictionary>();
  return entries == nullptr ? nullptr : entryOf<T>(*entries, key);
}

// The platform's string truth: white space, one sign and zeros are skipped; then "Y", "y", "T", "t" or a
// digit 1 to 9 makes it true. What follows is ignored.
bool stringTruth(std::string_view text);

// The plain boolean read of a user default: a number gives its truth; a string gives true for YES or true in
// any case and for a non-zero number; anything else, and no value, gives false.
bool plainBoolean(const std::optional<Value>& value);

}  // namespace karno::platform
