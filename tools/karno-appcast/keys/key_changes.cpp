#include "karno-appcast/keys/key_changes.h"

#include <algorithm>

#include "karno-appcast/failure.h"
#include "platform/version_order.h"

namespace karno::appcast {
namespace {

using platform::compareVersions;

constexpr const char* kElement = "karno:keyChange";
constexpr const char* kDeclaration = "xmlns:karno";
constexpr const char* kNamespace = "https://vantul.it/xml-namespaces/karno-appcast";

}  // namespace

KeyChanges::KeyChanges(pugi::xml_node channel) : channel_(channel) {
  for (const pugi::xml_node each : channel.children(kElement))
    changes_.push_back(
        {each.attribute("from").value(), each.attribute("to").value(), each.attribute("version").value()});
  std::ranges::sort(changes_, [](const KeyChange& one, const KeyChange& other) {
    return compareVersions(one.version, other.version) < 0;
  });
}

void KeyChanges::add(const KeyChange& change) {
  if (std::ranges::count(changes_, change) != 0) return;
  const bool isOld = !changes_.empty() && compareVersions(changes_.back().version, change.version) >= 0;
  if (isOld || (!changes_.empty() && changes_.back().to != change.from))
    throw Failure("the feed has changed to another key with version " + changes_.back().version + " already");
  changes_.push_back(change);
  const pugi::xml_node first = channel_.child("item");
  pugi::xml_node element =
      first ? channel_.insert_child_before(kElement, first) : channel_.append_child(kElement);
  element.append_attribute(kDeclaration) = kNamespace;
  element.append_attribute("from") = change.from.c_str();
  element.append_attribute("to") = change.to.c_str();
  element.append_attribute("version") = change.version.c_str();
}

std::optional<std::string> KeyChanges::signerOf(const std::string& version) const {
  for (const KeyChange& change : changes_) {
    if (compareVersions(version, change.version) <= 0) return change.from;
  }
  return changes_.empty() ? std::nullopt : std::optional(changes_.back().to);
}

std::string KeyChanges::carriedBy(const std::string& version, const std::string& signer) const {
  for (const KeyChange& change : changes_) {
    if (compareVersions(version, change.version) == 0) return change.to;
  }
  return signer;
}

std::string KeyChanges::lastBefore(const std::string& version) const {
  std::string last;
  for (const KeyChange& change : changes_) {
    if (compareVersions(change.version, version) < 0) last = change.version;
  }
  return last;
}

}  // namespace karno::appcast
