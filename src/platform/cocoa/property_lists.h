#pragma once
#include "platform/property_lists.h"

namespace karno::platform::cocoa {

// Property lists and keyed archives of at most kPropertyListSizeBytesMax. The XML form is ours; the binary
// form is read by NSPropertyListSerialization after a check of ours, and archives by NSKeyedUnarchiver where
// it can be told the classes to expect, which GNUstep's cannot: its readers crash on some damaged input.
class CocoaPropertyLists final : public PropertyLists {
 public:
  Result<Value> parse(std::string_view bytes) const override;
  Result<std::string> serialiseAsXML(const Value& value) const override;
  Result<Value::Dictionary> unarchiveDictionary(std::string_view bytes) const override;
};

}  // namespace karno::platform::cocoa
