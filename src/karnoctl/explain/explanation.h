#pragma once
#include <optional>
#include <string>
#include <vector>

#include "karnoctl/explain/move_explanation.h"
#include "karnoctl/explain/requirement_check.h"
#include "platform/platform.h"
#include "platform/value.h"
#include "settings/karno_tristate.h"
#include "system/fuse_requirement.h"

namespace karno::karnoctl {

// What decides which build runs when the command line does not say it.
struct ChoiceFacts {
  KarnoTristate administrator = KarnoTristate::NotSet;
  bool verified = false;      // the user's choice was settled by an earlier start
  bool storedChoice = false;  // what was settled: the File Provider build or not
  bool firstStartup = true;
};

enum class ChoiceRule { Administrator, SettledBefore, FirstStartup, AlreadyUsingFuse };

struct BuildChoice {
  bool useFileProvider = false;
  ChoiceRule rule = ChoiceRule::AlreadyUsingFuse;
  bool operator==(const BuildChoice&) const = default;
};

// What the next start of the launcher decides, without deciding it: the launcher writes the choice down.
BuildChoice buildChoice(const ChoiceFacts& facts);

struct AdministratorSetting {
  std::string key;
  std::optional<platform::Value> value = std::nullopt;  // as it is stored
  bool isForced = false;  // by a managed preference file or a configuration profile
  KarnoTristate readAs = KarnoTristate::NotSet;
};

// A file that may hold the administrator's values and cannot be read.
struct DamagedFile {
  std::string path;
  std::string why;
};

struct UserSetting {
  std::string key;
  std::optional<platform::Value> value = std::nullopt;  // as it is stored
  bool readAs = false;
};

struct RequirementRow {
  FuseRequirement requirement;
  std::string objection;  // why the system does not meet it; empty when it does
};

// What the check of the system, which follows the choice of the build, comes to.
enum class SystemCheck {
  FileProvider,       // passes: macOS has it
  Fuse,               // passes: macFUSE is good enough
  FuseForOldSystem,   // the same, because macOS is too old for File Provider
  FuseToBeInstalled,  // the user is asked to install macFUSE
  FuseToBeUpgraded,   // the user is asked to install a newer one
};

enum class FeedSource { Deployment, NamedByMarker, DebugFeed };

// All that decides what the next start of the launcher does.
struct Explanation {
  MoveExplanation move;

  ChoiceFacts facts;
  BuildChoice choice;
  std::string bundleName;  // of the chosen build
  bool isBundleThere = false;

  SystemFacts system;
  std::optional<std::string> buildVersion;  // of macOS
  std::string fuseInformationFile;
  std::vector<RequirementRow> requirements;
  SystemCheck check = SystemCheck::FileProvider;
  FuseAdvice advice;

  std::string feedURL;
  std::string feedMarker;
  FeedSource feedSource = FeedSource::Deployment;

  std::vector<DamagedFile> damagedFiles;
  AdministratorSetting useFileProvider;
  AdministratorSetting updatesEnabled;
  std::vector<UserSetting> userSettings;
};

// Asks the launcher's own code and leaves no trace: nothing is written and nothing logged. Runs the two shell
// commands that tell processor and macOS, and hdiutil where the launcher may be on a disk image.
Explanation gatherExplanation(platform::Platform& platform);

}  // namespace karno::karnoctl
