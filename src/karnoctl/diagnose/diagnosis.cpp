#include "karnoctl/diagnose/diagnosis.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "karnoctl/log/log_date.h"
#include "karnoctl/verbs/status_text.h"

namespace karno::karnoctl {
namespace {

constexpr std::string_view kFirstMessage = "===================================================";
constexpr std::size_t kSessionsMax = 8;
constexpr double kMomentsSeconds = 10;
constexpr std::size_t kStartsMin = 2;

bool isOfLevel(const LogLine& line) {
  constexpr std::string_view kLevels[] = {"VERBOSE",       "DEBUG", "INFO",   "WARN",
                                          "*** ERROR ***", "NET",   "STARTUP"};
  return std::ranges::count(kLevels, line.level) > 0;
}

// Whether a process that logs so is a launcher: others may have lines of the same form.
bool isOfLauncher(std::string_view message) {
  constexpr std::string_view kTags[] = {
      kFirstMessage, "Karno",        "Main: ",    "AppDelegate",      "Startup[",     "Fuse",   "Notify[",
      "Sparkle[",    "EmbeddedApp[", "Abnormal[", "Parent Process: ", "ProcessUtils", "Object="};
  return std::ranges::any_of(kTags, [&](std::string_view tag) { return message.starts_with(tag); });
}

// A second beginning of a line within it: what stood before was never written whole.
bool isCut(std::string_view text) {
  const std::size_t level = text.find(") [");
  const std::size_t again = level == std::string_view::npos ? level : text.find(") [", level + 1);
  if (again == std::string_view::npos) return false;
  const std::size_t bracket = text.rfind(" (", again);
  constexpr std::size_t kDateBytes = 28;
  return bracket != std::string_view::npos && bracket >= kDateBytes &&
         momentOfLogDate(text.substr(bracket - kDateBytes, kDateBytes)).has_value();
}

bool endedAtOnce(const LoggedSession& session) {
  return session.clientSeconds && *session.clientSeconds < kMomentsSeconds && session.clientStatus &&
         !session.isClientExpectedToGo;
}

// How many of the last starts the client has not outlived by more than moments.
std::size_t startsInVain(const std::vector<LoggedSession>& sessions) {
  const auto other = std::find_if_not(sessions.rbegin(), sessions.rend(), endedAtOnce);
  return static_cast<std::size_t>(other - sessions.rbegin());
}

std::string joined(std::string text, const std::string& more) {
  if (!text.empty() && !more.empty()) text += ", ";
  return text + more;
}

std::string choiceDetail(const LoggedSession& session) {
  return session.story.buildReason == "admin" ? "the administrator has chosen this build" : "";
}

// "the launcher has been waiting for it for 2 h 5 min", up to now, or up to its last line.
std::string waitDetail(const LoggedSession& session, std::optional<platform::Date> now) {
  if (session.story.state() != LauncherState::WaitsForFuse) return "";
  const auto since = momentOfLogDate(session.story.since().value_or(""));
  const auto until = now ? now : session.lastDate;
  const bool isMeasured = since && until && *until > *since;
  return "the launcher has been waiting for it" +
         (isMeasured ? " for " + durationText(platform::secondsBetween(*since, *until)) : "");
}

std::string fuseDetail(const LoggedSession& session) {
  const FuseAdvice advice = fuseAdvice(session.system);
  const std::string there = session.system.fuse ? "macFUSE " + *session.system.fuse + " is installed" : "";
  if (advice.fuse) return joined(there, "macFUSE " + *advice.fuse + " or later would do");
  return joined(there, advice.macOS ? "none does on this system: one would on " + *advice.macOS : "");
}

std::string endDetail(const LoggedSession& session) {
  if (!session.clientStatus) return "";
  return fmt::format("{} {}", session.clientWasKilled ? "signal" : "status", *session.clientStatus) +
         (session.clientSeconds ? fmt::format(" after {:.1f} s", *session.clientSeconds) : "");
}

std::string startsDetail(const std::vector<LoggedSession>& sessions) {
  const std::size_t count = startsInVain(sessions);
  const std::vector<LoggedSession> last(sessions.end() - static_cast<std::ptrdiff_t>(count), sessions.end());
  const auto [shortest, longest] = std::ranges::minmax(last, {}, &LoggedSession::clientSeconds);
  const std::string from = fmt::format("{:.1f}", *shortest.clientSeconds);
  const std::string to = fmt::format("{:.1f}", *longest.clientSeconds);
  return fmt::format("{} s after each of {} starts{}, the last time with {} {}",
                     from == to ? from : from + " to " + to, count, count == kSessionsMax ? " or more" : "",
                     sessions.back().clientWasKilled ? "signal" : "status", *sessions.back().clientStatus);
}

std::string detailOf(const Cause& cause, const std::vector<LoggedSession>& sessions,
                     std::optional<platform::Date> now) {
  const LoggedSession& last = sessions.back();
  switch (cause.tells) {
    case Detail::Choice:
      return choiceDetail(last);
    case Detail::Fuse:
      return joined(joined(waitDetail(last, now), fuseDetail(last)), choiceDetail(last));
    case Detail::Question:
      return last.story.doing();
    case Detail::ClientEnd:
      return endDetail(last);
    case Detail::Starts:
      return startsDetail(sessions);
    case Detail::None:
      break;
  }
  return "";
}

// How a client ended that nobody expected to; null for any other.
const Cause* endOfClient(const LoggedSession& session) {
  const bool isFollowed = session.story.quitReason == "Embedded Karno.app terminated";
  if (!isFollowed || session.isClientExpectedToGo || !session.clientStatus) return nullptr;
  return &causeOf(session.clientWasKilled      ? "client-killed"
                  : *session.clientStatus != 0 ? "client-failed"
                                               : "client-left");
}

}  // namespace

// The session that the line belongs to, a new one where it begins one; null for another program's.
LoggedSession* Diagnostician::sessionOf(const LogLine& line) {
  const auto found = std::ranges::find(sessions_.rbegin(), sessions_.rend(), line.processIdentifier,
                                       &LoggedSession::processIdentifier);
  const bool isKnown = found != sessions_.rend();
  if (isKnown && (line.message != kFirstMessage || found->story.isEmpty())) {
    hasOverlap_ = hasOverlap_ || (found != sessions_.rbegin() && !found->isHandingOver);
    return &*found;
  }
  if (!isKnown && !isOfLauncher(line.message)) return nullptr;
  if (sessions_.size() == kSessionsMax) sessions_.erase(sessions_.begin());
  hasOverlap_ = false;
  return &sessions_.emplace_back(line.processIdentifier);
}

void Diagnostician::take(std::string_view text) {
  const auto line = logLineIn(text);
  LoggedSession* const session = line && isOfLevel(*line) ? sessionOf(*line) : nullptr;
  if (session == nullptr) {
    ++foreignLines_;
    return;
  }
  if (cutLine_.empty() && isCut(text)) cutLine_ = text;
  session->take(text, *line);
}

Diagnosis Diagnostician::diagnosis(const std::function<std::optional<bool>(const LoggedSession&)>& isRunning,
                                   std::optional<platform::Date> now) const {
  Diagnosis found;
  if (sessions_.empty()) return found;
  found.session = sessions_.back();
  found.runs = found.session->hasEnded() ? std::optional(false) : isRunning(*found.session);
  addFindings(found, found.runs == true ? now : std::nullopt);
  std::ranges::stable_sort(found.findings, {}, &Finding::cause);
  addNotes(found);
  return found;
}

void Diagnostician::addFindings(Diagnosis& found, std::optional<platform::Date> now) const {
  const LoggedSession& last = sessions_.back();
  const auto add = [&](const Cause& cause, std::vector<std::string> lines) {
    found.findings.push_back({&cause, detailOf(cause, sessions_, now), std::move(lines)});
  };
  for (const auto& [place, lines] : last.signs) add(causes()[place], lines);
  if (startsInVain(sessions_) >= kStartsMin)
    add(causeOf("client-ends-at-once"), {last.endLine});
  else if (const Cause* const end = endOfClient(last))
    add(*end, {last.endLine});
  if (!last.story.questions.empty() && !last.hasEnded() && found.runs != false)
    add(causeOf("waits-for-an-answer"), {last.questionLine});
  if (!cutLine_.empty() || !last.lineAfterGap.empty())
    add(causeOf("lines-missing"), {cutLine_.empty() ? last.lineAfterGap : cutLine_});
  if (!last.lineOfSetClock.empty()) add(causeOf("clock-set-back"), {last.lineOfSetClock});
  if (!last.hasEnded() && found.runs == false) add(causeOf("launcher-killed"), {last.lastLine});
  const LoggedSession* const before = sessions_.size() > 1 ? &*std::prev(sessions_.end(), 2) : nullptr;
  if (before != nullptr && !hasOverlap_ && !before->hasEnded())
    found.findings.push_back(
        {&causeOf("launcher-killed"), "the session before this one", {before->lastLine}});
}

void Diagnostician::addNotes(Diagnosis& found) const {
  const LoggedSession& last = sessions_.back();
  if (!found.runs)
    found.notes.emplace_back("Whether this launcher still runs cannot be told from the log alone.");
  if (!last.story.beginning) found.notes.emplace_back("The log does not reach back to its start.");
  if (last.areUpdatesDisabled)
    found.notes.emplace_back("The administrator has disabled updates: none is looked for by itself.");
  if (hasOverlap_)
    found.notes.emplace_back("Two launchers ran at the same time; this is about the one that began last.");
  if (last.hasForeignDates)
    found.notes.emplace_back("Dates are of another locale, or damaged: how long things took cannot be told.");
  if (foreignLines_ > 0)
    found.notes.push_back(
        fmt::format("Lines that were not read as a launcher's: {}. They are further ones of a message, "
                    "another program's, or damaged.",
                    foreignLines_));
}

}  // namespace karno::karnoctl
