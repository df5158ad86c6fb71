#include "platform/cocoa/property_lists.h"

#include "platform/cocoa/binary_list_check.h"
#include "platform/cocoa/keyed_archive.h"
#include "platform/cocoa/property_list_error.h"
#include "platform/cocoa/property_list_limits.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/values.h"
#include "platform/cocoa/secure_unarchiver.h"
#include "platform/cocoa/xml_property_list.h"

namespace karno::platform::cocoa {
namespace {

using objc::send;

// What the framework's readers are spared, whatever the form.
std::optional<Error> check(std::string_view bytes, ArchiveReferences references) {
  if (bytes.size() > kPropertyListSizeBytesMax) {
    return unreadablePropertyList("it is too large");
  }
  return bytes.starts_with(kBinaryListMagic) ? checkBinaryList(bytes, references) : std::nullopt;
}

Result<Value> readBinaryList(std::string_view bytes) {
  const objc::AutoreleasePool pool;
  const auto value = objc::guarded("read a property list", [bytes] {
    const void* const begin = bytes.data();
    const objc::Id data =
        send(objc::classNamed("NSData"), "dataWithBytes:length:", begin, objc::UInteger{bytes.size()});
    objc::UInteger* const noFormat = nullptr;
    objc::Id* const noError = nullptr;
    return valueOf(send(objc::classNamed("NSPropertyListSerialization"),
                        "propertyListWithData:options:format:error:", data, objc::UInteger{0}, noFormat,
                        noError));
  });
  if (!value) {
    return value.error();
  }
  if (!value.value()) {
    return unreadablePropertyList("it holds what no property list has");
  }
  return *value.value();
}

Result<Value> read(std::string_view bytes, ArchiveReferences references) {
  if (auto damage = check(bytes, references)) {
    return *std::move(damage);
  }
  return bytes.starts_with(kBinaryListMagic) ? readBinaryList(bytes) : readXMLList(bytes);
}

}  // namespace

Result<Value> CocoaPropertyLists::parse(std::string_view bytes) const {
  return read(bytes, ArchiveReferences::Refused);
}

Result<std::string> CocoaPropertyLists::serialiseAsXML(const Value& value) const {
  return writeXMLList(value);
}

Result<Value::Dictionary> CocoaPropertyLists::unarchiveDictionary(std::string_view bytes) const {
  const objc::AutoreleasePool pool;  // also for what the runtime makes when it looks the class up first
  if (hasSecureUnarchiver()) {
    if (auto damage = check(bytes, ArchiveReferences::Allowed)) {
      return *std::move(damage);
    }
    return unarchiveSecurely(bytes);
  }
  const auto archive = read(bytes, ArchiveReferences::Allowed);
  return archive ? unfoldKeyedArchive(archive.value()) : archive.error();
}

}  // namespace karno::platform::cocoa
