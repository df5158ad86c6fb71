#pragma once
#include <map>
#include <string>

#include "platform/cocoa/xml_property_list.h"
#include "platform/property_lists.h"

namespace karno::test {

// Answers what a test says for exactly these bytes. Everything else is read and written by the real rules of
// the XML form; archives are what a test says alone.
class FakePropertyLists final : public platform::PropertyLists {
 public:
  platform::Result<platform::Value> parse(std::string_view bytes) const override {
    const auto found = parsed.find(bytes);
    return found == parsed.end() ? platform::cocoa::readXMLList(bytes) : found->second;
  }

  platform::Result<std::string> serialiseAsXML(const platform::Value& value) const override {
    return platform::cocoa::writeXMLList(value);
  }

  platform::Result<platform::Value::Dictionary> unarchiveDictionary(std::string_view bytes) const override {
    const auto found = unarchived.find(bytes);
    if (found == unarchived.end()) return unarchiveError;
    return found->second;
  }

  std::map<std::string, platform::Value, std::less<>> parsed;
  std::map<std::string, platform::Value::Dictionary, std::less<>> unarchived;
  platform::Error unarchiveError{std::string(platform::kCocoaErrorDomain),
                                 4864,
                                 {{std::string(platform::kLocalizedDescriptionKey),
                                   "The data couldn’t be read because it isn’t in the correct format."}}};
};

}  // namespace karno::test
