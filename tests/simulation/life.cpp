#include "life.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "world.h"

// Of a build that counts which lines ran; else there is no such function.
extern "C" __attribute__((weak)) void __gcov_dump();

namespace karno::simulation {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(LeftBehind::File, path, type, text, bytesBefore)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(LeftBehind::Setting, suite, key, value)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(LeftBehind, files, settings, clients, secondsSinceStart)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(NextStart, bundle, arguments)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Verdict, oracle, detail)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(LifeReport, end, seconds, calls, verdicts, stories, faults, log, trace,
                                   traceHash, left, next)

namespace {

using nlohmann::json;

constexpr int kRealSecondsMax = 60;  // for one life

[[noreturn]] void liveHere(const Life& life, Letter& letter) {
  ::alarm(kRealSecondsMax);
  World world(life, [&letter](const LifeReport& report) {
    letter.write(json(report).dump(-1, ' ', false, json::error_handler_t::replace));
    if (__gcov_dump != nullptr) __gcov_dump();
    ::_exit(0);
  });
  world.run();
}

LifeReport brokenLife(const std::string& oracle, const std::string& detail) {
  LifeReport report{.end = End::Broken};
  report.verdicts.push_back({oracle, detail});
  return report;
}

}  // namespace

Letter::Letter() : file_(std::tmpfile(), &std::fclose) {
  if (!file_) throw std::runtime_error("no file");
}

void Letter::write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), file_.get());
  std::fflush(file_.get());
}

std::string Letter::read() {
  std::fseek(file_.get(), 0, SEEK_END);
  std::string text(static_cast<std::size_t>(std::ftell(file_.get())), '\0');
  std::rewind(file_.get());
  text.resize(std::fread(text.data(), 1, text.size(), file_.get()));
  return text;
}

LifeReport live(const Life& life) {
  // What hangs does so again from the same seed; a life on a machine that was stopped for a while does not.
  for (int attempt = 0; attempt < 2; ++attempt) {
    Letter letter;
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child == 0) liveHere(life, letter);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) continue;
    if (status == 0) return json::parse(letter.read()).get<LifeReport>();
    return brokenLife("no crash", "the launcher ended with status " + std::to_string(status));
  }
  return brokenLife("no hang", "it has not ended in a minute, twice");
}

SessionReport liveSession(const Plan& plan, bool wantsTrace) {
  SessionReport session;
  Life life{.plan = plan, .number = 0, .left = {}, .start = {}, .wantsTrace = wantsTrace};
  for (; life.number < kLivesMax; ++life.number) {
    session.lives.push_back(live(life));
    const LifeReport& report = session.lives.back();
    if (!report.verdicts.empty() || report.next.empty()) break;
    life.left = report.left;
    life.start = report.next.front();
  }
  return session;
}

std::string SessionReport::broken() const {
  return lives.back().verdicts.empty() ? "" : lives.back().verdicts.front().oracle;
}

std::string SessionReport::detail() const {
  return lives.back().verdicts.empty() ? "" : lives.back().verdicts.front().detail;
}

// Leaves out ever smaller pieces, as long as what is left breaks the same.
Plan shortened(const Plan& plan, const std::string& oracle) {
  Plan best = plan;
  for (std::size_t piece = std::max<std::size_t>(1, best.events.size() / 2); piece > 0; piece /= 2) {
    for (std::size_t begin = 0; begin < best.events.size();) {
      Plan shorter = best;
      const std::size_t end = std::min(begin + piece, shorter.events.size());
      shorter.events.erase(shorter.events.begin() + static_cast<std::ptrdiff_t>(begin),
                           shorter.events.begin() + static_cast<std::ptrdiff_t>(end));
      if (liveSession(shorter).broken() == oracle) {
        best = std::move(shorter);
      } else {
        begin = end;
      }
    }
  }
  return best;
}

}  // namespace karno::simulation
