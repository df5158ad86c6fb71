// The least program that opens the same application object and starts a child when it has finished launching.
// Its first argument is the child's path. SIGTERM ends it.
#include <spawn.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/cocoa/runtime/class_builder.h"
#include "platform/cocoa/runtime/objc.h"
#include "platform/linux/gnustep/appearance.h"

extern "C" int NSApplicationMain(int argc, const char** argv);

namespace objc = karno::platform::objc;

namespace {

const char*& childPath() {
  static const char* path = nullptr;
  return path;
}

void applicationDidFinishLaunching(objc::Id, objc::Id) {
  char* const arguments[] = {const_cast<char*>(childPath()), nullptr};
  pid_t child = 0;
  if (posix_spawn(&child, childPath(), nullptr, nullptr, arguments, environ) != 0) std::_Exit(1);
}

Class applicationClass() {
  return objc::ClassBuilder("MinimalApplication", objc::classNamed("NSApplication")).registerClass();
}

Class delegateClass() {
  return objc::ClassBuilder("MinimalDelegate", objc::classNamed("NSObject"))
      .method<applicationDidFinishLaunching>("applicationDidFinishLaunching:")
      .registerClass();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 64;
  childPath() = argv[1];
  objc::startRuntime(argc, argv);
  const objc::AutoreleasePool pool;
  karno::platform::cocoa::registerAppearance();
  const objc::Id application = objc::send(applicationClass(), "sharedApplication");
  const objc::Object delegate =
      objc::Object::adopting(objc::send(objc::send(delegateClass(), "alloc"), "init"));
  objc::send<void>(application, "setDelegate:", delegate);
  return NSApplicationMain(argc, const_cast<const char**>(argv));
}
