#include <gmock/gmock.h>

#include <cstdlib>

#include "fake_platform.h"
#include "karnoctl/diagnose/diagnosis.h"
#include "life.h"
#include "plan.h"

// What is found in the logs of simulated sessions is what went wrong in them.
namespace karno::simulation {
namespace {

using ::testing::Le;

// A night has time for more: KARNO_TEST_SEEDS.
std::uint64_t seeds(std::uint64_t usually) {
  const char* const given = std::getenv("KARNO_TEST_SEEDS");
  return given != nullptr ? std::strtoull(given, nullptr, 10) : usually;
}

// Versions are compared by the rules of a platform.
karnoctl::Diagnosis diagnosisOf(const std::vector<std::string>& log) {
  const test::FakePlatform machine;
  karnoctl::Diagnostician reader;
  for (const std::string& line : log) reader.take(line);
  return reader.diagnosis([](const auto&) { return std::optional(true); });
}

// As soon as it has happened: of the first life, unless that was dropped and nobody could ask.
std::string firstCauseOf(const Plan& plan) {
  const SessionReport session = liveSession(plan);
  const bool isDropped = session.lives.front().end == End::Crashed;
  const karnoctl::Diagnosis found =
      diagnosisOf((isDropped ? session.lives.back() : session.lives.front()).log);
  return found.findings.empty() ? "nothing" : std::string(found.findings.front().cause->name);
}

// What is put into a session in which else nothing goes wrong.
struct Injected {
  const char* name;
  const char* cause;
  std::vector<Event> events;
};

// A client that goes as it should could take the fault's place.
bool isLeaving(const Event& event) {
  return event.kind == "client" && (event.what.starts_with("ends") || event.what.ends_with("quit") ||
                                    event.what.ends_with("needs-restart"));
}

class InjectedFault : public ::testing::TestWithParam<Injected> {};

TEST_P(InjectedFault, IsTheFirstCauseThatIsNamed) {
  std::vector<std::string> others;
  const std::uint64_t count = seeds(10);
  for (std::uint64_t seed = 1; seed <= count; ++seed) {
    Plan plan = planOf(seed, Weather::Calm);
    std::erase_if(plan.events, isLeaving);
    plan.events.insert(plan.events.end(), GetParam().events.begin(), GetParam().events.end());
    std::ranges::stable_sort(plan.events, {}, &Event::at);
    const std::string first = firstCauseOf(plan);
    if (first != GetParam().cause) others.push_back(std::to_string(seed) + " " + first);
  }

  EXPECT_THAT(others.size(), Le((count + 19) / 20)) << ::testing::PrintToString(others);
}

Event given(std::string kind, std::string what = {}, double number = 0) {
  return {.kind = std::move(kind), .what = std::move(what), .number = number};
}
Event then(double at, std::string kind, std::string what = {}) {
  return {.at = at, .kind = std::move(kind), .what = std::move(what), .number = 0.5};
}

const Event kWithFuse = given("setting", "isFirstStartup=0");
const Event kDownloaded = given("lies at", "/Users/tester/Downloads/Karno.app");
const Event kInstalls = then(1, "session", "installs");

INSTANTIATE_TEST_SUITE_P(
    Simulation, InjectedFault,
    ::testing::Values(
        Injected{"no_client",
                 "client-missing",
                 {given("without build", "Karno.app"), given("without build", "Karno(Fuse).app")}},
        Injected{"no_program",
                 "client-does-not-start",
                 {given("without executable", "Karno.app"), given("without executable", "Karno(Fuse).app")}},
        Injected{"no_memory", "client-does-not-start", {given("fault", "Tasks::launch fails 12", 1)}},
        Injected{"a_crash",
                 "client-crashed",
                 {then(1, "client", "post app-is-terminating-abnormally"), then(1.1, "client", "killed 11")}},
        Injected{"a_client_that_stays", "client-stays", {then(1, "client", "post app-needs-restart")}},
        Injected{"a_launcher_that_is_not_opened",
                 "launcher-not-opened-anew",
                 {then(1, "client", "post restart-wrapper"), then(1.5, "client", "ends 0"),
                  given("fault", "Tasks::launch fails 12", 2)}},
        Injected{"no_shell", "system-not-known", {kWithFuse, given("fault", "Shell::open fails 24", 1)}},
        Injected{"a_user_without_macfuse",
                 "macfuse-refused",
                 {kWithFuse, given("fuse", "none"), then(1, "press", "cancel")}},
        Injected{"no_macfuse",
                 "macfuse-missing",
                 {kWithFuse, given("fuse", "none"), then(1, "press", "continue")}},
        Injected{"an_old_macfuse", "macfuse-too-old", {kWithFuse, given("fuse", "4.0.0")}},
        Injected{"a_copy_that_fails",
                 "move-failed",
                 {kDownloaded, given("fault", "FileManager::copyItem fails 28", 1)}},
        Injected{"a_user_who_moves_nothing", "move-refused", {kDownloaded, given("answer", "1001", 1)}},
        Injected{"an_update_beside_a_client",
                 "client-stays-for-update",
                 {given("client", "ignores SIGTERM"), kInstalls}},
        Injected{"no_cache_folder", "update-not-noted", {given("no cache folder"), kInstalls}},
        Injected{"a_note_that_stays",
                 "note-of-update-stays",
                 {given("setting", "isFirstStartup=1"), given("touch file"),
                  given("fault", "Files::remove fails 1", 1)}},
        Injected{"no_updater", "updater-does-not-start", {given("updater", "cannot start")}},
        Injected{"no_download", "download-failed", {then(1, "session", "download fails")}},
        Injected{"no_feed", "update-failed", {then(1, "session", "no feed")}},
        Injected{"a_bad_archive", "update-failed", {then(1, "session", "unpacking fails")}},
        Injected{
            "a_bad_marker", "feed-marker", {given("marker", "no url at all"), then(1, "session", "nothing")}},
        Injected{"an_update_that_does_not_come",
                 "client-gone-for-no-update",
                 {then(1, "session", "dismiss"), then(1.2, "client", "ends 0")}},
        Injected{"an_old_system",
                 "file-provider-on-old-system",
                 {given("macOS", "12.2"), given("setting", "isFirstStartup=1")}},
        Injected{"no_record",
                 "newest-macfuse-not-known",
                 {kWithFuse, given("release", "{"), then(1, "session", "nothing")}},
        Injected{"another_protocol", "unknown-message", {then(1, "client", "post app-is-fine")}},
        Injected{"a_kill", "client-killed", {then(12, "client", "killed 9")}},
        Injected{"an_error", "client-failed", {then(12, "client", "ends 1")}},
        Injected{"a_farewell_without_words", "client-left", {then(12, "client", "ends 0")}},
        Injected{"an_open_question", "waits-for-an-answer", {kDownloaded, given("answer", "never")}},
        Injected{"a_dropped_launcher", "launcher-killed", {given("crash", "", 300)}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(Diagnosis, FindsNothingWrongWhereNothingGoesWrong) {
  std::vector<std::string> found;
  for (std::uint64_t seed = 1; seed <= seeds(100); ++seed) {
    const std::string first = firstCauseOf(planOf(seed, Weather::Calm));
    if (first != "nothing") found.push_back(std::to_string(seed) + " " + first);
  }

  EXPECT_THAT(found, ::testing::IsEmpty());
}

}  // namespace
}  // namespace karno::simulation
