#include "karnoctl/explain/explanation.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "app/karno_embedded_app.h"
#include "fake_platform.h"

namespace karno::karnoctl {

void PrintTo(const BuildChoice& choice, std::ostream* out) {
  *out << (choice.useFileProvider ? "File Provider" : "FUSE") << " by rule " << static_cast<int>(choice.rule);
}

namespace {

using test::FakePlatform;

TEST(BuildChoice, IsTheAdministratorsBeforeAnythingElse) {
  EXPECT_EQ(buildChoice({.administrator = KarnoTristate::On, .verified = true, .storedChoice = false}),
            (BuildChoice{.useFileProvider = true, .rule = ChoiceRule::Administrator}));
  EXPECT_EQ(buildChoice({.administrator = KarnoTristate::Off, .verified = true, .storedChoice = true}),
            (BuildChoice{.useFileProvider = false, .rule = ChoiceRule::Administrator}));
}

TEST(BuildChoice, IsTheSettledOneBeforeTheFirstStart) {
  EXPECT_EQ(buildChoice({.verified = true, .storedChoice = false, .firstStartup = true}),
            (BuildChoice{.useFileProvider = false, .rule = ChoiceRule::SettledBefore}));
  EXPECT_EQ(buildChoice({.verified = true, .storedChoice = true, .firstStartup = false}),
            (BuildChoice{.useFileProvider = true, .rule = ChoiceRule::SettledBefore}));
}

TEST(BuildChoice, IsFileProviderAtTheFirstStartOnly) {
  EXPECT_EQ(buildChoice({.storedChoice = false, .firstStartup = true}),
            (BuildChoice{.useFileProvider = true, .rule = ChoiceRule::FirstStartup}));
  EXPECT_EQ(buildChoice({.storedChoice = true, .firstStartup = false}),
            (BuildChoice{.useFileProvider = false, .rule = ChoiceRule::AlreadyUsingFuse}));
}

struct Situation {
  std::string name;
  std::optional<platform::Value> administrator;
  platform::Value::Dictionary settings;
};

void PrintTo(const Situation& situation, std::ostream* out) { *out << situation.name; }

// The choice that is explained must be the one that the launcher then makes.
class ExplainedChoice : public testing::TestWithParam<Situation> {
 protected:
  ExplainedChoice() {
    if (GetParam().administrator) machine.withAdmin("USE_FILE_PROVIDER", *GetParam().administrator);
    machine.settings().values = GetParam().settings;
  }

  FakePlatform machine;
};

// The explanation keeps the settings that it read for the life of the process, so the launcher comes first.
TEST_P(ExplainedChoice, IsTheOneThatTheLauncherMakes) {
  const bool chosen = KarnoEmbeddedApp::manager().useFileProvider();
  machine.settings().values = GetParam().settings;

  const Explanation explanation = gatherExplanation(platform::host());

  EXPECT_EQ(explanation.choice.useFileProvider, chosen);
  EXPECT_EQ(explanation.bundleName, KarnoEmbeddedApp::manager().name());
}

INSTANTIATE_TEST_SUITE_P(
    In, ExplainedChoice,
    testing::Values(Situation{"AnEmptySuite", std::nullopt, {}},
                    Situation{"AUsedSuite", std::nullopt, {{"isFirstStartup", false}}},
                    Situation{"ASuiteUsedByText", std::nullopt, {{"isFirstStartup", "NO"}}},
                    Situation{"ASuiteWithAListForTheFirstStart",
                              std::nullopt,
                              {{"isFirstStartup", platform::Value::Array{}}}},
                    Situation{"ASettledFileProvider",
                              std::nullopt,
                              {{"useFileProviderVerified", true}, {"useFileProvider", true}}},
                    Situation{"ASettledFuse",
                              std::nullopt,
                              {{"useFileProviderVerified", "yes"}, {"useFileProvider", "yes, please"}}},
                    Situation{"AnUnsettledChoice", std::nullopt, {{"useFileProvider", true}}},
                    Situation{"AnUnsettledChoiceAfterTheFirstStart",
                              std::nullopt,
                              {{"useFileProvider", true}, {"isFirstStartup", 0}}},
                    Situation{"AnAdministratorsYes", "YES", {{"useFileProviderVerified", true}}},
                    Situation{"AnAdministratorsNo", "no", {}}, Situation{"AnAdministratorsEmptyText", "", {}},
                    Situation{"AnAdministratorsBoolean", true, {{"isFirstStartup", false}}}),
    [](const auto& situation) { return situation.param.name; });

}  // namespace
}  // namespace karno::karnoctl
