#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "life.h"
#include "log_grammar.h"
#include "logged_texts.h"
#include "plan.h"

namespace karno::simulation {
namespace {

using ::testing::IsEmpty;
using ::testing::Le;
using ::testing::SizeIs;

Plan planWith(std::vector<Event> events) { return {.seed = 7, .events = std::move(events)}; }

// A launcher that breaks one rule, and what it takes to bring that to light.
struct Mutation {
  const char* name;
  const char* oracle;
  std::vector<Event> events = {};
};

class MutatedLauncher : public ::testing::TestWithParam<Mutation> {};

TEST_P(MutatedLauncher, IsFoundByItsOracle) {
  std::vector<Event> events = GetParam().events;
  events.insert(events.begin(), {.kind = "sabotage", .what = GetParam().name});

  EXPECT_EQ(liveSession(planWith(events)).broken(), GetParam().oracle);
}

TEST_P(MutatedLauncher, IsFoundForItsMutationAlone) {
  EXPECT_EQ(liveSession(planWith(GetParam().events)).broken(), "");
}

const std::vector<Event> kMoving = {{.kind = "lies at", .what = "/Users/tester/Downloads/Karno.app"},
                                    {.kind = "old copy"}};

const std::vector<Event> kMessages = {{.at = 6.2, .kind = "client", .what = "post enable-automatic-updates"},
                                      {.at = 7.1, .kind = "client", .what = "post enable-automatic-updates"}};

INSTANTIATE_TEST_SUITE_P(
    Simulation, MutatedLauncher,
    ::testing::Values(Mutation{"no end",
                               "a reason is followed by the end",
                               {{.at = 3, .kind = "client", .what = "post user-selected-quit"}}},
                      Mutation{"lost line", "log file"}, Mutation{"odd line", "log grammar"},
                      Mutation{"two clients", "clients"}, Mutation{"wrong build", "the choice"},
                      Mutation{"odd setting", "settings"}, Mutation{"wrong thread", "thread rules"},
                      Mutation{"deadlock", "no deadlock", kMessages}, Mutation{"crash", "no crash"},
                      Mutation{"main sleeps", "main is free"},
                      Mutation{"no bundle", "a whole bundle", kMoving},
                      Mutation{
                          "end not told", "never nothing", {{.at = 3, .kind = "client", .what = "ends 1"}}}),
    [](const auto& given) {
      std::string name = given.param.name;
      std::replace(name.begin(), name.end(), ' ', '_');
      return name;
    });

TEST(Simulation, LivesTheSameFromTheSameSeed) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const SessionReport one = liveSession(planOf(seed, Weather::Foul));
    const SessionReport again = liveSession(planOf(seed, Weather::Foul));

    ASSERT_EQ(one.lives.size(), again.lives.size()) << seed;
    for (std::size_t life = 0; life < one.lives.size(); ++life)
      EXPECT_EQ(one.lives[life].traceHash, again.lives[life].traceHash) << seed;
  }
}

TEST(Simulation, LivesInAnotherWayFromAnotherSeed) {
  Plan plan = planWith({{.at = 3, .kind = "session", .what = "skip", .number = 0.01},
                        {.at = 3, .kind = "client", .what = "post app-needs-restart"},
                        {.at = 3, .kind = "client", .what = "post check-for-updates"},
                        {.at = 3, .kind = "client", .what = "ends 0"}});

  std::set<std::uint64_t> hashes;
  for (plan.seed = 1; plan.seed <= 20; ++plan.seed) hashes.insert(liveSession(plan).lives.front().traceHash);

  EXPECT_GT(hashes.size(), 5U);
}

TEST(Simulation, LeavesOutWhatAFailureDoesNotNeed) {
  Plan plan = planOf(42, Weather::Fair);
  std::erase_if(plan.events, [](const Event& event) { return event.kind == "without build"; });
  plan.events.insert(plan.events.begin(), {.kind = "sabotage", .what = "two clients"});

  EXPECT_THAT(shortened(plan, "clients").events, SizeIs(Le(2U)));
}

