#pragma once
#include "platform/cocoa/runtime/objc.h"

// How many messages macOS's two functions have carried. The second one is for results that the processor's
// calling convention puts into memory of the caller.
extern "C" {
extern int karno_messages_sent;
extern int karno_messages_sent_stret;
}

// What the source under test has set with objc_setExceptionPreprocessor().
karno::platform::objc::Id (*installedPreprocessor())(karno::platform::objc::Id);
