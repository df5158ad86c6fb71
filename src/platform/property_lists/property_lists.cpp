#include "platform/property_lists/property_lists.h"

#include <cerrno>

#include "platform/property_lists/binary_list.h"
#include "platform/property_lists/errors.h"
#include "platform/property_lists/keyed_archive.h"
#include "platform/property_lists/limits.h"
#include "platform/property_lists/xml_list.h"

namespace karno::platform {
namespace {

Result<Value> readList(std::string_view bytes, lists::ArchiveReferences references) {
  if (bytes.size() > lists::kPropertyListSizeBytesMax) {
    return lists::unreadablePropertyList("it is too large");
  }
  return bytes.starts_with(lists::kBinaryListMagic) ? lists::readBinaryList(bytes, references)
                                                    : lists::readXMLList(bytes);
}

}  // namespace

Result<Value> parsePropertyList(std::string_view bytes) {
  return readList(bytes, lists::ArchiveReferences::Refused);
}

Result<Value::Dictionary> parseDictionary(std::string_view bytes) {
  const Result<Value> root = parsePropertyList(bytes);
  if (!root) {
    return root.error();
  }
  const auto* const dictionary = root.value().get<Value::Dictionary>();
  return dictionary != nullptr ? Result(*dictionary) : Error::posix(EINVAL);
}

Result<std::string> propertyListXML(const Value& value) { return lists::writeXMLList(value); }

Result<Value::Dictionary> unarchiveDictionary(std::string_view bytes) {
  const auto archive = readList(bytes, lists::ArchiveReferences::Allowed);
  return archive ? lists::unfoldKeyedArchive(archive.value()) : archive.error();
}

}  // namespace karno::platform
