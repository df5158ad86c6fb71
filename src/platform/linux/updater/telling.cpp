#include "platform/linux/updater/telling.h"

#include "platform/platform.h"

namespace karno::platform::updates {

std::string infoText(std::string_view key) {
  const std::optional<Value> value = host().bundles.mainBundle().objectForInfoDictionaryKey(key);
  const std::string* const text = value ? value->get<std::string>() : nullptr;
  return text != nullptr ? *text : std::string();
}

void tellUser(const std::string& message, const std::string& explanation, const std::string& button) {
  host().dispatch.mainEvents().async([message, explanation, button] {
    host().application.activateIgnoringOtherApps();
    host().alerts.runModal({.style = AlertStyle::Informational,
                            .messageText = message,
                            .informativeText = explanation,
                            .buttons = {{.title = button, .keyEquivalent = "\r"}}});
  });
}

}  // namespace karno::platform::updates
