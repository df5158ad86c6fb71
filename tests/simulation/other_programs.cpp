#include "other_programs.h"

#include <gtest/gtest.h>

#include <map>

#include "app/progress_window_controller.h"
#include "app/startup_interface.h"
#include "app/startup_manager.h"
#include "localise/karno_localise.h"
#include "log/date_texts.h"
#include "log/karno_log.h"
#include "move/karno_move_application_manager.h"
#include "settings/karno_admin_settings.h"
#include "settings/karno_settings.h"
#include "system/fuse_requirement.h"
#include "system/version_strings.h"
#include "util/karno_class_utils.h"
#include "util/string_utils.h"
#include "util/utilities.h"

namespace karno::simulation {
namespace {

using platform::Value;

void cancelProgress() {
  StartupManager& manager = StartupManager::instance();
  const auto controller = ProgressWindowController::make();
  manager.setProgressController(controller);
  controller->setTitle("Karno");
  controller->setMessage("Waiting");
  controller->showWindow();
  controller->setProgress(40);
  controller->cancelButtonClicked();
  manager.progressWindowControllerUserPressedCancel(*controller);
  controller->close();
  EXPECT_EQ(controller->progress(), 40);
}

void askForTexts() {
  using Texts = KarnoLocalise;
  const std::string name = Texts::localise("ITEM_AND_N_MORE", {{"name", "a"}, {"n", "$0"}},
                                           LocaliseOptionEllipsis | LocaliseOptionQuestionMark |
                                               LocaliseOptionUppercase | LocaliseOptionFirstLetterUppercase);
  EXPECT_TRUE(name.ends_with("...?")) << name;
  EXPECT_FALSE(Texts::localise("OK", LocaliseOptionAreYouSure | LocaliseOptionContactSysAdmin).empty());
  EXPECT_EQ(Texts::applyOptionsToString("one. two", LocaliseOptionNewLineAfterFirstSentence), "one.\ntwo");
  EXPECT_EQ(Texts::applyOptionsToString("one two", LocaliseOptionCapitalised), "One Two");
  EXPECT_EQ(Texts::item("a", 3).find("{{"), std::string::npos);
  EXPECT_FALSE(Texts::item("a", 0).empty());
  EXPECT_EQ(Texts::stringByReplacingKey("a", "b", "{{ a }} { {a} } {{c}}"), "b b {{c}}");
  EXPECT_EQ(Texts::stringByReplacingKey("a", "$0", "{{ a }}"), "{{ a }}");
  EXPECT_EQ(Texts::stringByReplacingKey("a", "b", "{{\u00a0é }}"), "{{\u00a0é }}");
  EXPECT_EQ(Texts::stringByReplacingKey("a(", "b", "{{ a( }}"), "{{ a( }}");
}

void askForNames() {
  EXPECT_TRUE(u_hasHTTPSPrefix("https://updates.vantul.it"));
  EXPECT_TRUE(u_hasPathExtension("/a/b.APP", {"app"}));
  EXPECT_TRUE(u_containsString("launcher", "launch"));
  EXPECT_TRUE(u_isEqualToCaseInsensitive("Karno", "KARNO"));
  EXPECT_TRUE(u_onlyContainsCharactersInSet("007", [](char32_t one) { return one >= '0' && one <= '9'; }));
  EXPECT_EQ(u_pathEncodedString("a b"), "a%20b");
  EXPECT_EQ(u_captilisiedString("one two"), "One Two");
  EXPECT_EQ(lastPathComponent("/a/b/"), "b");
  EXPECT_EQ(pathComponents("/a/b").size(), 3U);
  EXPECT_EQ(descriptionOrNull(std::optional<std::string>()), "(null)");
  EXPECT_TRUE(isOlderThanVersion("4.4.1", "4.10"));
  EXPECT_TRUE(isNewerThanVersion("4.10", "4.4.1"));
  EXPECT_TRUE(isEqualToVersion("4.4.0", "4.4"));
  EXPECT_TRUE(isEqualOrOlderThanVersion("4.4", "4.4"));
  EXPECT_TRUE(isEqualOrNewerThanVersion("4.4", "4.4"));
  EXPECT_TRUE(needsToUpdateToVersion("4.4.1", "4.4.2", 2));
  EXPECT_FALSE(FuseRequirement::allOptions().front().description().empty());
  const platform::Date now = platform::host().clock.now();
  EXPECT_LT(formattedDateTime(now).size(), stringForLogDate(now).size());
  EXPECT_EQ(timestampForDate(now).size(), 17U);
}

void askForFiles() {
  EXPECT_FALSE(Utilities::systemDownloadDirectory().empty());
  Utilities::openFinderForPath(Utilities::karnoCacheDirectory());
  Utilities::pathForSymlink("/Applications");
  Utilities::readPropertyListAtPath("/none.plist");
  Utilities::readPropertyListAtPath(test::kFuseInformationFile);
}

void askForSettings() {
  const KarnoAdminSettings& admin = KarnoAdminSettings::instance();
  admin.isValueSetForKey("UPDATES_ENABLED");
  admin.boolForKey("UPDATES_ENABLED", true);
  KarnoSettings::instance().verboseLogging();
  KarnoLog::manager().queuedLogs();
  const std::map<ValueClass, Value> items = {
      {ValueClass::Number, true},           {ValueClass::String, "a"},
      {ValueClass::Date, platform::Date()}, {ValueClass::Data, Value::Data()},
      {ValueClass::Array, Value::Array()},  {ValueClass::Dictionary, Value::Dictionary()}};
  for (const auto& [kind, item] : items) EXPECT_TRUE(KarnoClassUtils::isKindOfClassForItem(item, kind));
}

}  // namespace

void useInterface(test::FakePlatform& machine, const std::string& what) {
  const auto somewhere = [&](void (*use)()) { machine.scheduler.addThread("global(0)", use); };
  StartupManager& manager = StartupManager::instance();
  if (what == "asks again") manager.continueAfterManualInstall();
  if (what == "cancels progress") cancelProgress();
  if (what == "moves twice") {
    for (int i = 0; i < 2; ++i)
      machine.scheduler.addThread(
          "global(-32768)", [] { KarnoMoveApplicationManager::instance().moveApplicationIfRequired(); });
  }
  if (const auto delegate = manager.delegate(); delegate && what == "wants an end")
    delegate->startupAppShouldTerminate(manager);
  if (what == "texts") somewhere(askForTexts);
  if (what == "names") somewhere(askForNames);
  if (what == "files") somewhere(askForFiles);
  if (what == "settings") somewhere(askForSettings);
}

}  // namespace karno::simulation
