#include "platform/cocoa/runtime_check.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/cocoa/runtime/errors.h"
#include "platform/cocoa/runtime/guarded.h"
#include "platform/cocoa/runtime/strings.h"
#include "platform/posix/processes/process_information.h"

namespace karno::platform::cocoa {
namespace {

using objc::Id;
using objc::send;

void look(const objc::Message& message, MessageCensus& census) {
  ++census.lookedFor;
  if (objc::isPresent(message)) return;
  std::string name = fmt::format("{}[{} {}]", message.kind, message.className, message.selector);
  (message.isAskedFor ? census.doneWithout : census.missing).push_back(std::move(name));
}

Error cannotBeLoaded(const std::string& framework) {
  return Error(std::string(kCocoaErrorDomain), 3587,  // NSExecutableLoadError
               {{std::string(kLocalizedDescriptionKey), "The framework cannot be loaded: " + framework}});
}

std::optional<Error> load(const std::string& framework) {
  const Id bundle = send(objc::classNamed("NSBundle"), "bundleWithPath:", objc::string(framework));
  Id error = nullptr;
  if (send<bool>(bundle, "loadAndReturnError:", &error)) return std::nullopt;
  return errorOf(error, cannotBeLoaded(framework));
}

}  // namespace

std::string CocoaRuntimeCheck::programPath() const { return platform::programPath(); }

bool CocoaRuntimeCheck::isExecutable(const std::string& path) const {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

MessageCensus CocoaRuntimeCheck::systemMessages() const {
  MessageCensus census;
  for (const objc::Message& message : objc::kMessages) {
    if (message.where == objc::Where::Everywhere || message.where == system_) look(message, census);
  }
  return census;
}

Result<MessageCensus> CocoaRuntimeCheck::updaterMessages(const std::string& framework) const {
  const objc::AutoreleasePool pool;
  const auto failure = objc::guarded("loading the updater", [&framework] { return load(framework); });
  if (!failure) return failure.error();
  if (failure.value()) return *failure.value();
  MessageCensus census;
  for (const objc::Message& message : objc::kMessages) {
    if (message.where == objc::Where::UpdaterFramework) look(message, census);
  }
  return census;
}

bool CocoaRuntimeCheck::exceptionsBecomeErrors() const {
  const objc::AutoreleasePool pool;
  const auto raised = objc::guarded("raising an exception", [] {
    const objc::Object empty = objc::make("NSMutableArray");
    static_cast<void>(send(empty, "objectAtIndex:", objc::UInteger{0}));
  });
  return raised && raised->code() == objc::kForeignExceptionCode;
}

}  // namespace karno::platform::cocoa
