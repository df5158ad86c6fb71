#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "karnoctl/log/log_line.h"

namespace karno::karnoctl {

// What a launcher is at. The names stand in the JSON of "status".
enum class LauncherState { Unknown, Starts, WaitsForFuse, Asks, Runs, Updates, Quits };

// What the user is asked while a launcher waits for the answer.
enum class Question { Move, InstallFuse, LaunchFailure, RestartAfterFailure, InstallUpdate, UpdateFuse };

std::string_view nameOf(LauncherState state);
std::string_view nameOf(Question question);

// To follow "asks the user".
std::string_view questionText(Question question);

// Something that goes on, and the date of the line that told of it.
struct Passage {
  std::string text;
  std::string since;
};

// What the lines of one launcher's process in the log come to. What they do not tell is absent.
class LauncherStory {
 public:
  // The lines in the order of the log, without those of other processes. The first line of a start begins
  // the story anew.
  void take(const LogLine& line);

  LauncherState state() const;

  // What it is at in that state, to follow its name; empty where there is no more to say.
  std::string doing() const;

  // The date of the line that brought it into the state, as in the log.
  std::optional<std::string> since() const;

  bool isEmpty() const { return lineCount_ == 0; }

  // The date of the first line of the start; absent when the log does not reach back to it.
  std::optional<std::string> beginning;

  std::map<Question, std::string> questions;  // open ones, each with the date of its line
  std::optional<std::string> version;
  std::optional<std::string> buildReason;  // "admin", "verified", "first startup", "already using Fuse"
  std::optional<std::string> build;    // the bundle's name, of the client that was chosen or launched last
  std::optional<std::int32_t> client;  // its process, unless it was seen to end
  std::optional<std::string> quitReason;

 private:
  void takeFacts(std::string_view message);

  std::size_t lineCount_ = 0;
  LauncherState life_ = LauncherState::Unknown;  // apart from questions and updates
  Passage passage_;
  std::optional<Passage> update_;
};

// How the messages begin that the story is made of; for those who hold them against the launcher.
std::vector<std::string_view> linesOfStories();

}  // namespace karno::karnoctl
