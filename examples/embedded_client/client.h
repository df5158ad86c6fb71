#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded_client/client_window.h"
#include "embedded_client/script.h"
#include "platform/application.h"
#include "platform/user_defaults.h"

namespace karno::client {

// The client application: shows its window, posts messages, follows its script, and quits when its launcher
// has gone. Lives as long as the process; main thread only.
class Client final : public platform::ApplicationDelegate {
 public:
  Client(std::int32_t parent, std::vector<ScriptStep> script);

  void applicationDidFinishLaunching() override;
  void applicationWillTerminate() override {}

 private:
  void post(std::string_view message, const std::optional<std::string>& reason);
  void perform(const Action& action);
  void followScript();
  void quitWithParent();
  void showSettings();

  const std::int32_t parent_;
  const std::vector<ScriptStep> script_;
  const std::unique_ptr<platform::UserDefaults> settings_;
  ClientWindow window_;
};

}  // namespace karno::client
