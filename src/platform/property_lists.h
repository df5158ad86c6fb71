#pragma once
#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/value.h"

namespace karno::platform {

// Property lists (XML and binary) and keyed archives. Safe from any thread; hostile input gives an error.
class PropertyLists {
 public:
  virtual ~PropertyLists() = default;

  virtual Result<Value> parse(std::string_view bytes) const = 0;
  virtual Result<std::string> serialiseAsXML(const Value& value) const = 0;

  // Reads a secure keyed archive whose root is a dictionary of property-list values. A plain property list
  // is an error.
  virtual Result<Value::Dictionary> unarchiveDictionary(std::string_view bytes) const = 0;
};

}  // namespace karno::platform
