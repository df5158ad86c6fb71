#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "ipc/karno_process_utils.h"
#include "localise/karno_localise.h"
#include "log/karno_log.h"
#include "platform/platform.h"
#include "settings/karno_settings.h"
#include "system/fuse_manager.h"
#include "system/fuse_sites.h"
#include "system/version_strings.h"
#include "util/error.h"
#include "util/string_utils.h"

namespace karno {
namespace {

// As many arrays and objects in one another as Foundation reads.
constexpr int kRecordDepthMax = 512;

constexpr std::string_view kURLWithHost = R"(\Ahttps://[A-Za-z0-9.-]+(:[0-9]{1,5})?/)";

// A field of a release record, as the log prints it. A value of another type than a string prints as JSON.
std::optional<std::string> fieldText(const nlohmann::json& record, const char* name) {
  const auto field = record.find(name);
  if (field == record.end()) return std::nullopt;
  return field->is_string() ? field->get<std::string>() : field->dump();
}

// Only a string is searched for a version: a number has lost how it was written.
std::optional<std::string> versionInField(const nlohmann::json& record, const char* name) {
  const auto field = record.find(name);
  if (field == record.end() || !field->is_string()) return std::nullopt;
  return FuseManager::extractVersionFromString(field->get<std::string>());
}

// The record of a release, or what is wrong with it.
Result<nlohmann::json> parseRecord(const std::string& body) {
  const auto failure = [](const std::string& reason) {
    return Error(std::string(platform::kCocoaErrorDomain), 3840,
                 {{std::string(platform::kLocalizedDescriptionKey), reason}});
  };
  try {
    bool isTooDeep = false;
    // What lies deeper is never built: printing it would overflow the stack.
    nlohmann::json record =
        nlohmann::json::parse(body, [&](int depth, nlohmann::json::parse_event_t, const nlohmann::json&) {
          if (depth > kRecordDepthMax) isTooDeep = true;
          return !isTooDeep;
        });
    if (isTooDeep) return failure("The record is nested too deeply.");
    if (!record.is_object())
      return failure(fmt::format("The record is no object but {}.", record.type_name()));
    return record;
  } catch (const nlohmann::json::exception& error) {
    return failure(error.what());
  }
}

bool userWantsToContinue() {
  const long answer = platform::host().alerts.runModal({
      .style = platform::AlertStyle::Informational,
      .messageText = KarnoLocalise::localise("UPDATE"),
      .informativeText = fmt::format("{}\n\n{}", KarnoLocalise::localise("MESSAGE_FUSE_UPGRADE_REQUIRED"),
                                     KarnoLocalise::localise("WHAT_WOULD_YOU_LIKE_TO_DO")),
      .buttons = {{.title = KarnoLocalise::localise("CONTINUE"), .keyEquivalent = ""},
                  {.title = KarnoLocalise::localise("NOT_NOW"), .keyEquivalent = "\033"}},
  });
  return answer == platform::kAlertFirstButtonReturn;
}

void openPreferencePane() {
  std::optional<Error> error;
  KarnoProcessUtils::executeCommand(
      "open -b com.apple.systempreferences /Library/PreferencePanes/macFUSE.prefPane", nullptr, false,
      &error);
  if (error) {
    KarnoLog::manager().logError(fmt::format("Fuse[UPDATE] Failed to open Fuse preference pane. Reason: {}",
                                             error->localizedDescription()));
  }
}

void promptUser() {
  KarnoLog& log = KarnoLog::manager();
  log.logInfo("Fuse[UPDATE] Prompting user - Fuse update is available");
  if (!userWantsToContinue()) {
    log.logInfo("Fuse[UPDATE] User chose not to continue.");
    return;
  }
  log.logInfo("Fuse[UPDATE] User continued - Opening Fuse preference pane.");
  openPreferencePane();
}

}  // namespace

void FuseManager::promptUserIfUpdateIsAvailableCompletion(std::function<void()> completion) {
  const auto complete = [completion = std::move(completion)] {
    if (completion) completion();
  };
  if (KarnoSettings::instance().useFileProvider()) {
    KarnoLog::manager().logInfo("Fuse[START] Not checking for a Fuse update - as we use a FileProvider");
    complete();
    return;
  }
  KarnoProcessUtils::runOnBackgroundThread([this, complete] {
    const bool isAvailable = isUpdateAvailable();
    KarnoProcessUtils::runInMainThread([isAvailable, complete] {
      if (isAvailable) promptUser();
      complete();
    });
  });
}

bool FuseManager::isUpdateAvailable() {
  const std::optional<std::string> latest = retrieveLatestVersionAvailable();
  if (!latest) {
    KarnoLog::manager().logWarn("Fuse[UPDATE] Failed to check for an update");
    return false;
  }
  const std::optional<std::string> installed = installedFuseVersion();
  const bool isAvailable = installed && isOlderThanVersion(*installed, *latest);
  KarnoLog::manager().logInfo(
      fmt::format("Fuse[UPDATE] Installed Version={}, Latest Version={} (update available={})",
                  descriptionOrNull(installed), *latest, isAvailable ? "YES" : "NO"));
  return isAvailable;
}

std::optional<std::string> FuseManager::retrieveLatestVersionAvailable() {
  KarnoLog& log = KarnoLog::manager();
  const std::string url = fuseLatestReleaseURL();
  log.logInfo(fmt::format("Fuse[UPDATE] Checking for update ({})", url));
  if (!platform::host().text.containsMatch(kURLWithHost, url, false)) {
    log.logError(fmt::format("Fuse[UPDATE] Failed to retrieve metadata. Invalid url '{}'", url));
    return std::nullopt;
  }
  const Result<std::string> body = platform::host().urlLoading.contentsOfURL(url);
  if (!body) {
    log.logError(fmt::format("Fuse[UPDATE] Failed to retrieve metadata. Reason: {}",
                             body.error().localizedDescription()));
    return std::nullopt;
  }
  const Result<nlohmann::json> record = parseRecord(body.value());
  if (!record) {
    log.logError(fmt::format("Fuse[UPDATE] Failed to parse metadata. Reason: {}",
                             record.error().localizedDescription()));
    return std::nullopt;
  }
  std::optional<std::string> version = versionInField(record.value(), "name");
  if (!version) version = versionInField(record.value(), "tag_name");
  log.logInfo(fmt::format("Fuse[UPDATE] Latest version: name='{}' (tag_name='{}') => '{}'",
                          descriptionOrNull(fieldText(record.value(), "name")),
                          descriptionOrNull(fieldText(record.value(), "tag_name")),
                          descriptionOrNull(version)));
  return version;
}

std::optional<std::string> FuseManager::extractVersionFromString(const std::string& text) {
  const auto expression = platform::host().text.makeRegularExpression(R"(\d+(\.\d+)+)");
  return expression ? expression.value()->firstMatch(text) : std::nullopt;
}

}  // namespace karno
