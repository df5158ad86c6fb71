#pragma once
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/never_destroyed.h"

namespace karno {

// User-visible texts by token, from the JSON tables in the bundle: the one that fits the user's language,
// then the base table. The tables are loaded once and never again. Safe from any thread.
class KarnoLocalise {
 public:
  // The text for the token; the token itself when no table has it, nothing for an empty token.
  static std::string localise(std::string_view token);

 private:
  friend class platform::NeverDestroyed<KarnoLocalise>;
  using Table = std::map<std::string, std::string, std::less<>>;

  KarnoLocalise();
  static KarnoLocalise& instance();
  static std::optional<Table> loadStringsForResource(const std::string& name, const std::string& type,
                                                     const std::string& directory);
  static std::string localisedStringForToken(std::string_view token);

  const std::optional<Table> localisedStrings_;
  const std::optional<Table> defaultStrings_;
};

}  // namespace karno
