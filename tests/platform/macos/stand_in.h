#pragma once
#include <map>
#include <string>
#include <vector>

#include "call_types.h"
#include "platform/cocoa/runtime/class_builder.h"
#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::trial {

// What the stand-in classes were sent and what they answer. One at a time; tests run one after the other.
class StandIns {
 public:
  StandIns() {
    current_ = this;
    liveCount_ = 0;
  }
  ~StandIns() { current_ = nullptr; }
  StandIns(const StandIns&) = delete;
  StandIns& operator=(const StandIns&) = delete;

  static StandIns& current() { return *current_; }
  static bool isThere() { return current_ != nullptr; }

  // The message with its arguments, as a stand-in writes it down.
  void record(std::string message) { messages_.push_back(std::move(message)); }
  const std::vector<std::string>& messages() const { return messages_; }

  // What a message answers from now on; nil for those without an answer.
  void answer(const std::string& message, objc::Object object) { answers_[message] = std::move(object); }
  objc::Id answerTo(const std::string& message) const;

  // From now on every message to a stand-in raises.
  void raise() { raises_ = true; }
  bool raises() const { return raises_; }

  // How many instances of stand-in classes are alive.
  int liveCount() const { return liveCount_; }
  static void countLive(int change) { liveCount_ += change; }

 private:
  static inline StandIns* current_ = nullptr;
  static inline int liveCount_ = 0;  // instances may outlive this, in an autorelease pool

  std::vector<std::string> messages_;
  std::map<std::string, objc::Object> answers_;
  bool raises_ = false;
};

// A new class below NSObject whose instances are counted in StandIns::liveCount(). Methods added with
// method() and classMethod() are plain functions of the runtime: receiver, selector, arguments, whose types
// are those of the encoding. What they throw reaches the sender, as what a method of the platform raises
// does.
class StandInClass {
 public:
  explicit StandInClass(const char* name);

  template <class R, class... Args>
  StandInClass& method(const char* selector, const char* types, R (*function)(objc::Id, objc::Sel, Args...)) {
    require(selector, types, codeOf<R, Args...>());
    add(selector, types, reinterpret_cast<void (*)()>(function));
    return *this;
  }
  template <class R, class... Args>
  StandInClass& classMethod(const char* selector, const char* types,
                            R (*function)(objc::Id, objc::Sel, Args...)) {
    require(selector, types, codeOf<R, Args...>());
    addToClass(selector, types, reinterpret_cast<void (*)()>(function));
    return *this;
  }

  Class registerClass();

 private:
  template <class R, class... Args>
  static std::string codeOf() {
    return ((typeCode<R>() + "@:") + ... + typeCode<Args>());
  }

  // Fails the running test when the encoding says another thing than the function.
  static void require(const char* selector, const char* types, const std::string& code);

  void add(const char* selector, const char* types, void (*function)());
  void addToClass(const char* selector, const char* types, void (*function)());

  Class cls_;
};

// A new instance of a stand-in class.
objc::Object instanceOf(Class cls);

// The answer that was set for the selector.
objc::Id answer(objc::Sel selector);

// Writes the message down, raises if that was asked for, and gives the answer that was set for the selector.
objc::Id recordAndAnswer(objc::Sel selector, const std::string& arguments = "");

// The same for a C function, under any name.
objc::Id recordAndAnswer(const std::string& name, const std::string& arguments);

// The text of an NSString, or "nil".
std::string shown(objc::Id string);

}  // namespace karno::platform::trial
