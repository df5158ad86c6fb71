#pragma once
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plan.h"
#include "record.h"

namespace karno::simulation {

// What a life leaves to the next one, as text.
struct LeftBehind {
  struct File {
    std::string path;
    char type = 'f';  // file, directory or link
    std::string text;
    double bytesBefore = 0;
  };
  struct Setting {
    std::string suite;  // empty for the launcher's own defaults
    std::string key;
    bool value = false;
  };
  std::vector<File> files;
  std::vector<Setting> settings;
  std::vector<std::string> clients;  // executables of those that run on
  double secondsSinceStart = 0;      // of the session
};

// How the launcher is opened the next time.
struct NextStart {
  std::string bundle;
  std::vector<std::string> arguments;
};

struct Life {
  Plan plan;
  int number = 0;
  std::optional<LeftBehind> left;
  std::optional<NextStart> start;
  bool wantsTrace = false;
};

struct LifeReport {
  End end = End::Running;
  double seconds = 0;
  std::uint64_t calls = 0;
  std::vector<Verdict> verdicts;
  std::vector<std::string> stories;
  std::vector<std::string> faults;  // that hit something
  std::vector<std::string> log;     // lines of the file
  std::string trace;                // empty unless it is wanted or something is broken
  std::uint64_t traceHash = 0;
  LeftBehind left;              // when somebody starts it again
  std::vector<NextStart> next;  // how; none when nobody does
};

// What a process that fork() made tells the one that made it: a file without a name.
class Letter {
 public:
  Letter();
  void write(const std::string& text);
  std::string read();  // once the writer has ended

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

// Lives it in a process of its own. The caller has one thread.
LifeReport live(const Life& life);

// A session: one life after the other, until one runs on or nobody starts the next.
struct SessionReport {
  std::vector<LifeReport> lives;

  // The first oracle that was broken, with the number of its life; empty when none was.
  std::string broken() const;
  std::string detail() const;
};

SessionReport liveSession(const Plan& plan, bool wantsTrace = false);

// The shortest list of its events with which the same oracle is broken.
Plan shortened(const Plan& plan, const std::string& oracle);

}  // namespace karno::simulation