TEST(Simulation, GoesOnWithAnotherLifeAfterACrash) {
  const SessionReport session = liveSession(planWith({{.kind = "crash", .number = 200}}));

  ASSERT_THAT(session.lives, SizeIs(2));
  EXPECT_EQ(session.lives[0].end, End::Crashed);
  EXPECT_EQ(session.lives[1].end, End::Running);
  EXPECT_EQ(session.broken(), "");
}

TEST(Simulation, OpensTheLauncherAnewWithTheOtherBuild) {
  const SessionReport session =
      liveSession(planWith({{.at = 2, .kind = "client", .what = "post restart-wrapper-with-fuse"},
                            {.at = 3, .kind = "client", .what = "ends 0"}}),
                  true);

  ASSERT_THAT(session.lives, SizeIs(2));
  EXPECT_EQ(session.lives[0].end, End::Terminated);
  EXPECT_THAT(session.lives[1].trace, ::testing::HasSubstr("Launching Karno(Fuse).app"));
}

// Without its quotes and gaps: those of the sources have a format in theirs.
TEST(LogGrammar, KnowsEveryLineThatTheLauncherLogs) {
  std::vector<std::string> unknown;
  for (const test::LoggedText& text : test::loggedTexts({"src/karnoctl", "src/installer", "src/platform"})) {
    std::string line = text.pattern;
    for (std::size_t gap = line.find('{'); gap != std::string::npos; gap = line.find('{', gap + 1))
      line.replace(gap, line.find('}', gap) + 1 - gap, "x");
    if (kindOf(text.level, line) == nullptr) unknown.push_back("[" + text.level + "] " + text.pattern);
  }
  EXPECT_THAT(unknown, IsEmpty());
}

TEST(LogGrammar, HasEveryLineInAStory) { EXPECT_THAT(linesWithoutStory(), IsEmpty()); }

TEST(LogGrammar, KnowsNoOtherLine) {
  EXPECT_EQ(kindOf("INFO", "Main: Started Karno"), nullptr);
  EXPECT_EQ(kindOf("WARN", "Main: Started Karno successfully"), nullptr);
}

TEST(LogGrammar, TellsAStoryThatWasCutOffFromOneThatGoesWrong) {
  const auto lines = [](std::initializer_list<const char*> messages) {
    std::vector<const LineKind*> kinds;
    for (const char* message : messages) kinds.push_back(kindOf("INFO", message));
    return kinds;
  };
  const auto begun = lines({"Startup[LAUNCH] Launching Karno.app"});
  const auto wrong = lines({"Startup[LAUNCH] Launching Karno.app", "Sparkle[START] Starting Up"});

  EXPECT_NE(storyOf(begun, false), nullptr);
  EXPECT_EQ(storyOf(begun, true), nullptr);
  EXPECT_EQ(storyOf(wrong, false), nullptr);
}

TEST(ModelOfTheChoice, FollowsArgumentsThenTheAdministratorThenTheUser) {
  EXPECT_EQ(modelOfChoice({}), "Karno.app");
  EXPECT_EQ(modelOfChoice({.isFirstStartup = false}), "Karno(Fuse).app");
  EXPECT_EQ(modelOfChoice({.isFirstStartup = true, .useFileProvider = false, .isVerified = true}),
            "Karno(Fuse).app");
  EXPECT_EQ(modelOfChoice({.admin = "text NO"}), "Karno(Fuse).app");
  EXPECT_EQ(modelOfChoice({.admin = "text  0012", .isFirstStartup = false}), "Karno.app");
  EXPECT_EQ(modelOfChoice({.arguments = {"-launch", "-launch", "Karno(Fuse).app"}, .admin = "text YES"}),
            "Karno(Fuse).app");
}

TEST(Plan, IsTheSameFromTheSameSeedAndAnotherFromTheNext) {
  EXPECT_EQ(text(planOf(5, Weather::Foul)), text(planOf(5, Weather::Foul)));
  EXPECT_NE(text(planOf(5, Weather::Foul)), text(planOf(6, Weather::Foul)));
}

}  // namespace
}  // namespace karno::simulation
