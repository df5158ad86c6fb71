#include <objc/message.h>

#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/raised_exception.h"

extern "C" {
using KarnoExceptionPreprocessor = karno::platform::objc::Id (*)(karno::platform::objc::Id);
KarnoExceptionPreprocessor objc_setExceptionPreprocessor(KarnoExceptionPreprocessor);
}

namespace karno::platform::objc {
namespace {

KarnoExceptionPreprocessor nextPreprocessor = nullptr;  // Foundation's own

Id noteAndPass(Id exception) {
  noteRaised(exception);
  return nextPreprocessor == nullptr ? exception : nextPreprocessor(exception);
}

}  // namespace

void startRuntime(int /*argc*/, char** /*argv*/) {
  static const bool started = [] {
    nextPreprocessor = objc_setExceptionPreprocessor(noteAndPass);
    return true;
  }();
  static_cast<void>(started);
}

detail::Function detail::messageFunction(Id /*receiver*/, Sel /*selector*/, bool returnsInMemory) {
#if defined(__x86_64__)
  if (returnsInMemory) {
    return reinterpret_cast<Function>(objc_msgSend_stret);
  }
#else
  static_cast<void>(returnsInMemory);
#endif
  return reinterpret_cast<Function>(objc_msgSend);
}

}  // namespace karno::platform::objc
