#include "karnoctl/state/launcher_story.h"

#include <algorithm>

#include "app/karno_embedded_app.h"

namespace karno::karnoctl {
namespace {

using enum LauncherState;

constexpr std::string_view kBeginning = "===================================================";
constexpr std::string_view kVersion = "Karno Version: ";
constexpr std::string_view kBuildChosen = "EmbeddedApp[CONFIGURE] Use File Provider = ";
constexpr std::string_view kLaunched = "Startup[LAUNCH] Launched ";
constexpr std::string_view kProcess = " (pid: ";
constexpr std::string_view kClientEnded = "Startup[TERMINATED] Child terminated ";
constexpr std::string_view kQuits = "AppDelegate[TERMINATE] Reason: ";

// What a message changes: the launcher's life, the question that it puts or that was answered, its update,
// which an empty text ends.
struct Turn {
  std::string_view message;  // how it begins
  LauncherState life = Unknown;
  std::string_view doing = {};
  std::optional<Question> asks = std::nullopt;
  std::optional<Question> answered = std::nullopt;
  std::optional<std::string_view> update = std::nullopt;
};

// The first that fits counts.
constexpr Turn kTurns[] = {
    {.message = kBeginning, .life = Starts, .doing = "its first moments"},

    {.message = "AppDelegate[MOVE] Check whether", .life = Starts, .doing = "looks whether it lies well"},
    {.message = "KarnoMoveApplicationManager:: Alerting user", .asks = Question::Move},
    {.message = "AppDelegate[MOVE] Karno does not need", .life = Starts, .doing = "chooses the build"},
    {.message = "AppDelegate[MOVE] ", .answered = Question::Move},

    {.message = "Startup[CHECK] ", .life = Starts, .doing = "checks the system"},
    {.message = "Main: Need to install Fuse", .asks = Question::InstallFuse},
    {.message = "Main: User pressed c", .answered = Question::InstallFuse},
    {.message = "Startup[FUSE] Showing macFuse website", .life = WaitsForFuse},
    {.message = "Startup[FUSE] Waiting for Fuse to install", .life = WaitsForFuse},
    {.message = "Startup[FUSE] Fuse is installed", .life = Starts, .doing = "macFUSE is good enough"},

    {.message = "Main: System is okay", .life = Starts, .doing = "starts the client"},
    {.message = "Startup[LAUNCH] Launching ", .life = Starts, .doing = "starts the client"},
    {.message = kLaunched, .life = Runs},
    {.message = "Main: Failed to start Karno", .asks = Question::LaunchFailure},
    {.message = "AppDelegate[TERMINATE] Reason: Failed to start Karno.app",
     .life = Quits,
     .answered = Question::LaunchFailure},

    {.message = "Notify[LISTEN] Restarting Karno.app.", .life = Starts, .doing = "restarts the client"},
    {.message = "Notify[LISTEN] Received 'restart-wrapper",
     .life = Starts,
     .doing = "restarts itself once the client has quit"},
    {.message = "Abnormal[TERMINATION] User elected", .answered = Question::RestartAfterFailure},
    {.message = "Abnormal[TERMINATION] ", .asks = Question::RestartAfterFailure},
    {.message = "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated",
     .update = "the client has ended for it"},

    {.message = "Sparkle[UPDATE] Found: ", .asks = Question::InstallUpdate},
    {.message = "Sparkle[UPDATE] User decided to install",
     .answered = Question::InstallUpdate,
     .update = "the user wants it"},
    {.message = "Sparkle[UPDATE] User decided to ", .answered = Question::InstallUpdate, .update = ""},
    {.message = "Sparkle[UPDATE] Downloading ", .answered = Question::InstallUpdate, .update = "downloads"},
    {.message = "Sparkle[UPDATE] Downloaded update", .update = "has downloaded the archive"},
    {.message = "Sparkle[UPDATE] Extracting update", .update = "unpacks the archive"},
    {.message = "Sparkle[UPDATE] Extracted update", .update = "has unpacked the archive"},
    {.message = "Sparkle[UPDATE] About to install: ", .update = "installs"},
    {.message = "Sparkle[UPDATE] Relaunching app", .update = "ends the client, then itself"},
    {.message = "Sparkle[UPDATE] Failed to download update", .update = ""},
    {.message = "Sparkle[UPDATE] User cancelled download", .update = ""},
    {.message = "Sparkle[UPDATE] No update found", .answered = Question::InstallUpdate, .update = ""},
    {.message = "Sparkle[ABORT] ", .answered = Question::InstallUpdate, .update = ""},

    {.message = "Fuse[UPDATE] Prompting user", .asks = Question::UpdateFuse},
    {.message = "Fuse[UPDATE] User c", .answered = Question::UpdateFuse},

    {.message = kQuits, .life = Quits},
    {.message = "AppDelegate:: Terminating", .life = Quits},
};

struct QuestionText {
  std::string_view name;
  std::string_view text;
};

// Each in the order of its enumeration.
constexpr QuestionText kQuestions[] = {
    {"move", "whether it may move itself to the Applications folder"},
    {"install-fuse", "to install macFUSE, or a newer one"},
    {"launch-failure", "to confirm that the client could not be started"},
    {"restart-after-failure", "whether to start the client again after it has failed"},
    {"install-update", "whether to install an update"},
    {"update-fuse", "whether to update macFUSE"},
};

constexpr std::string_view kStates[] = {"unknown", "starts",  "waits-for-fuse", "asks",
                                        "runs",    "updates", "quits"};

}  // namespace

std::string_view nameOf(LauncherState state) { return kStates[static_cast<std::size_t>(state)]; }
std::string_view nameOf(Question question) { return kQuestions[static_cast<std::size_t>(question)].name; }
std::string_view questionText(Question question) {
  return kQuestions[static_cast<std::size_t>(question)].text;
}

void LauncherStory::take(const LogLine& line) {
  if (line.message == kBeginning) *this = LauncherStory();
  ++lineCount_;
  if (line.message == kBeginning) beginning = line.date;
  takeFacts(line.message);

  const auto* const turn =
      std::ranges::find_if(kTurns, [&](const Turn& one) { return line.message.starts_with(one.message); });
  if (turn == std::end(kTurns)) return;
  const std::string date(line.date);
  // Nothing comes after the end but the answers that it waits for.
  if (turn->life != Unknown && life_ != Quits) {
    life_ = turn->life;
    passage_ = {.text = std::string(turn->doing), .since = date};
  }
  if (turn->asks) questions[*turn->asks] = date;
  if (turn->answered) questions.erase(*turn->answered);
  if (!turn->update) return;
  update_ = turn->update->empty() ? std::nullopt
                                  : std::optional(Passage{.text = std::string(*turn->update), .since = date});
}

void LauncherStory::takeFacts(std::string_view message) {
  const auto after = [&](std::string_view begin) { return std::string(message.substr(begin.size())); };
  if (message.starts_with(kVersion)) version = after(kVersion);
  if (message.starts_with(kQuits) && !quitReason) quitReason = after(kQuits);
  if (message.starts_with(kClientEnded)) client.reset();
  if (message.starts_with(kBuildChosen)) {
    build = after(kBuildChosen).starts_with("Yes") ? KarnoEmbeddedApp::nameForFileProviderApp()
                                                   : KarnoEmbeddedApp::nameForFuseApp();
    const std::size_t bracket = std::min(message.rfind('('), message.size() - 1) + 1;
    buildReason = message.substr(bracket, message.rfind(')') - bracket);
  }
  if (!message.starts_with(kLaunched)) return;
  const std::size_t place = message.rfind(kProcess);
  if (place == std::string_view::npos || place < kLaunched.size()) return;
  build = message.substr(kLaunched.size(), place - kLaunched.size());
  if (const auto number = numberAfter(message.substr(place), kProcess)) client = number;
}

LauncherState LauncherStory::state() const {
  if (life_ == Quits) return Quits;
  if (!questions.empty()) return Asks;
  return update_ ? Updates : life_;
}

std::string LauncherStory::doing() const {
  const LauncherState now = state();
  if (now == Updates) return update_->text;
  const std::string asked = questions.empty() ? "" : std::string(questionText(questions.begin()->first));
  if (now == Asks) return asked;
  if (now != Quits) return passage_.text;
  return quitReason.value_or("its last moments") +
         (asked.empty() ? "" : ", once the user has answered: it asks " + asked);
}

std::optional<std::string> LauncherStory::since() const {
  const LauncherState now = state();
  if (now == Asks) return questions.begin()->second;
  if (now == Updates) return update_->since;
  return now == Unknown ? std::nullopt : std::optional(passage_.since);
}

std::vector<std::string_view> linesOfStories() {
  std::vector<std::string_view> lines{kVersion, kBuildChosen, kClientEnded};
  for (const Turn& turn : kTurns) lines.push_back(turn.message);
  return lines;
}

}  // namespace karno::karnoctl
