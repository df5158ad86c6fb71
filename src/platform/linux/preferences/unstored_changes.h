#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"

namespace karno::platform {

// Keys with what they are to hold; without a value the key is to go.
using Changes = std::map<std::string, std::optional<Value>, std::less<>>;

// What was set in this process and is not in the file yet: of each key the latest. Its owner guards it.
class UnstoredChanges {
 public:
  // The changes of one moment, so that a value set while they are being stored is not taken for stored.
  struct Snapshot {
    Changes changes;
    std::uint64_t number = 0;
  };

  void set(const std::optional<Value>& value, std::string_view key);

  // Null when the key has no change that is not stored.
  const std::optional<Value>* find(std::string_view key) const;

  bool empty() const { return entries_.empty(); }
  std::vector<std::string> keys() const;
  Snapshot snapshot() const;

  // Forgets what the snapshot had, but for keys that were set again since.
  void wereStored(const Snapshot& snapshot);

 private:
  struct Entry {
    std::optional<Value> value;
    std::uint64_t number = 0;
  };

  std::map<std::string, Entry, std::less<>> entries_;
  std::uint64_t lastNumber_ = 0;
};

}  // namespace karno::platform
