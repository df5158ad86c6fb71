#include "life.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
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

void writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

// All that comes until the other end is closed; absent when that takes too long.
std::optional<std::string> readAll(int descriptor) {
  std::string text;
  std::array<char, 65536> buffer;
  for (;;) {
    pollfd waiting{.fd = descriptor, .events = POLLIN, .revents = 0};
    if (::poll(&waiting, 1, kRealSecondsMax * 1000) == 0) return std::nullopt;
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

[[noreturn]] void liveHere(const Life& life, int descriptor) {
  World world(life, [descriptor](const LifeReport& report) {
    writeAll(descriptor, json(report).dump(-1, ' ', false, json::error_handler_t::replace));
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

LifeReport live(const Life& life) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no child process");
  if (child == 0) {
    ::close(ends[0]);
    liveHere(life, ends[1]);
  }
  ::close(ends[1]);
  const std::optional<std::string> text = readAll(ends[0]);
  ::close(ends[0]);
  if (!text) ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!text) return brokenLife("no hang", "nothing came in a minute");
  if (status != 0) return brokenLife("no crash", "the launcher ended with status " + std::to_string(status));
  return json::parse(*text).get<LifeReport>();
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
