#include "embedded_client/client.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "embedded_client/ending.h"
#include "embedded_client/parent_watch.h"
#include "ipc/wrapper_notification.h"
#include "platform/platform.h"

namespace karno::client {
namespace {

// The settings that launcher and client share, by the launcher's names for them.
constexpr const char* kSuite = "it.vantul.karno";
constexpr std::string_view kIsFirstStartup = "isFirstStartup";
constexpr std::array<std::string_view, 4> kSettings{kIsFirstStartup, "useFileProvider",
                                                    "useFileProviderVerified", "verboseLogging"};

// Whoever posts one of these goes away itself; the launcher waits up to five seconds for that.
constexpr std::array kFarewells{kUserSelectedQuit,
                                kAppIsTerminating,
                                kAppNeedsRestart,
                                kRestartWrapperWithFuse,
                                kRestartWrapperWithFileProvider,
                                kRestartWrapper};

// Long enough for the launcher to have the message before it sees the end of its child.
constexpr double kSecondsFromFarewellToEnd = 0.5;

Build ownBuild() { return buildForBundlePath(platform::host().bundles.mainBundle().bundlePath()); }

void quit() { platform::host().application.terminate(); }

std::string settingText(const std::optional<platform::Value>& value) {
  if (!value) return "not set";
  if (const bool* truth = value->get<bool>()) return *truth ? "yes" : "no";
  return value->description();
}

// Runs the block on the main thread after a while, without holding up any other.
void onMainThreadAfter(double seconds, platform::Block block) {
  auto& dispatch = platform::host().dispatch;
  dispatch.globalQueue(platform::QueuePriority::Default)
      .async([&dispatch, seconds, block = std::move(block)] {
        dispatch.sleep(seconds);
        dispatch.mainQueue().async(block);
      });
}

}  // namespace

Client::Client(std::int32_t parent, std::vector<ScriptStep> script)
    : parent_(parent),
      script_(std::move(script)),
      settings_(platform::host().userDefaults.makeSuite(kSuite)),
      window_(ownBuild(), parent,
              {.post = [this](std::string_view message,
                              std::optional<std::string> reason) { post(message, reason); },
               .quit = quit}) {}

void Client::applicationDidFinishLaunching() {
  settings_->setBool(false, kIsFirstStartup);
  settings_->synchronize();
  showSettings();
  window_.setStatus("Ready");
  window_.show();
  platform::host().application.activateIgnoringOtherApps();
  quitWithParent();
  followScript();
}

void Client::showSettings() {
  std::string text = fmt::format("Settings shared with the launcher ({})", kSuite);
  for (const std::string_view key : kSettings) {
    text += fmt::format("\n    {}: {}", key, settingText(settings_->objectForKey(key)));
  }
  window_.setSettings(text);
}

void Client::post(std::string_view message, const std::optional<std::string>& reason) {
  const bool posted = platform::host().distributedNotifications.post(wrapperNotification(message, reason));
  window_.setStatus(fmt::format("{} {}", posted ? "Posted" : "Could not post", message));
  showSettings();
  if (!posted || std::find(kFarewells.begin(), kFarewells.end(), message) == kFarewells.end()) return;
  window_.disableButtons();
  onMainThreadAfter(kSecondsFromFarewellToEnd, quit);
}

void Client::perform(const Action& action) {
  if (const auto* message = std::get_if<PostMessage>(&action)) {
    post(message->message, message->reason);
  } else if (const auto* end = std::get_if<ExitWithStatus>(&action)) {
    endWithStatus(end->status);
  } else if (std::holds_alternative<Crash>(action)) {
    crash();
  } else {
    ignoreTerminationSignal();
    window_.setStatus("Ignoring SIGTERM");
  }
}

void Client::followScript() {
  if (script_.empty()) return;
  auto& dispatch = platform::host().dispatch;
  dispatch.globalQueue(platform::QueuePriority::Default).async([this, &dispatch] {
    std::int64_t now = 0;
    for (const ScriptStep& step : script_) {
      if (step.milliseconds > now) dispatch.sleep(static_cast<double>(step.milliseconds - now) / 1000.0);
      now = step.milliseconds;
      dispatch.mainQueue().async([this, &step] { perform(step.action); });
    }
  });
}

void Client::quitWithParent() {
  auto& dispatch = platform::host().dispatch;
  dispatch.globalQueue(platform::QueuePriority::Background).async([parent = parent_, &dispatch] {
    waitForProcessEnd(parent);
    dispatch.mainQueue().async(quit);
  });
}

}  // namespace karno::client
