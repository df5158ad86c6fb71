#pragma once
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <vector>

namespace karno::appcast {

// One planned change of keys: `version` is the last that the old key signs, and its bundle carries the new
// one.
struct KeyChange {
  std::string from;  // public keys, in base64
  std::string to;
  std::string version;
  bool operator==(const KeyChange&) const = default;
};

// The changes of keys that a feed remembers, in an element of its own that updaters pass over.
class KeyChanges {
 public:
  explicit KeyChanges(pugi::xml_node channel);

  // Writes one down. A Failure when the feed knows another one for that key or from that version on.
  void add(const KeyChange& change);

  // Whose signature a release of this version has to have; absent when the feed knows of no change.
  std::optional<std::string> signerOf(const std::string& version) const;

  // The key that the bundle of this version has to carry when `signer` signs it.
  std::string carriedBy(const std::string& version, const std::string& signer) const;

  // The version without which the step to this one cannot be taken; empty: there is none.
  std::string lastBefore(const std::string& version) const;

 private:
  pugi::xml_node channel_;
  std::vector<KeyChange> changes_;  // the oldest first
};

}  // namespace karno::appcast
