#pragma once
#include <string>
#include <string_view>

#include "platform/cocoa/runtime/objc.h"

namespace karno::platform::objc {

// UTF-8 to NSString. Any byte is allowed: NUL stays, each byte that is not part of UTF-8 becomes U+FFFD.
// GNUstep drops a byte order mark in front.
Object string(std::string_view text);

// NSString to UTF-8; a surrogate without its other half becomes U+FFFD. Null gives an empty text.
std::string text(Id string);

}  // namespace karno::platform::objc
