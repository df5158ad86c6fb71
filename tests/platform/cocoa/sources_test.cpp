#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "../support/temporary_folder.h"
#include "platform/cocoa/runtime/selectors.h"

namespace karno::platform::objc {
namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;
using testing::UnorderedElementsAre;

struct Source {
  std::string path;  // from the top of the project
  std::string text;
};

std::vector<Source> sourcesIn(const std::string& folder) {
  const fs::path top = KARNO_SOURCES;
  std::vector<Source> sources;
  for (const auto& entry : fs::recursive_directory_iterator(top / folder)) {
    const std::string extension = entry.path().extension();
    if (extension != ".cpp" && extension != ".h") continue;
    sources.push_back({fs::relative(entry.path(), top), karno::test::contentOf(entry.path())});
  }
  return sources;
}

// What looks a class or selector up by a name of any kind, or sends what was looked up.
constexpr std::string_view kRuntimeFunctions[] = {
    "objc_msgSend",      "objc_msg_lookup",  "objc_getClass",       "objc_lookUpClass",
    "objc_lookup_class", "sel_registerName", "sel_getUid",          "sel_get_any_uid",
    "NSClassFromString", "method_invoke",    "NSSelectorFromString"};

bool callsTheRuntime(const Source& source) {
  return std::ranges::any_of(kRuntimeFunctions, [&](std::string_view function) {
    return source.text.find(function) != std::string::npos;
  });
}

std::vector<std::string> filesThatCallTheRuntime() {
  std::vector<std::string> files;
  for (const char* const folder : {"src", "examples"}) {
    for (const Source& source : sourcesIn(folder)) {
      if (callsTheRuntime(source)) files.push_back(source.path);
    }
  }
  return files;
}

// Whether all rows with this selector are for that system, and none of them is asked for first.
bool belongsTo(Where system, std::string_view selector) {
  return std::ranges::all_of(kMessages, [&](const Message& row) {
    return row.selector != selector || (row.where == system && !row.isAskedFor);
  });
}

// As they are named in the sources.
std::vector<std::string> messagesOf(Where system) {
  std::vector<std::string> names;
  for (const Message& row : kMessages) {
    if (belongsTo(system, row.selector)) names.push_back(fmt::format("\"{}\"", row.selector));
  }
  return names;
}

// "file: selector" for each message of that system alone which is named outside its folder.
std::vector<std::string> misplacedMessages(Where system, std::string_view folder) {
  const std::vector<std::string> names = messagesOf(system);
  std::vector<std::string> misplaced;
  for (const Source& source : sourcesIn("src")) {
    if (source.path.starts_with(folder) || source.path == "src/platform/cocoa/runtime/selectors.h") continue;
    for (const std::string& name : names) {
      if (source.text.find(name) != std::string::npos) misplaced.push_back(source.path + ": " + name);
    }
  }
  return misplaced;
}

// The files that name the message, but for the table.
std::vector<std::string> filesNaming(const std::string& name, const std::vector<Source>& sources) {
  std::vector<std::string> files;
  for (const Source& source : sources) {
    if (source.path == "src/platform/cocoa/runtime/selectors.h") continue;
    if (source.text.find(name) != std::string::npos) files.push_back(source.path);
  }
  return files;
}

bool isOfLinux(const std::string& path) { return path.starts_with("src/platform/linux/"); }

// The messages of the table that no file sends.
std::vector<std::string_view> unsentMessages() {
  const std::vector<Source> sources = sourcesIn("src");
  std::vector<std::string_view> unsent;
  for (const Message& row : kMessages) {
    if (filesNaming(fmt::format("\"{}\"", row.selector), sources).empty()) unsent.push_back(row.selector);
  }
  return unsent;
}

// The messages that a Mac would be asked for although only the files of Linux send them.
std::vector<std::string_view> needlessMessages() {
  const std::vector<Source> sources = sourcesIn("src");
  std::vector<std::string_view> needless;
  for (const Message& row : kMessages) {
    if (row.where == Where::GNUstepOnly) continue;
    const auto files = filesNaming(fmt::format("\"{}\"", row.selector), sources);
    if (std::ranges::all_of(files, isOfLinux)) needless.push_back(row.selector);
  }
  return needless;
}

TEST(Sources, CallTheRuntimeByHandOnlyWhereMessagesAreMade) {
  EXPECT_THAT(filesThatCallTheRuntime(),
              UnorderedElementsAre("src/platform/cocoa/runtime/objc.cpp",
                                   "src/platform/cocoa/runtime/class_builder.cpp",
                                   "src/platform/linux/gnustep/message_function.cpp",
                                   "src/platform/macos/foundation/objc_runtime.cpp"));
}

TEST(Sources, SendWhatOnlyGNUstepKnowsFromItsFolderAlone) {
  EXPECT_THAT(misplacedMessages(Where::GNUstepOnly, "src/platform/linux/"), IsEmpty());
}

TEST(Sources, SendWhatOnlyMacOSKnowsFromItsFolderAlone) {
  EXPECT_THAT(misplacedMessages(Where::MacOSOnly, "src/platform/macos/"), IsEmpty());
  EXPECT_THAT(misplacedMessages(Where::UpdaterFramework, "src/platform/macos/"), IsEmpty());
}

TEST(Sources, SendEveryMessageOfTheTable) { EXPECT_THAT(unsentMessages(), IsEmpty()); }

TEST(Sources, AskAMacForNothingThatLinuxAloneSends) { EXPECT_THAT(needlessMessages(), IsEmpty()); }

}  // namespace
}  // namespace karno::platform::objc
