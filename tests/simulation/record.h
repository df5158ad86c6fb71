#pragma once
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace karno::simulation {

// Something that was seen from outside the launcher.
struct Noted {
  double at = 0;  // seconds of virtual time
  std::string thread;
  std::uint64_t block = 0;
  std::string what;  // "line", "launch", "end", "alert", "answer", "terminate", "write", "event", ...
  std::string text;
};

// How the life of a launcher came to its end. Terminated is the end that it wanted itself.
enum class End { Running, Terminated, Crashed, Broken };

// What was seen of one life, for those who judge it.
struct Record {
  std::vector<Noted> noted;

  // What stands in the log's two generations, the older one first.
  std::vector<std::string> file;
  bool hasLogFolder = true;
  std::int32_t processIdentifier = 0;
  int rotations = 0;
  bool isDiskFaulty = false;       // something of the files went wrong on purpose
  bool areSettingsFaulty = false;  // or was answered wrongly
  bool areProcessesFaulty = false;
  double latenessMax = 0;  // of threads, in seconds

  // In which main waited: for the user, and because a service was late on purpose.
  std::vector<std::pair<double, double>> alertTimes;
  std::vector<std::pair<double, double>> lateTimes;

  int otherLaunchers = 0;
  int clientsAlive = 0;
  bool hasModalAlert = false;
  bool isPromptInFront = false;
  bool isUpdaterAtWork = false;
  bool canUpdaterCheck = true;
  bool wasPromptClosedByHand = false;
  bool hasHangingWork = false;  // a service that never answers, on purpose
  std::set<std::uint64_t> endedBlocks;

  End end = End::Running;
  double endAt = 0;

  std::vector<Noted> of(const std::string& what) const {
    std::vector<Noted> found;
    for (const Noted& one : noted) {
      if (one.what == what) found.push_back(one);
    }
    return found;
  }
};

// All of it, as text for people.
std::string traceOf(const Record& record);

// An oracle that was broken, and how.
struct Verdict {
  std::string oracle;
  std::string detail;
};

// What the launcher was to choose from; as it stood when it began.
struct Choice {
  std::vector<std::string> arguments;
  std::string admin;  // the text that is set, with "text " before it; empty without one
  bool isFirstStartup = true;
  bool useFileProvider = false;
  bool isVerified = false;
};

// The build that is to run.
std::string modelOfChoice(const Choice& choice);

struct Judgement {
  std::vector<Verdict> verdicts;
  std::vector<std::string> stories;  // that were told whole
};

// Holds a finished life against every oracle.
Judgement judge(const Record& record, const Choice& choice);

}  // namespace karno::simulation
