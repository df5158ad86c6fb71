#include <objc/runtime.h>

// Stands where the bundle has the updater's framework: an updater that starts, is never in a session and
// finds nothing. Without one the launcher takes the end of its client for a part of an update, and stays.
namespace {

// What an initialiser answers when all is well.
id itself(id self, SEL, id, id) { return self; }
id updater(id self, SEL, id, id, id, id) { return self; }
BOOL start(id, SEL, id*) { return YES; }
BOOL isInSession(id, SEL) { return NO; }
BOOL canCheck(id, SEL) { return YES; }
void check(id, SEL) {}
void setAutomatically(id, SEL, BOOL) {}
id nothing(id, SEL) { return nullptr; }

class NewClass {
 public:
  explicit NewClass(const char* name)
      : cls_(objc_allocateClassPair(reinterpret_cast<Class>(objc_getClass("NSObject")), name, 0)) {}
  NewClass(const NewClass&) = delete;
  NewClass& operator=(const NewClass&) = delete;
  ~NewClass() { objc_registerClassPair(cls_); }

  template <class R, class... Args>
  void add(const char* selector, const char* types, R (*function)(id, SEL, Args...)) {
    class_addMethod(cls_, sel_registerName(selector), reinterpret_cast<IMP>(function), types);
  }

 private:
  const Class cls_;
};

// As the framework is loaded.
__attribute__((constructor)) void registerClasses() {
  NewClass driver("SPUStandardUserDriver");
  driver.add("initWithHostBundle:delegate:", "@@:@@", itself);

  NewClass made("SPUUpdater");
  made.add("initWithHostBundle:applicationBundle:userDriver:delegate:", "@@:@@@@", updater);
  made.add("startUpdater:", "B@:^@", start);
  made.add("sessionInProgress", "B@:", isInSession);
  made.add("canCheckForUpdates", "B@:", canCheck);
  made.add("checkForUpdates", "v@:", check);
  made.add("setAutomaticallyChecksForUpdates:", "v@:B", setAutomatically);
  made.add("clearFeedURLFromUserDefaults", "@@:", nothing);

  NewClass item("SUAppcastItem");
  item.add("title", "@@:", nothing);
  item.add("displayVersionString", "@@:", nothing);
  item.add("versionString", "@@:", nothing);
}

}  // namespace
