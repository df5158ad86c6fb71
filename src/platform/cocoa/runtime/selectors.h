#pragma once
#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <string_view>

// Every Objective-C class and message that the launcher uses. A class or selector is named in code by a
// string that is looked up here when it is compiled, so a misspelling or a missing row does not compile. That
// each message goes to a class that has a row for it is seen when the tests send it. What the table claims is
// checked against GNUstep by the tests and against a Mac by "karnoctl self-check".
namespace karno::platform::objc {

// Where a message is sent. UpdaterFramework: on macOS, once the updater framework of the bundle has been
// loaded, which a bundle that was put together without it does not have.
enum class Where { Everywhere, MacOSOnly, GNUstepOnly, UpdaterFramework };

struct MacOSVersion {
  int major = 10;
  int minor = 0;
  auto operator<=>(const MacOSVersion&) const = default;
};

// The lowest that the launcher runs on.
inline constexpr MacOSVersion kLowestMacOS = {10, 14};

struct Message {
  std::string_view className;
  char kind;  // '+' goes to the class, '-' to its instances
  std::string_view selector;
  Where where = Where::Everywhere;
  MacOSVersion since = {};  // the first macOS that has it; 10.0 for those always there
  bool isAskedFor = false;  // sent only where the class says that it has it, and done without elsewhere
};

inline constexpr bool kAskedFor = true;

inline constexpr Message kMessages[] = {
    {"NSObject", '+', "alloc"},
    {"NSObject", '-', "init"},
    {"NSObject", '-', "retain"},
    {"NSObject", '-', "release"},
    {"NSObject", '-', "autorelease"},
    {"NSObject", '-', "class"},
    {"NSObject", '-', "description"},
    {"NSObject", '-', "isKindOfClass:"},
    {"NSObject", '-', "respondsToSelector:"},
    {"NSObject", '-', "performSelectorOnMainThread:withObject:waitUntilDone:", Where::Everywhere, {10, 2}},
    {"NSAutoreleasePool", '-', "init"},
    {"NSProcessInfo", '+', "initializeWithArguments:count:environment:", Where::GNUstepOnly},
    {"NSThread", '+', "isMainThread", Where::Everywhere, {10, 5}},
    {"NSRunLoop", '+', "currentRunLoop", Where::GNUstepOnly},
    {"NSRunLoop", '-', "removeEvent:type:forMode:all:", Where::GNUstepOnly},
    {"NSRunLoop", '-', "addEvent:type:watcher:forMode:", Where::GNUstepOnly},

    {"NSString", '-', "initWithCharacters:length:"},
    {"NSString", '-', "length"},
    {"NSString", '-', "getCharacters:range:"},
    {"NSString", '-', "caseInsensitiveCompare:"},
    {"NSString", '-', "substringWithRange:"},
    {"NSNumber", '+', "numberWithBool:"},
    {"NSNumber", '+', "numberWithLongLong:"},
    {"NSNumber", '+', "numberWithDouble:"},
    {"NSNumber", '-', "objCType"},
    {"NSNumber", '-', "boolValue"},
    {"NSNumber", '-', "longLongValue"},
    {"NSNumber", '-', "unsignedLongLongValue"},
    {"NSNumber", '-', "doubleValue"},
    {"NSDate", '+', "dateWithTimeIntervalSince1970:"},
    {"NSDate", '-', "timeIntervalSince1970"},
    {"NSData", '+', "dataWithBytes:length:"},
    {"NSData", '+', "dataWithContentsOfURL:options:error:", Where::MacOSOnly, {10, 4}},
    {"NSData", '-', "bytes"},
    {"NSData", '-', "length"},
    {"NSArray", '-', "count"},
    {"NSArray", '-', "objectAtIndex:"},
    {"NSMutableArray", '-', "addObject:"},
    {"NSDictionary", '-', "allKeys"},
    {"NSDictionary", '-', "objectForKey:"},
    {"NSMutableDictionary", '-', "setObject:forKey:"},
    {"NSError", '-', "domain", Where::Everywhere, {10, 2}},
    {"NSError", '-', "code", Where::Everywhere, {10, 2}},
    {"NSError", '-', "localizedDescription", Where::Everywhere, {10, 2}},
    {"NSError", '-', "userInfo", Where::Everywhere, {10, 2}},
    {"NSURL", '+', "URLWithString:"},
    {"NSURL", '+', "fileURLWithPath:"},
    {"NSURL", '-', "absoluteString"},
    {"NSURL", '-', "path"},
    {"NSURLRequest", '-', "URL", Where::Everywhere, {10, 2}},
    {"NSUUID", '+', "UUID", Where::Everywhere, {10, 8}},
    {"NSUUID", '-', "UUIDString", Where::Everywhere, {10, 8}},
    {"NSRegularExpression", '+', "regularExpressionWithPattern:options:error:", Where::Everywhere, {10, 7}},
    {"NSRegularExpression", '-', "firstMatchInString:options:range:", Where::Everywhere, {10, 7}},
    {"NSRegularExpression",
     '-',
     "stringByReplacingMatchesInString:options:range:withTemplate:",
     Where::Everywhere,
     {10, 7}},
    {"NSTextCheckingResult", '-', "range", Where::Everywhere, {10, 6}},
    {"NSDateFormatter", '-', "setLocale:", Where::Everywhere, {10, 4}},
    {"NSDateFormatter", '-', "setTimeZone:", Where::Everywhere, {10, 4}},
    {"NSDateFormatter", '-', "setDateFormat:", Where::Everywhere, {10, 4}},
    {"NSDateFormatter", '-', "stringFromDate:", Where::Everywhere, {10, 4}},
    {"NSLocale", '+', "autoupdatingCurrentLocale", Where::Everywhere, {10, 5}},
    {"NSTimeZone", '+', "localTimeZone"},
    {"NSProcessInfo", '+', "processInfo"},
    {"NSProcessInfo", '-', "isOperatingSystemAtLeastVersion:", Where::MacOSOnly, {10, 10}},
    {"NSProcessInfo", '-', "beginActivityWithOptions:reason:", Where::Everywhere, {10, 9}},
    {"NSProcessInfo", '-', "endActivity:", Where::Everywhere, {10, 9}},
    {"NSBundle", '+', "mainBundle"},
    {"NSBundle", '+', "bundleWithPath:"},
    {"NSBundle", '-', "loadAndReturnError:", Where::Everywhere, {10, 5}},
    {"NSBundle", '-', "bundlePath"},
    {"NSBundle", '-', "executablePath"},
    {"NSBundle", '-', "executableURL", Where::Everywhere, {10, 6}},
    {"NSBundle", '-', "bundleIdentifier"},
    {"NSBundle", '-', "objectForInfoDictionaryKey:", Where::Everywhere, {10, 2}},
    {"NSBundle", '-', "pathForResource:ofType:"},
    {"NSBundle", '-', "pathForResource:ofType:inDirectory:"},
    {"NSBundle", '-', "localizedStringForKey:value:table:"},
    {"NSFileManager", '+', "defaultManager"},
    {"NSFileManager", '-', "copyItemAtPath:toPath:error:", Where::Everywhere, {10, 5}},
    {"NSFileManager", '-', "trashItemAtURL:resultingItemURL:error:", Where::MacOSOnly, {10, 8}},
    {"NSAppleScript", '-', "initWithSource:", Where::MacOSOnly, {10, 2}},
    {"NSAppleScript", '-', "executeAndReturnError:", Where::MacOSOnly, {10, 2}},

    {"NSUserDefaults", '+', "standardUserDefaults"},
    {"NSUserDefaults", '-', "initWithSuiteName:", Where::MacOSOnly, {10, 9}},
    {"NSUserDefaults", '-', "objectForKey:"},
    {"NSUserDefaults", '-', "boolForKey:"},
    {"NSUserDefaults", '-', "setBool:forKey:"},
    {"NSUserDefaults", '-', "synchronize"},
    {"NSUserDefaults", '-', "registerDefaults:", Where::GNUstepOnly},
    {"NSNotificationCenter", '+', "defaultCenter"},
    {"NSNotificationCenter", '-', "addObserver:selector:name:object:"},
    {"NSNotificationCenter", '-', "removeObserver:"},
    {"NSNotification", '-', "name"},
    {"NSNotification", '-', "object"},
    {"NSNotification", '-', "userInfo"},
    {"NSDistributedNotificationCenter", '+', "defaultCenter"},
    {"NSDistributedNotificationCenter", '-', "addObserver:selector:name:object:suspensionBehavior:"},
    {"NSDistributedNotificationCenter", '-', "removeObserver:"},
    {"NSDistributedNotificationCenter", '-', "postNotificationName:object:userInfo:deliverImmediately:"},

    {"NSException", '-', "name"},
    {"NSException", '-', "reason"},
    {"NSException", '-', "raise", Where::GNUstepOnly},

    {"NSApplication", '+', "sharedApplication"},
    {"NSApplication", '-', "setDelegate:"},
    {"NSApplication", '-', "run", Where::GNUstepOnly},
    {"NSApplication", '-', "isActive"},
    {"NSApplication", '-', "activateIgnoringOtherApps:"},
    {"NSApplication", '-', "activate", Where::MacOSOnly, {14, 0}, kAskedFor},
    {"NSApplication", '-', "yieldActivationToApplication:", Where::MacOSOnly, {14, 0}, kAskedFor},
    {"NSApplication", '-', "setMainMenu:"},
    {"NSApplication", '-', "deactivate", Where::GNUstepOnly},
    {"NSApplication", '-', "windows", Where::GNUstepOnly},
    {"GSDisplayServer", '-', "serverDevice", Where::GNUstepOnly},
    {"GSDisplayServer", '-', "windowDevice:", Where::GNUstepOnly},
    {"NSApplication", '-', "setActivationPolicy:", Where::MacOSOnly, {10, 6}, kAskedFor},
    {"NSApplication", '-', "requestUserAttention:", Where::Everywhere, {10, 1}},
    {"NSApplication", '-', "terminate:"},
    {"NSApplication", '-', "hide:"},
    {"NSApplication", '-', "orderFrontStandardAboutPanel:"},
    {"NSApplication", '-', "modalWindow"},
    {"NSApplication", '-', "runModalForWindow:"},
    {"NSApplication", '-', "stopModalWithCode:"},
    {"NSApplication", '-', "applicationIconImage"},
    {"NSImage", '-', "initWithContentsOfFile:"},
    {"NSColor", '+', "colorWithCalibratedRed:green:blue:alpha:", Where::GNUstepOnly},
    {"NSColor", '-', "set", Where::GNUstepOnly},
    {"NSBezierPath", '+', "bezierPathWithRoundedRect:xRadius:yRadius:", Where::GNUstepOnly},
    {"NSBezierPath", '-', "setLineWidth:", Where::GNUstepOnly},
    {"NSBezierPath", '-', "fill", Where::GNUstepOnly},
    {"NSBezierPath", '-', "stroke", Where::GNUstepOnly},
    {"GSTheme", '-', "drawButton:in:view:style:state:", Where::GNUstepOnly},
    {"GSTheme", '-', "drawFocusFrame:view:", Where::GNUstepOnly},
    {"GSTheme", '-', "drawProgressIndicatorBezel:withClip:", Where::GNUstepOnly},
    {"GSTheme", '-', "drawProgressIndicatorBarDeterminate:", Where::GNUstepOnly},
    {"GSTheme", '-', "setKeyEquivalent:forButtonCell:", Where::GNUstepOnly},
    {"GSTheme", '-', "drawScrollerRect:inView:hitPart:isHorizontal:", Where::GNUstepOnly},
    {"NSScroller", '-', "setArrowsPosition:", Where::GNUstepOnly},
    {"NSScroller", '-', "rectForPart:", Where::GNUstepOnly},
    {"NSTextView", '-', "copySelection", Where::GNUstepOnly},
    {"GSServicesManager", '-', "registerAsServiceProvider", Where::GNUstepOnly},
    {"NSWorkspace", '+', "sharedWorkspace"},
    {"NSWorkspace", '-', "openURL:"},
    {"NSWorkspace", '-', "runningApplications", Where::Everywhere, {10, 6}},
    {"NSWorkspace", '-', "selectFile:inFileViewerRootedAtPath:"},
    {"NSRunningApplication", '+', "runningApplicationsWithBundleIdentifier:", Where::Everywhere, {10, 6}},
    {"NSRunningApplication", '-', "bundleIdentifier", Where::Everywhere, {10, 6}},
    {"NSRunningApplication", '-', "bundleURL", Where::Everywhere, {10, 6}},
    {"NSRunningApplication", '-', "processIdentifier", Where::Everywhere, {10, 6}},
    {"NSRunningApplication", '+', "runningApplicationWithProcessIdentifier:", Where::Everywhere, {10, 6}},
    {"NSRunningApplication", '-', "activateWithOptions:", Where::Everywhere, {10, 6}},

    {"NSMenu", '-', "initWithTitle:"},
    {"NSMenu", '-', "addItem:"},
    {"NSMenuItem", '-', "initWithTitle:action:keyEquivalent:"},
    {"NSMenuItem", '-', "setSubmenu:"},
    {"NSText", '-', "copy:"},
    {"NSText", '-', "selectAll:"},

    {"NSAlert", '-', "setAlertStyle:", Where::Everywhere, {10, 3}},
    {"NSAlert", '-', "setMessageText:", Where::Everywhere, {10, 3}},
    {"NSAlert", '-', "setInformativeText:", Where::Everywhere, {10, 3}},
    {"NSAlert", '-', "addButtonWithTitle:", Where::Everywhere, {10, 3}},
    {"NSAlert", '-', "runModal", Where::Everywhere, {10, 3}},

    {"NSWindow", '-', "initWithContentRect:styleMask:backing:defer:"},
    {"NSWindow", '-', "setReleasedWhenClosed:"},
    {"NSWindow", '-', "setRestorable:", Where::MacOSOnly, {10, 7}, kAskedFor},
    {"NSWindow", '-', "setCollectionBehavior:", Where::Everywhere, {10, 5}},
    {"NSWindow", '-', "performClose:"},
    {"NSWindow", '-', "performMiniaturize:"},
    {"NSWindow", '-', "setTitle:"},
    {"NSWindow", '-', "title"},
    {"NSWindow", '-', "center"},
    {"NSWindow", '-', "contentView"},
    {"NSWindow", '-', "makeKeyAndOrderFront:"},
    {"NSWindow", '-', "makeKeyWindow", Where::GNUstepOnly},
    {"NSWindow", '-', "windowNumber", Where::GNUstepOnly},
    {"NSWindow", '-', "orderOut:"},
    {"NSWindow", '-', "close"},
    {"NSWindow", '-', "setDelegate:"},
    {"NSWindow", '-', "isVisible"},
    {"NSWindow", '-', "frame"},
    {"NSWindow", '-', "setContentSize:"},
    {"NSWindow", '-', "setFrameTopLeftPoint:"},
    {"NSWindow", '-', "setInitialFirstResponder:"},
    {"NSView", '-', "addSubview:"},
    {"NSView", '-', "initWithFrame:"},
    {"NSView", '-', "frame"},
    {"NSView", '-', "setFrame:"},
    {"NSView", '-', "bounds", Where::GNUstepOnly},
    {"NSView", '-', "setNeedsDisplay:"},
    {"NSView", '-', "setNextKeyView:"},
    {"NSView", '-', "setAccessibilityLabel:", Where::MacOSOnly, {10, 10}, kAskedFor},
    {"NSFont", '+', "systemFontOfSize:"},
    {"NSFont", '+', "boldSystemFontOfSize:"},
    {"NSFont", '+', "fontWithName:size:", Where::GNUstepOnly},
    {"NSFont", '-', "pointSize", Where::GNUstepOnly},
    {"NSFont", '-', "coveredCharacterSet", Where::GNUstepOnly},
    {"NSCharacterSet", '-', "longCharacterIsMember:", Where::GNUstepOnly},
    {"NSFontManager", '+', "sharedFontManager", Where::GNUstepOnly},
    {"NSFontManager", '-', "traitsOfFont:", Where::GNUstepOnly},
    {"NSFontManager", '-', "convertFont:toNotHaveTrait:", Where::GNUstepOnly},
    {"NSAttributedString", '-', "string", Where::GNUstepOnly},
    {"NSAttributedString", '-', "attribute:atIndex:effectiveRange:", Where::GNUstepOnly},
    {"NSMutableAttributedString", '-', "addAttribute:value:range:", Where::GNUstepOnly},
    {"NSMutableAttributedString", '-', "fixFontAttributeInRange:", Where::GNUstepOnly},
    {"NSAttributedString", '-', "boundingRectWithSize:options:"},
    {"NSControl", '-', "setStringValue:"},
    {"NSControl", '-', "stringValue"},
    {"NSControl", '-', "attributedStringValue"},
    {"NSControl", '-', "setFont:"},
    {"NSControl", '-', "cell"},
    {"NSControl", '-', "setEnabled:"},
    {"NSControl", '-', "setTarget:"},
    {"NSControl", '-', "setAction:"},
    {"NSCell", '-', "setWraps:"},
    {"NSCell", '-', "cellSize"},
    {"NSTextField", '-', "setEditable:"},
    {"NSTextField", '-', "setSelectable:"},
    {"NSTextField", '-', "setBezeled:"},
    {"NSTextField", '-', "setBordered:"},
    {"NSTextField", '-', "setDrawsBackground:"},
    {"NSButton", '-', "setTitle:"},
    {"NSButton", '-', "title"},
    {"NSButton", '-', "setKeyEquivalent:"},
    {"NSButtonCell", '-', "keyEquivalent", Where::GNUstepOnly},
    {"NSButton", '-', "setBezelStyle:"},
    {"NSButton", '-', "setButtonType:"},
    {"NSButton", '-', "performClick:"},
    {"NSScrollView", '-', "setHasVerticalScroller:"},
    {"NSScrollView", '-', "setAutohidesScrollers:", Where::Everywhere, {10, 3}},
    {"NSScrollView", '-', "setBorderType:"},
    {"NSScrollView", '-', "setDocumentView:"},
    {"NSScrollView", '-', "contentSize"},
    {"NSTextView", '-', "setEditable:"},
    {"NSTextView", '-', "setFont:"},
    {"NSTextView", '-', "setString:"},
    {"NSTextView", '-', "string"},
    {"NSTextView", '-', "setVerticallyResizable:"},
    {"NSTextView", '-', "setHorizontallyResizable:"},
    {"NSTextView", '-', "setMaxSize:"},
    {"NSTextView", '-', "sizeToFit"},
    {"NSTextView", '-', "setTextContainerInset:"},
    {"NSTextView", '-', "layoutManager"},
    {"NSTextView", '-', "textContainer"},
    {"NSLayoutManager", '-', "glyphIndexForPoint:inTextContainer:"},
    {"NSLayoutManager", '-', "lineFragmentRectForGlyphAtIndex:effectiveRange:"},
    {"NSLayoutManager", '-', "usedRectForTextContainer:"},
    {"NSImageView", '-', "setImage:"},
    {"NSImageView", '-', "setImageScaling:"},
    {"NSProgressIndicator", '-', "setStyle:"},
    {"NSProgressIndicator", '-', "setIndeterminate:"},
    {"NSProgressIndicator", '-', "setMinValue:"},
    {"NSProgressIndicator", '-', "setMaxValue:"},
    {"NSProgressIndicator", '-', "setDoubleValue:"},
    {"NSProgressIndicator", '-', "stopAnimation:"},

    {"SPUStandardUserDriver", '-', "initWithHostBundle:delegate:", Where::UpdaterFramework},
    {"SPUUpdater", '-', "initWithHostBundle:applicationBundle:userDriver:delegate:", Where::UpdaterFramework},
    {"SPUUpdater", '-', "startUpdater:", Where::UpdaterFramework},
    {"SPUUpdater", '-', "sessionInProgress", Where::UpdaterFramework},
    {"SPUUpdater", '-', "canCheckForUpdates", Where::UpdaterFramework},
    {"SPUUpdater", '-', "checkForUpdates", Where::UpdaterFramework},
    {"SPUUpdater", '-', "setAutomaticallyChecksForUpdates:", Where::UpdaterFramework},
    // Since version 2.4 of the framework.
    {"SPUUpdater", '-', "clearFeedURLFromUserDefaults", Where::UpdaterFramework, {}, kAskedFor},
    {"SUAppcastItem", '-', "title", Where::UpdaterFramework},
    {"SUAppcastItem", '-', "displayVersionString", Where::UpdaterFramework},
    {"SUAppcastItem", '-', "versionString", Where::UpdaterFramework},
};

inline constexpr std::size_t kMessageCount = std::size(kMessages);

static_assert(std::ranges::all_of(kMessages,
                                  [](const Message& message) {
                                    return message.since <= kLowestMacOS || message.isAskedFor;
                                  }),
              "a message that the lowest macOS lacks has to be asked for before it is sent");

// A selector of the table.
class Selector {
 public:
  template <std::size_t N>
  consteval Selector(const char (&name)[N]) : index_(indexOf({name, N - 1})) {}

  constexpr std::size_t index() const { return index_; }
  constexpr const char* name() const { return kMessages[index_].selector.data(); }

 private:
  static consteval std::size_t indexOf(std::string_view name) {
    for (std::size_t index = 0; index < kMessageCount; ++index) {
      if (kMessages[index].selector == name) {
        return index;
      }
    }
    throw "this selector is missing from the table";
  }

  std::size_t index_;
};

// A class of the table.
class ClassName {
 public:
  template <std::size_t N>
  consteval ClassName(const char (&name)[N]) : name_(find({name, N - 1})) {}

  constexpr const char* name() const { return name_; }

 private:
  static consteval const char* find(std::string_view name) {
    for (const Message& message : kMessages) {
      if (message.className == name) {
        return message.className.data();
      }
    }
    throw "this class is missing from the table";
  }

  const char* name_;
};

}  // namespace karno::platform::objc
