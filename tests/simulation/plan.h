#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace karno::simulation {

// What is so from the start of a session (at 0), or happens in it. What the words mean hangs on the kind:
//
//   macOS 12.2, cpu arm64, fuse 4.4.1 (or "none", "damaged"), release 4.5.0 (the newest macFUSE, or a body)
//   lies at PATH, old copy, old copy runs, disk image, no rights, without build NAME, without executable NAME
//   argument WORD, admin KEY=TEXT (or KEY=<true/>, KEY alone takes it away), setting KEY=1, suppress move,
//   bundle gone (the user throws it away or ejects it)
//   log of N bytes, lumberjack of N seconds, touch file, no cache folder, marker TEXT, disk full, disk free
//   client post MESSAGE, client ends STATUS, client killed SIGNAL, client ignores SIGTERM, client forks
//   answer 1000 (of the next alert, after N seconds; "never"), press continue (cancel, close), reopen
//   session END (of the updater, see updater_session.h; at 0 one that somebody asks for), updater cannot
//   start, updater cannot check, other launcher (for N seconds), clock (jumps N seconds), post lost, post
//   doubled, no bus, fault OPERATION HOW (from the Nth call on, see faults.h), crash (at the Nth call of any
//   service), no strings, interface USE (see other_programs.h), sabotage HOW (a mutation, for the oracles)
//
// Events of one time come in their order, any number of other threads' steps between them.
struct Event {
  int life = 0;   // of the launcher: each start begins one
  double at = 0;  // seconds of virtual time since its start
  std::string kind;
  std::string what = {};
  double number = 0;
};

std::string text(const Event& event);

struct Plan {
  std::uint64_t seed = 0;  // of the schedule, too
  std::vector<Event> events;
};

std::string text(const Plan& plan);

// Which plans a seed makes: everybody does what is expected, or anything, or things go wrong as well.
enum class Weather { Calm, Fair, Foul };

Plan planOf(std::uint64_t seed, Weather weather);

inline constexpr int kLivesMax = 3;
inline constexpr double kWhileStarting = 1e-9;  // as a time: in the midst of the launcher's start
inline constexpr double kEventsSeconds = 16;    // in which things happen
inline constexpr double kQuietSeconds = 17;     // after them

}  // namespace karno::simulation
