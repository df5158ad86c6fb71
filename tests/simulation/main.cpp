#include <fmt/format.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "command_line/arguments.h"
#include "life.h"
#include "log_grammar.h"
#include "plan.h"

// Lives sessions of the launcher, from one seed to the next, on all processors.
namespace karno::simulation {
namespace {

constexpr std::string_view kUsage =
    "usage: simulate [--seeds N] [--from SEED] [--minutes M] [--fair | --calm]\n"
    "       simulate --seed SEED [--trace] [--fair | --calm]\n";

struct Options {
  std::uint64_t seeds = 0;
  std::uint64_t from = 0;
  std::uint64_t minutes = 0;  // instead of a number of seeds
  bool wantsHelp = false;
  bool isOne = false;
  bool wantsTrace = false;
  Weather weather = Weather::Foul;
};

// What the sessions of one worker came to.
struct Sum {
  std::uint64_t sessions = 0;
  std::uint64_t lives = 0;
  std::uint64_t broken = 0;
  std::set<std::string> stories;
  std::set<std::string> faults;
};

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Sum, sessions, lives, broken, stories, faults)

void add(Sum& sum, const SessionReport& session) {
  ++sum.sessions;
  sum.lives += session.lives.size();
  if (!session.broken().empty()) ++sum.broken;
  for (const LifeReport& life : session.lives) {
    sum.stories.insert(life.stories.begin(), life.stories.end());
    sum.faults.insert(life.faults.begin(), life.faults.end());
  }
}

void print(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  std::fflush(stdout);
}

std::string_view nameOf(Weather weather) {
  return weather == Weather::Foul ? "" : weather == Weather::Fair ? " --fair" : " --calm";
}

void tellBroken(std::uint64_t seed, Weather weather, const SessionReport& session) {
  const Plan shorter = shortened(planOf(seed, weather), session.broken());
  const SessionReport again = liveSession(shorter, true);
  std::string report = fmt::format("seed {}{}: {} ({})\n{}", seed, nameOf(weather), session.broken(),
                                   session.detail(), text(shorter));
  for (const LifeReport& life : again.lives) report += life.trace;
  print(report);
}

Sum work(const Options& options, std::uint64_t worker, std::uint64_t workers) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::minutes(options.minutes);
  Sum sum;
  for (std::uint64_t i = worker; options.minutes > 0 ? Clock::now() < end : i < options.seeds; i += workers) {
    const std::uint64_t seed = options.from + i;
    const SessionReport session = liveSession(planOf(seed, options.weather));
    add(sum, session);
    if (!session.broken().empty()) tellBroken(seed, options.weather, session);
  }
  return sum;
}

// The threads of a life run one at a time: they wake each other much faster on one processor.
void stayOn(std::uint64_t processor) {
  cpu_set_t set;
  CPU_ZERO(&set);
  CPU_SET(processor, &set);
  ::sched_setaffinity(0, sizeof(set), &set);
}

// One worker a processor, each a process of its own.
Sum workOnAll(const Options& options) {
  std::vector<Letter> letters(std::max(1U, std::thread::hardware_concurrency()));
  for (std::size_t worker = 0; worker < letters.size(); ++worker) {
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child != 0) continue;
    stayOn(worker);
    letters[worker].write(nlohmann::json(work(options, worker, letters.size())).dump());
    ::_exit(0);
  }
  while (::wait(nullptr) > 0) {
  }
  Sum all;
  for (Letter& letter : letters) {
    Sum one = nlohmann::json::parse(letter.read()).get<Sum>();
    all.sessions += one.sessions;
    all.lives += one.lives;
    all.broken += one.broken;
    all.stories.merge(one.stories);
    all.faults.merge(one.faults);
  }
  return all;
}

int simulate(const Options& options) {
  const auto begin = std::chrono::steady_clock::now();
  const Sum sum = workOnAll(options);
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  std::string untold;
  for (const Story& story : stories()) {
    if (!sum.stories.contains(std::string(story.name))) untold += fmt::format("\n  {}", story.name);
  }
  print(fmt::format(
      "{} sessions with {} lives in {:.1f} s: {:.0f} sessions a second\n{} broken\n"
      "{} of {} stories told{}{}\n{} operations had faults\n",
      sum.sessions, sum.lives, took.count(), static_cast<double>(sum.sessions) / took.count(), sum.broken,
      sum.stories.size(), stories().size(), untold.empty() ? "" : "; not:", untold, sum.faults.size()));
  return sum.broken == 0 ? 0 : 1;
}

int replay(const Options& options) {
  const Plan plan = planOf(options.from, options.weather);
  const SessionReport session = liveSession(plan, options.wantsTrace);
  print(text(plan));
  for (const LifeReport& life : session.lives)
    print(fmt::format("a life of {:.3f} s and {} calls\n{}", life.seconds, life.calls, life.trace));
  if (session.broken().empty()) return 0;
  tellBroken(options.from, options.weather, session);
  return 1;
}

Options optionsOf(std::span<const std::string> words) {
  const command_line::Verb verb{.name = "simulate",
                                .summary = "live sessions",
                                .help = {},
                                .options = {"--seeds", "--from", "--minutes", "--seed"},
                                .flags = {"--trace", "--fair", "--calm"},
                                .run = {}};
  const command_line::Arguments given(verb, words);
  const auto number = [&](std::string_view option, std::uint64_t otherwise) {
    if (!given.has(option)) return otherwise;
    const auto read = command_line::numberIn(*given.value(option));
    if (!read) throw command_line::UsageError("no number: " + *given.value(option));
    return *read;
  };
  return {.seeds = number("--seeds", 2000),
          .from = number(given.has("--seed") ? "--seed" : "--from", 1),
          .minutes = number("--minutes", 0),
          .wantsHelp = given.wantsHelp(),
          .isOne = given.has("--seed"),
          .wantsTrace = given.has("--trace"),
          .weather = given.has("--fair")   ? Weather::Fair
                     : given.has("--calm") ? Weather::Calm
                                           : Weather::Foul};
}

int run(const std::vector<std::string>& words) try {
  const Options options = optionsOf(words);
  if (options.wantsHelp) {
    print(std::string(kUsage));
    return command_line::kExitOk;
  }
  return options.isOne ? replay(options) : simulate(options);
} catch (const command_line::UsageError& error) {
  std::fputs(fmt::format("simulate: {}\n{}", error.what(), kUsage).c_str(), stderr);
  return command_line::kExitUsage;
}

}  // namespace
}  // namespace karno::simulation

int main(int argc, char** argv) { return karno::simulation::run({argv + 1, argv + argc}); }
