#include "platform/linux/preferences/unstored_changes.h"

namespace karno::platform {

void UnstoredChanges::set(const std::optional<Value>& value, std::string_view key) {
  entries_.insert_or_assign(std::string(key), Entry{.value = value, .number = ++lastNumber_});
}

const std::optional<Value>* UnstoredChanges::find(std::string_view key) const {
  const auto entry = entries_.find(key);
  return entry == entries_.end() ? nullptr : &entry->second.value;
}

std::vector<std::string> UnstoredChanges::keys() const {
  std::vector<std::string> keys;
  for (const auto& [key, entry] : entries_) keys.push_back(key);
  return keys;
}

UnstoredChanges::Snapshot UnstoredChanges::snapshot() const {
  Snapshot snapshot{.changes = {}, .number = lastNumber_};
  for (const auto& [key, entry] : entries_) snapshot.changes.emplace(key, entry.value);
  return snapshot;
}

void UnstoredChanges::wereStored(const Snapshot& snapshot) {
  std::erase_if(entries_, [&](const auto& entry) { return entry.second.number <= snapshot.number; });
}

}  // namespace karno::platform
