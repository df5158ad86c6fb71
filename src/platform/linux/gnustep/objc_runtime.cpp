#include <objc/runtime.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/raised_exception.h"
#include "platform/linux/gnustep/method_replacement.h"
#include "platform/text/utf8.h"

namespace karno::platform::objc {
namespace {

void (*originalRaise)(Id, Sel) = nullptr;

void noteAndRaise(Id exception, Sel selector) {
  noteRaised(exception);
  originalRaise(exception, selector);
}

// A list of C strings as the kernel passes it, with U+FFFD for what is not UTF-8. The process keeps the real
// one, for its own reading and for its children.
class ValidTexts {
 public:
  ValidTexts(char* const* texts, std::size_t countMax) {
    for (std::size_t index = 0; index < countMax && texts[index] != nullptr; ++index) {
      texts_.push_back(validUTF8(texts[index]));
    }
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  ValidTexts(const ValidTexts&) = delete;
  ValidTexts& operator=(const ValidTexts&) = delete;

  char** get() { return pointers_.data(); }
  std::size_t count() const { return texts_.size(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

void doNothing(Id, Sel) {}

// GNUstep (base 1.28) has read the arguments and the environment from the kernel before main(). It makes
// strings of them when the class of the process is first spoken to, which is all that its initialize does,
// and ends the process for one that is not UTF-8. Here it is told what it has to know.
void keepFromReadingTheProcess(Class processInfo) {
  unsigned int count = 0;
  const std::unique_ptr<Method, decltype(&std::free)> methods(
      class_copyMethodList(object_getClass(reinterpret_cast<Id>(processInfo)), &count), std::free);
  for (const Method method : std::span(methods.get(), count)) {
    if (std::string_view(sel_getName(method_getName(method))) != "initialize") continue;
    method_setImplementation(method, reinterpret_cast<IMP>(reinterpret_cast<detail::Function>(doNothing)));
  }
}

constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

}  // namespace

// GNUstep copies what it is given.
//
// GNUstep learns the program's name only: it would take the first argument for a document, and show an alert
// when it cannot open it before the application has launched.
void startRuntime(int argc, char** argv) {
  static const bool started = [&] {
    const AutoreleasePool pool;
    ValidTexts arguments(argv, argc > 0 ? 1 : 0);
    ValidTexts environment(environ, kNoLimit);
    keepFromReadingTheProcess(classNamed("NSProcessInfo"));
    send<void>(classNamed("NSProcessInfo"), "initializeWithArguments:count:environment:", arguments.get(),
               CInt{static_cast<int>(arguments.count())}, environment.get());
    originalRaise = cocoa::replaceMethod(classNamed("NSException"), "raise", noteAndRaise);
    return true;
  }();
  static_cast<void>(started);
}

}  // namespace karno::platform::objc
