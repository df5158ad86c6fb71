#include "karnoctl/diagnose/diagnosis.h"

#include <fmt/format.h>

#include <algorithm>

namespace karno::karnoctl {
namespace {

constexpr std::string_view kBeginning = "===================================================";
constexpr std::size_t kSessionsMax = 8;
constexpr double kMomentsSeconds = 10;
constexpr std::ptrdiff_t kStartsMin = 2;

bool isOfLauncher(const LogLine& line) {
  constexpr std::string_view kLevels[] = {"VERBOSE",       "DEBUG", "INFO",   "WARN",
                                          "*** ERROR ***", "NET",   "STARTUP"};
  return std::ranges::count(kLevels, line.level) > 0;
}

// A second beginning of a line within it: what stood before was never written whole.
bool isCut(std::string_view text) {
  const std::size_t level = text.find(") [");
  const std::size_t again = level == std::string_view::npos ? level : text.find(") [", level + 1);
  if (again == std::string_view::npos) return false;
  const std::size_t bracket = text.rfind(" (", again);
  constexpr std::size_t kDateBytes = 28;
  return bracket != std::string_view::npos && bracket >= kDateBytes &&
         secondsOfLogDate(text.substr(bracket - kDateBytes, kDateBytes)).has_value();
}

bool endedAtOnce(const LoggedSession& session) {
  return session.clientSeconds && *session.clientSeconds < kMomentsSeconds && session.clientStatus &&
         !session.isClientExpectedToGo;
}

std::string fuseDetail(const LoggedSession& session) {
  const FuseAdvice advice = fuseAdvice(session.system);
  std::string detail =
      session.system.fuse ? fmt::format("macFUSE {} is installed", *session.system.fuse) : "";
  if (advice.fuse)
    detail += fmt::format("{}{} or later would do", detail.empty() ? "macFUSE " : ", ", *advice.fuse);
  if (advice.macOS)
    detail += fmt::format("{}none does on this system: {}", detail.empty() ? "" : ", ", *advice.macOS);
  return detail;
}

std::string detailOf(const Cause& cause, const LoggedSession& session) {
  const bool isAboutFuse = cause.name.starts_with("macfuse-");
  const bool isAboutClient = cause.name.starts_with("client-");
  if (isAboutFuse) return fuseDetail(session);
  if (isAboutClient && session.clientSeconds && session.clientStatus)
    return fmt::format("{} {} after {:.1f} s", session.clientWasKilled ? "signal" : "status",
                       *session.clientStatus, *session.clientSeconds);
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

void Diagnostician::take(std::string_view text) {
  const auto line = logLineIn(text);
  if (!line || !isOfLauncher(*line)) return;  // a further line of a message, or none of a launcher
  if (isCut(text) && cutLines_++ == 0) cutLine_ = text;
  auto session = std::find_if(sessions_.rbegin(), sessions_.rend(), [&](const LoggedSession& one) {
    return one.processIdentifier == line->processIdentifier;
  });
  if (session == sessions_.rend() || (line->message == kBeginning && !session->story.isEmpty())) {
    if (sessions_.size() == kSessionsMax) sessions_.erase(sessions_.begin());
    sessions_.emplace_back(line->processIdentifier);
    session = sessions_.rbegin();
  } else if (session != sessions_.rbegin()) {
    hasOverlap_ = true;
  }
  session->take(text, *line);
}

Diagnosis Diagnostician::diagnosis(
    const std::function<std::optional<bool>(const LoggedSession&)>& isRunning) const {
  Diagnosis found;
  if (sessions_.empty()) return found;
  const LoggedSession& last = sessions_.back();
  found.session = last;
  const auto add = [&](const Cause& cause, std::vector<std::string> lines) {
    found.findings.push_back({&cause, detailOf(cause, last), std::move(lines)});
  };

  for (const auto& [place, lines] : last.signs) add(causes()[place], lines);
  const auto restless = std::ranges::find_if_not(sessions_.rbegin(), sessions_.rend(), endedAtOnce);
  const bool endsAtOnce = restless - sessions_.rbegin() >= kStartsMin;
  if (endsAtOnce) add(causeOf("client-ends-at-once"), {last.lastLine});
  if (const Cause* const end = endsAtOnce ? nullptr : endOfClient(last)) add(*end, {last.lastLine});
  if (!last.story.questions.empty() && !last.hasEnded())
    add(causeOf("waits-for-an-answer"), {last.story.questions.begin()->second + ": " + last.story.doing()});
  if (cutLines_ > 0 || last.lacksLines)
    add(causeOf("lines-missing"), {cutLines_ > 0 ? cutLine_ : last.lastLine});
  if (last.clockWentBack) add(causeOf("clock-set-back"), {last.lastLine});

  const std::optional<bool> runs = last.hasEnded() ? std::optional(false) : isRunning(last);
  if (!last.hasEnded() && runs == false) add(causeOf("launcher-killed"), {last.lastLine});
  if (sessions_.size() > 1 && !hasOverlap_ && !sessions_[sessions_.size() - 2].hasEnded())
    add(causeOf("launcher-killed"), {sessions_[sessions_.size() - 2].lastLine});
  std::ranges::stable_sort(found.findings, {}, [](const Finding& one) { return one.cause; });

  if (!runs) found.notes.emplace_back("Whether this launcher still runs cannot be told from the log alone.");
  if (!last.story.beginning) found.notes.emplace_back("The log does not reach back to its start.");
  if (hasOverlap_)
    found.notes.emplace_back("Two launchers ran at the same time; this is about the one that began last.");
  if (last.story.beginning && !secondsOfLogDate(*last.story.beginning))
    found.notes.emplace_back("Its dates are of another locale: how long things took cannot be told.");
  return found;
}

}  // namespace karno::karnoctl
