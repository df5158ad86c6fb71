#include "platform/macos/bundles.h"

#include "platform/cocoa/guarded.h"
#include "platform/cocoa/strings.h"
#include "platform/cocoa/values.h"
#include "platform/posix/program_bundle.h"

namespace karno::platform {
namespace {

// The answer of `ask` as text; absent when it is nil or an exception.
template <class Ask>
std::optional<std::string> textOf(Ask ask) {
  const objc::AutoreleasePool pool;
  const auto answer = objc::guarded("asking a bundle", [ask]() -> std::optional<std::string> {
    const objc::Id string = ask();
    return string == nullptr ? std::nullopt : std::optional(objc::text(string));
  });
  return answer ? answer.value() : std::nullopt;
}

}  // namespace

std::optional<std::string> FoundationBundle::stringOf(objc::Selector property) const {
  return textOf([this, property] { return objc::send(bundle_, property); });
}

std::optional<std::string> FoundationBundle::urlOf(objc::Selector property) const {
  return textOf([this, property] { return objc::send(objc::send(bundle_, property), "absoluteString"); });
}

std::string FoundationBundle::bundlePath() const { return stringOf("bundlePath").value_or(""); }
std::string FoundationBundle::bundleURL() const { return urlOf("bundleURL").value_or(""); }
std::optional<std::string> FoundationBundle::executablePath() const { return stringOf("executablePath"); }
std::optional<std::string> FoundationBundle::executableURL() const { return urlOf("executableURL"); }
std::optional<std::string> FoundationBundle::bundleIdentifier() const { return stringOf("bundleIdentifier"); }

std::optional<Value> FoundationBundle::objectForInfoDictionaryKey(std::string_view key) const {
  const objc::AutoreleasePool pool;
  const auto value = objc::guarded("reading Info.plist", [this, key] {
    return cocoa::valueOf(objc::send(bundle_, "objectForInfoDictionaryKey:", objc::string(key)));
  });
  return value ? value.value() : std::nullopt;
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
    const objc::Id bundle = objc::send(objc::classNamed("NSBundle"), "mainBundle");
    main_ = std::make_shared<const FoundationBundle>(objc::Object::retaining(bundle));
    const std::optional<std::string> place = bundleOfProgram(programPath_);
    if (!place || main_->bundleIdentifier()) return;
    if (auto found = bundleAtPath(*place)) main_ = std::move(found);
  });
  return *main_;
}

std::shared_ptr<const Bundle> FoundationBundles::bundleAtPath(const std::string& path) const {
  const objc::AutoreleasePool pool;
  const auto found = objc::guarded("opening a bundle", [&path] {
    return objc::Object::retaining(
        objc::send(objc::classNamed("NSBundle"), "bundleWithPath:", objc::string(path)));
  });
  if (!found || !found.value()) return nullptr;
  return std::make_shared<const FoundationBundle>(found.value());
}

}  // namespace karno::platform
