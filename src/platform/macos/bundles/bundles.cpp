#include "platform/macos/bundles/bundles.h"

#include <utility>

#include "platform/cocoa/runtime/strings.h"
#include "platform/cocoa/runtime/values.h"
#include "platform/macos/foundation/guarded_answer.h"
#include "platform/posix/files/program_bundle.h"

namespace karno::platform {
namespace {

// The answer of `ask` as text; absent when it is nil or an exception.
template <class Ask>
std::optional<std::string> textOf(Ask ask) {
  const objc::AutoreleasePool pool;
  return guardedAnswer("asking a bundle", std::optional<std::string>(), [ask] {
    const objc::Id string = ask();
    return string == nullptr ? std::nullopt : std::optional(objc::text(string));
  });
}

}  // namespace

std::optional<std::string> FoundationBundle::stringOf(objc::Selector property) const {
  return textOf([this, property] { return objc::send(bundle_, property); });
}

std::string FoundationBundle::bundlePath() const { return stringOf("bundlePath").value_or(""); }
std::optional<std::string> FoundationBundle::executablePath() const { return stringOf("executablePath"); }
std::optional<std::string> FoundationBundle::executableURL() const {
  return textOf([this] { return objc::send(objc::send(bundle_, "executableURL"), "absoluteString"); });
}
std::optional<std::string> FoundationBundle::bundleIdentifier() const { return stringOf("bundleIdentifier"); }

std::optional<Value> FoundationBundle::objectForInfoDictionaryKey(std::string_view key) const {
  const objc::AutoreleasePool pool;
  return guardedAnswer("reading Info.plist", std::optional<Value>(), [this, key] {
    return cocoa::valueOf(objc::send(bundle_, "objectForInfoDictionaryKey:", objc::string(key)));
  });
}

std::optional<std::string> FoundationBundle::pathForResource(std::string_view name, std::string_view type,
                                                             std::string_view directory) const {
  return textOf([this, name, type, directory] {
    const objc::Object resource = objc::string(name);
    const objc::Object extension = objc::string(type);
    if (directory.empty()) {
      return objc::send(bundle_, "pathForResource:ofType:", resource, extension);
    }
    return objc::send(bundle_, "pathForResource:ofType:inDirectory:", resource, extension,
                      objc::string(directory));
  });
}

std::string FoundationBundle::localisedString(std::string_view key, std::string_view table) const {
  const auto text = textOf([this, key, table] {
    return objc::send(bundle_, "localizedStringForKey:value:table:", objc::string(key), objc::string(""),
                      objc::string(table));
  });
  return text.value_or(std::string(key));
}

const Bundle& FoundationBundles::mainBundle() const {
  std::call_once(mainMade_, [this] {
    const objc::AutoreleasePool pool;
    main_ =
        std::make_shared<const FoundationBundle>(guardedAnswer("opening the main bundle", objc::Object(), [] {
          return objc::Object::retaining(objc::send(objc::classNamed("NSBundle"), "mainBundle"));
        }));
    const std::optional<std::string> place = bundleOfProgram(programPath_);
    if (!place || main_->bundleIdentifier()) return;
    if (auto found = bundleAtPath(*place)) main_ = std::move(found);
  });
  return *main_;
}

std::shared_ptr<const Bundle> FoundationBundles::bundleAtPath(const std::string& path) const {
  const objc::AutoreleasePool pool;
  objc::Object found = guardedAnswer("opening a bundle", objc::Object(), [&path] {
    return objc::Object::retaining(
        objc::send(objc::classNamed("NSBundle"), "bundleWithPath:", objc::string(path)));
  });
  if (!found) return nullptr;
  return std::make_shared<const FoundationBundle>(std::move(found));
}

}  // namespace karno::platform
