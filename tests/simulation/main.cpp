#include <fmt/format.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "life.h"
#include "log_grammar.h"
#include "plan.h"

// Lives sessions of the launcher, from one seed to the next, on all processors.
namespace karno::simulation {
namespace {

constexpr int kWrongUse = 64;
constexpr std::string_view kUsage =
    "usage: simulate [--seeds N] [--from SEED] [--minutes M] [--fair | --calm]\n"
    "       simulate --seed SEED [--trace] [--fair | --calm]\n";

struct Options {
  std::uint64_t seeds = 2000;
  std::uint64_t from = 1;
  double minutes = 0;
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
  const auto end = Clock::now() + std::chrono::milliseconds(static_cast<long>(options.minutes * 60'000));
  Sum sum;
  for (std::uint64_t i = worker; options.minutes > 0 ? Clock::now() < end : i < options.seeds; i += workers) {
    const std::uint64_t seed = options.from + i;
    const SessionReport session = liveSession(planOf(seed, options.weather));
    add(sum, session);
    if (!session.broken().empty()) tellBroken(seed, options.weather, session);
  }
  return sum;
}

// The threads of a session run one at a time: they wake each other much faster on one processor.
void stayOn(std::uint64_t processor) {
  cpu_set_t set;
  CPU_ZERO(&set);
  CPU_SET(processor, &set);
  ::sched_setaffinity(0, sizeof(set), &set);
}

// One worker a processor, each in a process of its own: sessions are made by fork().
Sum workOnAll(const Options& options) {
  const std::uint64_t workers = std::max(1U, std::thread::hardware_concurrency());
  std::vector<int> results;
  for (std::uint64_t worker = 0; worker < workers; ++worker) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    if (::fork() == 0) {
      stayOn(worker);
      const std::string text = nlohmann::json(work(options, worker, workers)).dump();
      const bool isTold = ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
      ::_exit(isTold ? 0 : 1);
    }
    ::close(ends[1]);
    results.push_back(ends[0]);
  }
  Sum all;
  for (const int result : results) {
    std::string text;
    std::array<char, 65536> buffer;
    for (ssize_t count = 0; (count = ::read(result, buffer.data(), buffer.size())) > 0;)
      text.append(buffer.data(), static_cast<std::size_t>(count));
    Sum one = nlohmann::json::parse(text).get<Sum>();
    all.sessions += one.sessions;
    all.lives += one.lives;
    all.broken += one.broken;
    all.stories.merge(one.stories);
    all.faults.merge(one.faults);
  }
  while (::wait(nullptr) > 0) {
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

int wrongUse(std::string_view why) {
  std::fputs(fmt::format("simulate: {}\n{}", why, kUsage).c_str(), stderr);
  return kWrongUse;
}

int run(const std::vector<std::string>& words) {
  Options options;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--help" || word == "-h") {
      print(std::string(kUsage));
      return 0;
    }
    if (word == "--trace") {
      options.wantsTrace = true;
    } else if (word == "--fair") {
      options.weather = Weather::Fair;
    } else if (word == "--calm") {
      options.weather = Weather::Calm;
    } else if (word == "--seeds" || word == "--from" || word == "--minutes" || word == "--seed") {
      if (++i == words.size()) return wrongUse(word + " wants a number");
      std::size_t used = 0;
      double number = -1;
      try {
        number = std::stod(words[i], &used);
      } catch (const std::exception&) {
      }
      if (used != words[i].size() || !(number >= 0 && number < 1e15))
        return wrongUse("no number: " + words[i]);
      if (word == "--seeds") options.seeds = static_cast<std::uint64_t>(number);
      if (word == "--minutes") options.minutes = number;
      if (word == "--from" || word == "--seed") options.from = static_cast<std::uint64_t>(number);
      options.isOne |= word == "--seed";
    } else {
      return wrongUse("what is " + word + "?");
    }
  }
  return options.isOne ? replay(options) : simulate(options);
}

}  // namespace
}  // namespace karno::simulation

int main(int argc, char** argv) { return karno::simulation::run({argv + 1, argv + argc}); }
