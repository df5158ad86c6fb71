#include "platform/linux/gnustep/appearance.h"

#include "platform/cocoa/runtime/objc.h"
#include "platform/cocoa/runtime/strings.h"

namespace karno::platform::cocoa {
namespace {

struct Setting {
  const char* key;
  const char* value;
};

// GNUstep's own look is dark grey with a 64 by 64 application tile on the desktop. Colours are red, green,
// blue.
constexpr Setting kSettings[] = {
    {"GSSuppressAppIcon", "YES"},
    {"NSFont", "DejaVuSans"},
    {"NSBoldFont", "DejaVuSans-Bold"},
    {"NSFontSize", "13"},
    {"NSScrollViewInterfaceStyle", "NSMacintoshInterfaceStyle"},  // the scroller at the right
    {"windowBackgroundColor", "0.95 0.95 0.95"},
    {"controlBackgroundColor", "0.95 0.95 0.95"},
    {"controlColor", "0.95 0.95 0.95"},
    {"controlHighlightColor", "0.95 0.95 0.95"},
    {"controlShadowColor", "0.80 0.80 0.80"},
    {"controlDarkShadowColor", "0.60 0.60 0.60"},
    {"scrollBarColor", "0.90 0.90 0.90"},
};

}  // namespace

void registerAppearance() {
  const objc::AutoreleasePool pool;
  const objc::Object settings = objc::make("NSMutableDictionary");
  for (const Setting& setting : kSettings) {
    objc::send<void>(settings, "setObject:forKey:", objc::string(setting.value), objc::string(setting.key));
  }
  const objc::Id defaults = objc::send(objc::classNamed("NSUserDefaults"), "standardUserDefaults");
  objc::send<void>(defaults, "registerDefaults:", settings);
}

}  // namespace karno::platform::cocoa
