#pragma once
#include <pugixml.hpp>
#include <string>

namespace karno::appcast {

// The feed's names that belong to the updater's namespace. The prefix may be any: it is the one that the
// feed's outermost element declares for the namespace.
class FeedNames {
 public:
  // Declares the prefix "sparkle" where the feed has none. A Failure when that stands for something else.
  explicit FeedNames(pugi::xml_node rss);

  // The name with the prefix: "sparkle:version".
  std::string of(const std::string& local) const { return prefix_ + ":" + local; }

  // Empty when the item has none. Older feeds have it as an attribute of the enclosure.
  std::string versionOf(pugi::xml_node item) const;

 private:
  std::string prefix_;
};

}  // namespace karno::appcast
