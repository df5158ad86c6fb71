#pragma once
#include "platform/macos/foundation/core_foundation.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace karno::platform::trial {

// Stands in for CoreFoundation, whose objects are Foundation's here as on a Mac: writes down what its
// functions are told and gives the answers that were set. What they hand out as owned is counted until it is
// released. One at a time.
class CoreFoundation {
 public:
  CoreFoundation() { current_ = this; }
  ~CoreFoundation() { current_ = nullptr; }
  CoreFoundation(const CoreFoundation&) = delete;
  CoreFoundation& operator=(const CoreFoundation&) = delete;

  static CoreFoundation& current() { return *current_; }

  // What a function that was asked for `name` hands out; null without an answer.
  void answer(const std::string& name, objc::Object object) { answers_[name] = std::move(object); }
  std::vector<CFRange> words;  // what a tokenizer finds, one after the other
  unsigned char isForced = 0;
  std::string raisingFunction;  // its calls throw

  const std::vector<std::string>& lines() const { return lines_; }

  // How much of what was handed out as owned has not been released.
  int ownedCount() const { return ownedCount_; }

  // For the functions themselves.
  void record(const std::string& function, const std::string& arguments);
  CFTypeRef owned(const std::string& name);
  CFTypeRef owned(objc::Id object);
  void release(CFTypeRef object);
  std::string nameOf(CFTypeRef object) const;  // of what was set as an answer; "null" for null

 private:
  static inline CoreFoundation* current_ = nullptr;
  std::vector<std::string> lines_;
  std::map<std::string, objc::Object> answers_;
  int ownedCount_ = 0;
};

}  // namespace karno::platform::trial
