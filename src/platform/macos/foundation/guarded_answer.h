#pragma once
#include <string_view>
#include <utility>

#include "platform/cocoa/runtime/guarded.h"

namespace karno::platform {

// What `work` answers, or `fallback` when it throws, which is written to the console log. `doing` says in a
// few words what was tried and begins that line.
template <class Answer, class Work>
Answer guardedAnswer(std::string_view doing, Answer fallback, Work&& work) {
  objc::guardedAndLogged(doing, [&fallback, &work] { fallback = std::forward<Work>(work)(); });
  return fallback;
}

}  // namespace karno::platform
