#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace karno::platform {

// What the application object tells the launcher. All calls come on the main thread.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  virtual void applicationDidFinishLaunching() = 0;
  virtual void applicationWillTerminate() = 0;

  // The user has opened the application once more while it runs. True lets the system do what it usually
  // does, which brings the windows to the front that there are. Never called on Linux.
  virtual bool applicationShouldHandleReopen(bool /*hasVisibleWindows*/) { return true; }
};

// Regular: with a place in the Dock, and windows that can come to the front. Accessory: without the place.
enum class ActivationPolicy : long { Regular = 0, Accessory = 1 };

// Critical: goes on until the application is activated.
enum class AttentionRequest : unsigned long { Critical = 0, Informational = 10 };

// The process-wide application object. Main thread only.
class Application {
 public:
  virtual ~Application() = default;

  // Whether the launcher is in front of every other application.
  virtual bool isActive() const = 0;

  // Brings the launcher in front of whatever application is active now. Takes effect later.
  virtual void activateIgnoringOtherApps() = 0;

  virtual void setActivationPolicy(ActivationPolicy policy) = 0;

  // Asks for the user's attention, by the icon in the Dock. Nothing happens while the application is active.
  virtual void requestUserAttention(AttentionRequest request) = 0;

  // Begins an orderly end, as soon as no window is modal: the delegate hears applicationWillTerminate(); a
  // quarter of a second later, in which threads can finish what that began, the process exits with 0.
  virtual void terminate() = 0;
};

// Stands for the main interface description: makes the objects of the launcher and wires them. Called once on
// the main thread when the platform is installed and the application object exists.
using MainInterface = std::function<std::shared_ptr<ApplicationDelegate>()>;

// The application main routine: installs this system's Platform, makes the application object, loads the main
// interface and runs until terminate(). Keeps the delegate alive for the life of the process. A signal that
// tells the process to end (TERM, INT, HUP) ends it in the same order within two seconds, modal window or
// not; before the delegate was told of the launch, it is told of the end alone. A second one ends it at once.
// Returns only if the application object could not be made; the result is then the exit status.
int applicationMain(int argc, char** argv, const MainInterface& loadMainInterface);

}  // namespace karno::platform
