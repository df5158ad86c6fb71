#include "karnoctl/diagnose/diagnosis.h"

#include <fmt/format.h>

#include <algorithm>

#include "karnoctl/log/log_date.h"
#include "karnoctl/log/log_printer.h"
#include "karnoctl/verbs/status_text.h"

namespace karno::karnoctl {
namespace {

constexpr std::string_view kFirstMessage = "===================================================";
constexpr std::size_t kSessionsMax = 8;
constexpr double kMomentsSeconds = 10;
constexpr std::size_t kStartsMin = 2;

// Whether a process that logs so is a launcher: others may have lines of the same form.
bool isOfLauncher(std::string_view message) {
  constexpr std::string_view kTags[] = {
      kFirstMessage, "Karno",        "Main: ",    "AppDelegate",      "Startup[",     "Fuse",   "Notify[",
      "Sparkle[",    "EmbeddedApp[", "Abnormal[", "Parent Process: ", "ProcessUtils", "Object="};
  return std::ranges::any_of(kTags, [&](std::string_view tag) { return message.starts_with(tag); });
}

// A second beginning of a line within it: what stood before was never written whole.
bool isCut(std::string_view text) {
  constexpr std::size_t kDateBytes = 28;
  const std::size_t again = text.find(") [", text.find(") [") + 1);
  if (again == std::string_view::npos) return false;
  const std::size_t date = text.rfind(" (", again) - kDateBytes;  // beyond the text where there is none
  return date < text.size() && momentOfLogDate(text.substr(date, kDateBytes)).has_value();
}

// What there is to say of a client that ended within moments of each of the last starts; empty of any other.
std::string startsInVain(const std::vector<LoggedSession>& sessions) {
  std::vector<double> seconds;
  const auto endedAtOnce = [](const LoggedSession& session) {
    return !session.clientEnd.empty() && !session.isClientExpectedToGo &&
           session.clientSeconds.value_or(kMomentsSeconds) < kMomentsSeconds;
  };
  for (auto session = sessions.rbegin(); session != sessions.rend() && endedAtOnce(*session); ++session)
    seconds.push_back(*session->clientSeconds);
  if (seconds.size() < kStartsMin) return "";
  const auto [shortest, longest] = std::ranges::minmax(seconds);
  const std::string from = fmt::format("{:.1f}", shortest);
  const std::string to = fmt::format("{:.1f}", longest);
  return fmt::format("{} s after each of {} starts{}, the last time with {}",
                     from == to ? from : from + " to " + to, seconds.size(),
                     seconds.size() == kSessionsMax ? " or more" : "", sessions.back().clientEnd);
}

// "the launcher has been waiting for it for 2 h 5 min", up to its last line, or to now.
std::string waitText(const LoggedSession& session) {
  const auto since = momentOfLogDate(session.story.since().value_or(""));
  const bool isMeasured = since && session.lastDate > since;
  return "the launcher has been waiting for it" +
         (isMeasured ? " for " + durationText(platform::secondsBetween(*since, *session.lastDate)) : "");
}

// What more there is to say of a cause that a line shows; may be empty.
std::string detailOf(const Cause& cause, const LoggedSession& session) {
  std::vector<std::string> parts;
  if (cause.about == Subject::Fuse) {
    const FuseAdvice advice = fuseAdvice(session.system);
    if (session.story.state() == LauncherState::WaitsForFuse) parts.push_back(waitText(session));
    if (session.system.fuse) parts.push_back("macFUSE " + *session.system.fuse + " is installed");
    if (advice.fuse) parts.push_back("macFUSE " + *advice.fuse + " or later would do");
    if (advice.macOS) parts.push_back("none does on this system: one would on " + *advice.macOS);
  }
  if (cause.about != Subject::Other && session.story.buildReason == "admin")
    parts.emplace_back("the administrator has chosen this build");
  return fmt::format("{}", fmt::join(parts, ", "));
}

}  // namespace

void Diagnostician::take(std::string_view text) {
  const LogLine line = logLineIn(text).value_or(LogLine());
  auto session = std::ranges::find(sessions_.rbegin(), sessions_.rend(), line.processIdentifier,
                                   &LoggedSession::processIdentifier);
  const bool isKnown = session != sessions_.rend();
  if (!isLogLevel(line.level) || (!isKnown && !isOfLauncher(line.message))) {
    ++foreignLines_;
    return;
  }
  if (!isKnown || line.message == kFirstMessage) {
    if (sessions_.size() == kSessionsMax) sessions_.erase(sessions_.begin());
    sessions_.emplace_back().processIdentifier = line.processIdentifier;
    session = sessions_.rbegin();
    hasOverlap_ = false;
  }
  if (session != sessions_.rbegin() && !session->isHandingOver) hasOverlap_ = true;
  if (cutLine_.empty() && isCut(text)) cutLine_ = text;
  session->take(text, line);
}

Diagnosis Diagnostician::diagnosis(const std::function<std::optional<bool>(std::int32_t)>& isRunning,
                                   std::optional<platform::Date> now) const {
  Diagnosis found;
  if (sessions_.empty()) return found;
  LoggedSession& last = found.session.emplace(sessions_.back());
  found.runs = last.hasEnded() ? std::optional(false) : isRunning(last.processIdentifier);
  if (found.runs == true && now) last.lastDate = now;
  if (!cutLine_.empty()) last.signs[&causeOf("lines-missing")] = {cutLine_};
  addFindings(found);
  const auto note = [&](bool holds, const std::string& text) {
    if (holds) found.notes.push_back(text);
  };
  note(!found.runs, "Whether this launcher still runs cannot be told from the log alone.");
  note(!last.story.beginning, "The log does not reach back to its start.");
  note(last.areUpdatesDisabled, "The administrator has disabled updates: none is looked for by itself.");
  note(hasOverlap_, "Two launchers ran at the same time; this is about the one that began last.");
  note(last.hasOddDates, "Dates are of another locale, or damaged: how long things took cannot be told.");
  note(foreignLines_ > 0, "Lines that were not read as a launcher's: " + std::to_string(foreignLines_) +
                              ". They are further ones of a message, another program's, or damaged.");
  return found;
}

void Diagnostician::addFindings(Diagnosis& found) const {
  const LoggedSession& last = *found.session;
  const auto add = [&](std::string_view cause, const std::string& line, const std::string& detail = "") {
    found.findings.push_back({&causeOf(cause), detail, {line}});
  };
  for (const auto& [cause, lines] : last.signs)
    found.findings.push_back({cause, detailOf(*cause, last), lines});
  const bool isFollowed = last.story.quitReason == "Embedded Karno.app terminated";
  if (const std::string starts = startsInVain(sessions_); !starts.empty()) {
    add("client-ends-at-once", last.endLine, starts);
  } else if (isFollowed && !last.clientEnd.empty() && !last.isClientExpectedToGo) {
    const std::string after = last.clientSeconds ? fmt::format(" after {:.1f} s", *last.clientSeconds) : "";
    add(last.clientEnd.starts_with("signal ") ? "client-killed"
        : last.clientEnd != "status 0"        ? "client-failed"
                                              : "client-left",
        last.endLine, last.clientEnd + after);
  }
  if (!last.story.questions.empty() && found.runs != false)
    add("waits-for-an-answer", last.questionLine, last.story.doing());
  if (!last.hasEnded() && found.runs == false) add("launcher-killed", last.lastLine);
  if (sessions_.size() > 1 && !hasOverlap_ && !sessions_.rbegin()[1].hasEnded())
    add("launcher-killed", sessions_.rbegin()[1].lastLine, "the session before this one");
  std::ranges::stable_sort(found.findings, {}, &Finding::cause);
}

}  // namespace karno::karnoctl
