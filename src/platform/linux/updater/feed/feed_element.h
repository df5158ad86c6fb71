#pragma once
#include <map>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace karno::platform::updates {

// An element of a feed. Names with a prefix count by the namespace that the prefix stands for at the element,
// which an element around it may have said. Each attribute is looked at once, however many there are: what
// somebody else's server sends must not cost more than its size.
class FeedElement {
 public:
  // `parent` is null for the root and otherwise lives longer.
  FeedElement(pugi::xml_node node, const FeedElement* parent);

  pugi::xml_node node() const { return node_; }

  // The first child with that name in the namespace of updates; null without one.
  pugi::xml_node child(std::string_view local) const;

  // The text of that child and the value of such an attribute, each as one line without blanks around it;
  // empty without one.
  std::string childText(std::string_view local) const;
  std::string attribute(std::string_view local) const;

  // The texts of all children with that name.
  std::vector<std::string> childTexts(std::string_view local) const;

 private:
  bool isUpdatesPrefix(std::string_view prefix) const;

  pugi::xml_node node_;
  const FeedElement* parent_;
  std::map<std::string_view, bool> prefixes_;  // declared here, and whether for the namespace of updates
};

std::string withoutBlanksAround(std::string_view text);

// All that an element holds beside other elements, without blanks around it.
std::string textOf(pugi::xml_node element);

}  // namespace karno::platform::updates
