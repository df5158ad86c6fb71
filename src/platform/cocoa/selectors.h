#pragma once
#include <array>
#include <cstddef>
#include <string_view>

// Every Objective-C class and message that the launcher uses. A class or selector is named in code by a
// string that is looked up here when it is compiled, so a misspelling or a missing row does not compile. What
// the table claims is checked against GNUstep by the tests and against a Mac by its self-check.
namespace karno::platform::objc {

// UpdaterFramework: on macOS, once the updater framework of the bundle has been loaded, which a bundle that
// was put together without it does not have.
enum class Where { Everywhere, MacOSOnly, GNUstepOnly, UpdaterFramework };

struct MacOSVersion {
  int major = 10;
  int minor = 0;
};

struct Message {
  std::string_view className;
  char kind;  // '+' goes to the class, '-' to its instances
  std::string_view selector;
  Where where = Where::Everywhere;
  MacOSVersion since = {};  // the first macOS that has it; 10.0 for those always there
};

inline constexpr Message kMessages[] = {
    {"NSObject", '+', "alloc"},
    {"NSObject", '-', "init"},
    {"NSObject", '-', "retain"},
    {"NSObject", '-', "release"},
    {"NSObject", '-', "autorelease"},
    {"NSObject", '-', "class"},
    {"NSObject", '-', "description"},
    {"NSObject", '-', "isKindOfClass:"},
    {"NSObject", '+', "respondsToSelector:"},
    {"NSObject", '+', "instancesRespondToSelector:"},
    {"NSObject", '-', "performSelectorOnMainThread:withObject:waitUntilDone:"},
    {"NSAutoreleasePool", '-', "init"},
    {"NSProcessInfo", '+', "initializeWithArguments:count:environment:", Where::GNUstepOnly},
    {"NSThread", '+', "isMainThread"},
    {"NSRunLoop", '+', "currentRunLoop"},
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
    {"NSData", '+', "dataWithContentsOfURL:options:error:", Where::MacOSOnly},
    {"NSData", '-', "bytes"},
    {"NSData", '-', "length"},
    {"NSArray", '-', "count"},
    {"NSArray", '-', "objectAtIndex:"},
    {"NSMutableArray", '-', "addObject:"},
    {"NSDictionary", '-', "allKeys"},
    {"NSDictionary", '-', "objectForKey:"},
    {"NSMutableDictionary", '-', "setObject:forKey:"},
    {"NSSet", '+', "setWithArray:"},
    {"NSError", '-', "domain"},
    {"NSError", '-', "code"},
    {"NSError", '-', "localizedDescription"},
    {"NSError", '-', "userInfo"},
    {"NSURL", '+', "URLWithString:"},
    {"NSURL", '+', "fileURLWithPath:"},
    {"NSURL", '-', "absoluteString"},
    {"NSURL", '-', "path"},
    {"NSURLRequest", '-', "URL"},
    {"NSUUID", '+', "UUID", Where::Everywhere, {10, 8}},
    {"NSUUID", '-', "UUIDString", Where::Everywhere, {10, 8}},
    {"NSRegularExpression", '+', "regularExpressionWithPattern:options:error:"},
    {"NSRegularExpression", '-', "firstMatchInString:options:range:"},
    {"NSRegularExpression", '-', "stringByReplacingMatchesInString:options:range:withTemplate:"},
    {"NSTextCheckingResult", '-', "range"},
    {"NSDateFormatter", '-', "setLocale:"},
    {"NSDateFormatter", '-', "setTimeZone:"},
    {"NSDateFormatter", '-', "setDateFormat:"},
    {"NSDateFormatter", '-', "stringFromDate:"},
    {"NSLocale", '+', "autoupdatingCurrentLocale"},
    {"NSTimeZone", '+', "localTimeZone"},
    {"NSProcessInfo", '+', "processInfo"},
    {"NSProcessInfo", '-', "isOperatingSystemAtLeastVersion:", Where::MacOSOnly, {10, 10}},
    {"NSBundle", '+', "mainBundle"},
    {"NSBundle", '+', "bundleWithPath:"},
    {"NSBundle", '-', "loadAndReturnError:"},
    {"NSBundle", '-', "bundlePath"},
    {"NSBundle", '-', "bundleURL"},
    {"NSBundle", '-', "executablePath"},
    {"NSBundle", '-', "executableURL"},
    {"NSBundle", '-', "bundleIdentifier"},
    {"NSBundle", '-', "objectForInfoDictionaryKey:"},
    {"NSBundle", '-', "pathForResource:ofType:"},
    {"NSBundle", '-', "pathForResource:ofType:inDirectory:"},
    {"NSBundle", '-', "localizedStringForKey:value:table:"},
    {"NSFileManager", '+', "defaultManager"},
    {"NSFileManager", '-', "copyItemAtPath:toPath:error:"},
    {"NSFileManager", '-', "trashItemAtURL:resultingItemURL:error:", Where::MacOSOnly, {10, 8}},
    {"NSAppleScript", '-', "initWithSource:", Where::MacOSOnly},
    {"NSAppleScript", '-', "executeAndReturnError:", Where::MacOSOnly},

    {"NSPropertyListSerialization", '+', "propertyListWithData:options:format:error:"},
    {"NSKeyedUnarchiver", '+', "unarchivedObjectOfClasses:fromData:error:", Where::MacOSOnly, {10, 13}},

    {"NSUserDefaults", '+', "standardUserDefaults"},
    {"NSUserDefaults", '-', "initWithSuiteName:", Where::MacOSOnly, {10, 9}},
    {"NSUserDefaults", '-', "objectForKey:"},
    {"NSUserDefaults", '-', "boolForKey:"},
    {"NSUserDefaults", '-', "setBool:forKey:"},
    {"NSUserDefaults", '-', "synchronize"},
    {"NSUserDefaults", '-', "registerDefaults:"},
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

    {"NSApplication", '+', "sharedApplication"},
    {"NSApplication", '-', "setDelegate:"},
    {"NSApplication", '-', "run"},
    {"NSApplication", '-', "isActive"},
    {"NSApplication", '-', "activateIgnoringOtherApps:"},
    {"NSApplication", '-', "setActivationPolicy:", Where::MacOSOnly, {10, 6}},
    {"NSApplication", '-', "requestUserAttention:"},
    {"NSApplication", '-', "terminate:"},
    {"NSApplication", '-', "runModalForWindow:"},
    {"NSApplication", '-', "stopModalWithCode:"},
    {"NSApplication", '-', "applicationIconImage"},
    {"NSApplication", '-', "setApplicationIconImage:"},
    {"NSImage", '-', "initWithContentsOfFile:"},
    {"NSColor", '+', "colorWithCalibratedRed:green:blue:alpha:"},
    {"NSColor", '-', "set"},
    {"NSBezierPath", '+', "bezierPathWithRoundedRect:xRadius:yRadius:"},
    {"NSBezierPath", '-', "setLineWidth:"},
    {"NSBezierPath", '-', "fill"},
    {"NSBezierPath", '-', "stroke"},
    {"GSTheme", '-', "drawButton:in:view:style:state:", Where::GNUstepOnly},
    {"GSTheme", '-', "drawFocusFrame:view:", Where::GNUstepOnly},
    {"GSTheme", '-', "drawProgressIndicatorBezel:withClip:", Where::GNUstepOnly},
    {"GSTheme", '-', "drawProgressIndicatorBarDeterminate:", Where::GNUstepOnly},
    {"GSTheme", '-', "setKeyEquivalent:forButtonCell:", Where::GNUstepOnly},
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

    {"NSAlert", '-', "setAlertStyle:"},
    {"NSAlert", '-', "setMessageText:"},
    {"NSAlert", '-', "setInformativeText:"},
    {"NSAlert", '-', "addButtonWithTitle:"},
    {"NSAlert", '-', "runModal"},

    {"NSWindow", '-', "initWithContentRect:styleMask:backing:defer:"},
    {"NSWindow", '-', "setReleasedWhenClosed:"},
    {"NSWindow", '-', "setTitle:"},
    {"NSWindow", '-', "title"},
    {"NSWindow", '-', "center"},
    {"NSWindow", '-', "contentView"},
    {"NSWindow", '-', "makeKeyAndOrderFront:"},
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
    {"NSView", '-', "setFrame:"},
    {"NSView", '-', "bounds"},
    {"NSView", '-', "setNeedsDisplay:"},
    {"NSView", '-', "setNextKeyView:"},
    {"NSFont", '+', "systemFontOfSize:"},
    {"NSFont", '+', "boldSystemFontOfSize:"},
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
    {"NSButtonCell", '-', "keyEquivalent"},
    {"NSButton", '-', "setBezelStyle:"},
    {"NSButton", '-', "setButtonType:"},
    {"NSButton", '-', "performClick:"},
    {"NSScrollView", '-', "setHasVerticalScroller:"},
    {"NSScrollView", '-', "setAutohidesScrollers:"},
    {"NSScrollView", '-', "setBorderType:"},
    {"NSScrollView", '-', "setDocumentView:"},
    {"NSScrollView", '-', "contentSize"},
    {"NSText", '-', "setString:"},
    {"NSText", '-', "string"},
    {"NSText", '-', "setVerticallyResizable:"},
    {"NSText", '-', "setHorizontallyResizable:"},
    {"NSText", '-', "setMaxSize:"},
    {"NSText", '-', "sizeToFit"},
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
    {"SPUUpdater", '-', "clearFeedURLFromUserDefaults", Where::UpdaterFramework},  // since its version 2.4
    {"SUAppcastItem", '-', "title", Where::UpdaterFramework},
    {"SUAppcastItem", '-', "displayVersionString", Where::UpdaterFramework},
    {"SUAppcastItem", '-', "versionString", Where::UpdaterFramework},
};

inline constexpr std::size_t kMessageCount = std::size(kMessages);

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
