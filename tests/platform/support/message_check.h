#pragma once
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::trial {

// Holds messages that are sent against the launcher's table, class by class: the compiler has only seen to it
// that each selector is in the table for some class.
//
// A message is covered by a row for the class of its receiver or for one above it, so the private classes of
// a cluster count as the public one, and a class of the launcher's as the one it was built on. A class that a
// test has made to stand in for another counts as any one class of the table: there must be one that has rows
// for everything that it is sent. Selectors that are in no row are sent by tests alone and do not count.
class MessageCheck {
 public:
  // What the table lacks, as "-[NSNumber count]"; nothing when the message is covered.
  std::string missingRow(objc::Id receiver, objc::Sel selector);

 private:
  using Candidates = std::set<std::string_view>;

  bool isCoveredForStandIn(Class cls, char kind, std::string_view selector);

  std::set<std::pair<Class, objc::Sel>> covered_;
  std::map<Class, Candidates> standsInFor_;
};

// From now on tells `handler` of every message without a row, on the thread that sends it. Once for a
// process.
void watchMessages(std::function<void(const std::string& missingRow)> handler);

// What carries a message that only a test sends, past that watch.
objc::detail::Function uncheckedFunction(objc::Id receiver, objc::Sel selector, bool returnsInMemory);

}  // namespace karno::platform::trial
