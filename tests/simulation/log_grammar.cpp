#include "log_grammar.h"

#include <unicode/regex.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace karno::simulation {
namespace {

constexpr std::string_view kMain = "main";
constexpr std::string_view kPool = "global(0)";
constexpr std::string_view kWait = "it.vantul.KarnoWrapper.download-wait";
constexpr std::string_view kBackground = "it.vantul.KarnoWrapper.bg.";
constexpr std::string_view kEnd = "task termination";
constexpr std::string_view kInfo = "INFO";
constexpr std::string_view kWarn = "WARN";
constexpr std::string_view kError = "*** ERROR ***";
constexpr std::string_view kDebug = "DEBUG";
constexpr std::string_view kStart = "STARTUP";
constexpr std::string_view kConsole = "";

const LineKind kLines[] = {
    {"banner", kStart, "===================================================", kMain},
    {"started", kStart, "Karno Log Started (defaults verboseLogging={})", kMain},
    {"version", kStart, "Karno Version: {}", kMain},
    {"parent", kStart, "Parent Process: {} ({})", kMain},
    {"clean-folder", kDebug, "KarnoLog[Clean] Skipping directory: '{}'", kMain},
    {"clean-other", kDebug, "KarnoLog[Clean] Skipping non-lumberjack file: '{}'", kMain},
    {"clean-recent", kDebug, "KarnoLog[Clean] Skipping recent lumberjack log: '{}'", kMain},
    {"clean-removed", kStart, "KarnoLog[Clean] Removing old lumberjack log: '{}' (age: {} seconds)", kMain},
    {"flushing", kDebug, "LOG[FLUSH] Flushing log", ""},

    {"check-move", kInfo, "AppDelegate[MOVE] Check whether app needs to be moved", kMain},
    {"stays", kInfo, "AppDelegate[MOVE] Karno does not need to be moved. Continuing...", "global(-32768)"},
    {"alerting-move", kInfo, "KarnoMoveApplicationManager:: Alerting user that the app needs moving.",
     "global(-32768)"},
    {"bailing-out", kWarn,
     "KarnoMoveApplicationManager:: Bailing out as we're already moving the application", ""},
    {"moved", kInfo, "AppDelegate[MOVE] Karno has been moved and will be restarted. Quitting.", kMain},
    {"not-moved", kError, "AppDelegate[MOVE] Failed to move Karno. Error={}", kMain},
    {"move-refused", kWarn, "AppDelegate[MOVE] User cancelled the move operation - quitting", kMain},
    {"reason", kInfo, "AppDelegate[TERMINATE] Reason: {}", ""},
    {"terminating", kInfo, "AppDelegate:: Terminating", kMain},

    {"console-move-cancelled", kConsole, "INFO -- User cancelled the move", kMain},
    {"console-moving", kConsole, "INFO -- Moving myself to the Applications folder", kMain},
    {"console-no-right", kConsole, "INFO -- Not moving because user canceled authorization", kMain},
    {"console-switching", kConsole, "INFO -- Switching to an already running version", kMain},
    {"console-not-opened", kConsole, "The operation couldn’t be completed. {}", kMain},
    {"console-no-privileged-copy", kConsole,
     "ERROR -- Could not copy myself to /Applications with authorization", kMain},
    {"console-no-copy", kConsole, "ERROR -- Could not copy myself to {}", kMain},
    {"console-copy-error", kConsole, "ERROR -- Could not copy '{}' to '{}' ({})", kMain},
    {"console-not-trashed", kConsole, "ERROR -- Could not trash '{}'", kMain},
    {"console-script-error", kConsole, "Trash AppleScript error: {}", kMain},
    {"console-not-deleted", kConsole, "WARNING -- Could not delete '{}': {}", kMain},
    {"console-old-copy-stays", kConsole,
     "WARNING -- Could not delete application after moving it to Applications folder", kMain},
    {"console-no-token", kConsole, "--- KarnoLocalise token '{}' not found", ""},

    {"object", kWarn, "Object={}", ""},
    {"args-fp", kDebug, "EmbeddedApp[ARGS] Launch FileProvider (command-line)", ""},
    {"args-fuse", kDebug, "EmbeddedApp[ARGS] Launch Fuse (command-line)", ""},
    {"chosen-admin", kInfo, "EmbeddedApp[CONFIGURE] Use File Provider = {} (admin)", ""},
    {"chosen-verified", kInfo, "EmbeddedApp[CONFIGURE] Use File Provider = {} (verified)", ""},
    {"chosen-now", kInfo, "EmbeddedApp[CONFIGURE] Use File Provider = {} ({})", ""},
    {"check-fp", kInfo, "Startup[CHECK] Checking system for FileProvider...", kMain},
    {"using-fp", kInfo, "Startup[CHECK] Using FileProvider", kMain},
    {"too-old-for-fp", kWarn,
     "Startup[CHECK] *** Cannot *** use FileProvider (O/S version < 12.3). Failing over to Fuse.", kMain},
    {"check-fuse", kInfo, "Startup[CHECK] Checking system for Fuse...", kMain},

    {"os-info", kError, "KarnoOSInfoManager: {}", "global(0)|it.vantul.KarnoWrapper.download-wait"},
    {"no-command", kWarn, "Utilities:: Unable to open command ({})", ""},
    {"command-failed", kWarn, "Utilities:: Command Failed ({})", ""},
    {"no-cpu", kError, "Fuse[SYSTEM] Failed to identify the system cpu", ""},
    {"cpu", kInfo, "Fuse[SYSTEM] CPU: '{}'", kPool},
    {"no-os", kError, "Fuse[SYSTEM] Failed to identify the system version", ""},
    {"os", kInfo, "Fuse[SYSTEM] O/S Version: '{}'", kPool},
    {"no-library", kWarn, "Fuse: Failed to determine system /Library path", ""},
    {"no-fuse", kWarn, "Fuse[SYSTEM] Fuse is not installed", kPool},
    {"fuse", kInfo, "Fuse[SYSTEM] Fuse Version: '{}'", kPool},
    {"met", kInfo, "FuseRequirements: System requirements have been met", ""},
    {"not-met", kWarn, "FuseRequirements: System requirements not met", ""},
    {"fuse-is-there", kInfo, "Startup[FUSE] Fuse is installed",
     "global(0)|it.vantul.KarnoWrapper.download-wait"},
    {"need-fuse", kInfo, "Main: Need to install Fuse", kPool},
    {"pressed-continue", kInfo, "Main: User pressed continue to install Fuse", kMain},
    {"pressed-cancel", kInfo, "Main: User pressed cancel - not installing Fuse", kMain},
    {"showing-site", kInfo, "Startup[FUSE] Showing macFuse website and asking user to install Fuse", kPool},
    {"waiting-for-fuse", kInfo, "Startup[FUSE] Waiting for Fuse to install", kWait},
    {"continued", kInfo, "Startup[FUSE] User has continued after installing Fuse", kMain},
    {"gave-up", kWarn, "Startup[FUSE] User decided not to install fuse", kMain},

    {"okay", kInfo, "Main: System is okay - launching Karno", ""},
    {"launching", kInfo, "Startup[LAUNCH] Launching {}", kPool},
    {"launched", kInfo, "Startup[LAUNCH] Launched {} (pid: {})", kPool},
    {"not-launched", kWarn, "Startup[LAUNCH] Failed to launch '{}'. Reason: {}", kPool},
    {"no-client", kWarn, "Startup[LAUNCH] Failed to launch Karno. Reason: {}", kPool},
    {"launch-error", kError, "Startup[LAUNCH] Failed to launch Karno. Reason: {}", kPool},
    {"client-started", kInfo, "Main: Started Karno successfully", kPool},
    {"not-started", kError, "Main: Failed to start Karno", ""},
    {"not-set-up", kError, "Main: Failed to setup system", ""},
    {"should-terminate", kInfo, "Main: App should terminate", ""},
    {"no-path", kWarn, "Utilities[BUNDLE] Could not determine path for {}", ""},
    {"no-url", kWarn, "Utilities[BUNDLE] Could not build url for {} (path:{})", ""},
    {"no-bundle", kWarn, "Utilities[BUNDLE] Could not find bundle for {} (path:{})", ""},

    {"child-ended", kWarn, "Startup[TERMINATED] Child terminated (status:{}, reason:{})", kEnd},
    {"being-restarted", kWarn, "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being restarted",
     kEnd},
    {"being-updated", kWarn, "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being updated",
     kEnd},
    {"quitting", kWarn, "Startup[TERMINATED] Embedded Karno.app terminated - quitting", kEnd},
    {"wait-for-app", kInfo, "ProcessUtils: Waiting for '{}' to terminate", kPool},
    {"app-stays", kWarn, "ProcessUtils: '{}' has not terminated (timed-out after {} seconds)", kPool},
    {"app-gone", kWarn, "ProcessUtils: '{} terminated ({} seconds)", kPool},
    {"no-restart", kError, "Startup[RESTART] Failed to restart Karno - because it has not exited", kPool},
    {"restart-error", kError, "Startup[RESTART] Failed to restart Karno. Reason: {}", kPool},
    {"no-wrapper-restart", kError,
     "Startup[RESTART] Failed to restart Wrapper - because Karno has not exited", kPool},
    {"wrapper-restarts", kInfo, "Startup[RESTART] Karno has quit - restarting wrapper (-launch {})", kPool},
    {"wrapper-error", kError, "Startup[RESTART] Failed to restart wrapper. Reason: {}", kMain},

    {"received", kInfo, "Notify[LISTEN] Received '{}'", kMain},
    {"unknown", kWarn, "Notify[LISTEN] Received an unknown notification '{}'", kMain},
    {"upgrade-ended", kInfo, "Notify[LISTEN] Upgrade in progress - Karno.app has terminated.", kMain},
    {"upgrade-abnormal", kInfo, "Notify[LISTEN] Upgrade in progress - Karno has terminated abnormally.",
     kMain},
    {"upgrade-no-restart", kInfo, "Notify[LISTEN] Upgrade in progress - Not restarting Karno.app.", kMain},
    {"restarting", kInfo, "Notify[LISTEN] Restarting Karno.app.", kMain},
    {"abnormal", kError, "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason={})", kMain},
    {"elected", kInfo, "Abnormal[TERMINATION] User elected to restart Karno after terminating abnormally.",
     kMain},
    {"not-elected", kInfo,
     "Abnormal[TERMINATION] User elected not to restart Karno after terminating abnormally.", kMain},

    {"kill-refused", kWarn, "ProcessUtils[TERMINATE] Refusing to terminate Karno (pid:{}) - invalid pid",
     kMain},
    {"kill-failed", kWarn,
     "ProcessUtils[TERMINATE] Failed to terminate Karno (pid:{}). Reason: {} (errno: {})", kMain},
    {"killed", kWarn, "ProcessUtils[TERMINATE] Process {} terminated successfully", kMain},
    {"kill-late", kWarn, "ProcessUtils[TERMINATE] Timed-out waiting for process {} to terminate.", kMain},
    {"wait-failed", kWarn, "ProcessUtils[TERMINATE] Failed to terminate process {}. Reason: {} (errno: {})",
     kMain},

    {"updater-starts", kInfo, "Sparkle[START] Starting Up", kPool},
    {"updater-failed", kError, "Sparkle[INIT] Failed to start. Reason: {}", kMain},
    {"after-update", kInfo, "Sparkle[START] Checking Fuse following a Karno update", kPool},
    {"touch-stays", kError, "Sparkle[START] Failed to remove '{}'. Reason:{}", ""},
    {"policy", kInfo, "Sparkle[CONFIG] Updates {} by admin", kPool},
    {"automatic", kInfo, "Sparkle[CONFIG] Check updates automatically={}", kMain},
    {"bad-marker", kWarn, "Sparkle[FEED] Cannot parse url in {}", kMain},
    {"check-ignored", kWarn, "Sparkle[CHECK] Ignoring check for updates when already in progress", kMain},
    {"checking", kInfo, "Sparkle[CHECK] Checking for updates ({})", kMain},
    {"appcast", kInfo, "Sparkle[UPDATE] Downloaded appcast ({})", kMain},
    {"found", kInfo, "Sparkle[UPDATE] Found: {} ({})", kMain},
    {"decided", kInfo, "Sparkle[UPDATE] User decided to {} update", kMain},
    {"none-found", kInfo, "Sparkle[UPDATE] No update found. Reason: {}", kMain},
    {"fuse-then", kInfo, "Sparkle[UPDATE] Checking Fuse for updates following automated update check", kMain},
    {"downloading", kInfo, "Sparkle[UPDATE] Downloading {} ({}) - {}", kMain},
    {"downloaded", kInfo, "Sparkle[UPDATE] Downloaded update", kMain},
    {"download-failed", kError, "Sparkle[UPDATE] Failed to download update. Error: {}", kMain},
    {"download-cancelled", kWarn, "Sparkle[UPDATE] User cancelled download", kMain},
    {"extracting", kInfo, "Sparkle[UPDATE] Extracting update", kMain},
    {"extracted", kInfo, "Sparkle[UPDATE] Extracted update", kMain},
    {"installing", kInfo, "Sparkle[UPDATE] About to install: {} ({})", kMain},
    {"handing-over", kInfo, "Sparkle[UPDATE] Relaunching app", kMain},
    {"touching", kInfo, "Sparkle[INSTALL] Creating 'updated' touchfile", kMain},
    {"not-touched", kError, "Sparkle[INSTALL] Failed to create 'updated' touchfile ({})", kMain},
    {"aborted", kWarn, "Sparkle[ABORT] Update Aborted ({})", kMain},

    {"fp-needs-no-fuse", kInfo, "Fuse[START] Not checking for a Fuse update - as we use a FileProvider", ""},
    {"fuse-check", kInfo, "Fuse[UPDATE] Checking for update ({})", kBackground},
    {"fuse-bad-url", kError, "Fuse[UPDATE] Failed to retrieve metadata. Invalid url '{}'", kBackground},
    {"fuse-no-record", kError, "Fuse[UPDATE] Failed to retrieve metadata. Reason: {}", kBackground},
    {"fuse-bad-record", kError, "Fuse[UPDATE] Failed to parse metadata. Reason: {}", kBackground},
    {"fuse-latest", kInfo, "Fuse[UPDATE] Latest version: name='{}' (tag_name='{}') => '{}'", kBackground},
    {"fuse-unchecked", kWarn, "Fuse[UPDATE] Failed to check for an update", kBackground},
    {"fuse-compared", kInfo, "Fuse[UPDATE] Installed Version={}, Latest Version={} (update available={})",
     kBackground},
    {"fuse-offer", kInfo, "Fuse[UPDATE] Prompting user - Fuse update is available", kMain},
    {"fuse-not-now", kInfo, "Fuse[UPDATE] User chose not to continue.", kMain},
    {"fuse-pane", kInfo, "Fuse[UPDATE] User continued - Opening Fuse preference pane.", kMain},
    {"fuse-no-pane", kError, "Fuse[UPDATE] Failed to open Fuse preference pane. Reason: {}", kMain},

    {"no-strings", kWarn, "KarnoLocalise: Failed to build path for '{}'", ""},
    {"unread-strings", kWarn, "KarnoLocalise: Failed to load data for '{}'. Error={}", ""},
    {"bad-strings", kWarn, "KarnoLocalise: Failed to serialise data for '{}'. Error={}", ""},
    {"bad-placeholder", kWarn, "KarnoLocalise: Failed to build regex key '{}' for '{}'. Reason={}", ""},
    {"unread-list", kWarn, "PropertyList[READ] Failed read file {}", ""},
    {"bad-list", kWarn, "PropertyList[READ] Failed to unarchive dictionary from {}. Reason: {}", ""},
    {"no-link", kWarn, "Utilities:: Failed to find link for '{}'", ""},
};

constexpr Story kPieces[] = {
    {"quit", "reason flushing?"},
    {"texts", "(no-strings|unread-strings|bad-strings)* console-no-token*"},
    {"choice", "object* (args-fp|args-fuse|chosen-admin|chosen-verified|chosen-now)? object*"},
    {"shell", "(no-command|command-failed)* os-info?"},
    {"client", "(no-path|no-url|no-bundle)?"},
    {"fuse-facts", "cpu (no-os|os no-library? (no-fuse|fuse (met|not-met)))"},
    {"after-update", "after-update object* (fp-needs-no-fuse touch-stays?)?"},
    {"killing", "(kill-refused|kill-failed|killed|kill-late|wait-failed)"},
    {"trashed", "(console-script-error console-not-trashed)?"},
    {"old-copy", "(console-not-deleted? $trashed console-old-copy-stays?)?"},
    {"move-end", "(moved|not-moved|move-refused) $quit"},
};

constexpr Story kStories[] = {
    {"the start",
     "banner started version parent (clean-folder|clean-other|clean-recent|clean-removed)* check-move"},
    {"it lies well", "stays"},
    {"it lies elsewhere", "alerting-move"},
    {"it is moved already", "bailing-out"},
    {"the user keeps it there", "console-move-cancelled $move-end"},
    {"it moves",
     "console-moving (console-switching console-not-opened?)? $trashed console-copy-error? "
     "console-no-copy? console-no-right? console-no-privileged-copy? $old-copy console-not-opened* "
     "$move-end"},
    {"the choice of the build", "$choice (check-fp (using-fp okay?|too-old-for-fp check-fuse)|check-fuse)"},
    {"the look at macFUSE",
     "$shell no-library? (no-cpu|$fuse-facts) no-library? (fuse-is-there okay?|need-fuse)?"},
    {"the prompt", "$texts"},
    {"the user goes on to the site", "pressed-continue"},
    {"the user wants no macFUSE", "pressed-cancel $quit"},
    {"the site", "showing-site"},
    {"the wait for macFUSE",
     "waiting-for-fuse $shell (no-cpu|no-os|no-library|not-met)* (met fuse-is-there okay)?"},
    {"macFUSE by hand",
     "$texts continued $choice (check-fp (using-fp okay?|too-old-for-fp check-fuse)|check-fuse)"},
    {"the wait is cancelled", "$texts gave-up (not-set-up not-started?)?"},
    {"the refusal by hand", "$texts not-set-up not-started?"},
    {"an end that nobody asks for", "should-terminate $quit"},
    {"the launch", "$choice $client launching launched client-started? updater-starts object* policy?"},
    {"the launch after an update",
     "$choice $client launching launched client-started? updater-starts $after-update object* policy?"},
    {"the launch that fails", "$choice $client (no-client|launching not-launched) launch-error not-started?"},
    {"the updater cannot start", "updater-failed"},
    {"an alert or a new launcher before the end", "$texts wrapper-error? $quit"},
    {"the end of the client", "child-ended (quitting $quit|being-restarted|being-updated)"},
    {"the restart of the client",
     "$choice $client (wait-for-app app-gone)? $client launching launched client-started?"},
    {"the restart that fails",
     "$choice $client (wait-for-app app-gone)? $client (no-client|launching not-launched) "
     "restart-error not-started?"},
    {"the client stays",
     "$choice $client wait-for-app app-stays (no-restart|no-wrapper-restart) not-started?"},
    {"the launcher starts anew", "$choice $client (wait-for-app app-gone)? wrapper-restarts"},
    {"a message",
     "received (unknown|automatic|check-ignored|bad-marker? checking|restarting|abnormal|upgrade-ended|"
     "upgrade-abnormal|upgrade-no-restart|$quit|$choice)?"},
    {"the crash question", "$texts (elected|not-elected $quit)"},
    // In an order that the updater decides.
    {"what the updater tells",
     "(bad-marker|appcast|found|decided|none-found fuse-then object* "
     "fp-needs-no-fuse?|downloading|downloaded|"
     "download-failed|download-cancelled|extracting|extracted|installing|aborted)*"},
    {"the hand-over", "extracted? installing? handing-over touching not-touched? $killing $quit"},
    {"the newest macFUSE",
     "fuse-check (fuse-bad-url fuse-unchecked|fuse-no-record fuse-unchecked|fuse-bad-record "
     "fuse-unchecked|fuse-latest (fuse-unchecked|no-library? fuse-compared))"},
    {"the offer of macFUSE",
     "(fuse-offer $texts (fuse-not-now|fuse-pane (no-command fuse-no-pane|command-failed)?))? "
     "touch-stays?"},
    {"the end", "terminating"},
    {"what other programs ask", "$texts bad-placeholder|no-link? (unread-list|bad-list)*|object*"},
};

constexpr char16_t kFirstCharacter = 0xE000;  // of those that have no meaning but their user's

// The character that stands for a line in expressions.
char16_t characterOf(const LineKind& kind) {
  return static_cast<char16_t>(kFirstCharacter + (&kind - std::begin(kLines)));
}

icu::UnicodeString expressionOf(std::string_view story) {
  icu::UnicodeString expression;
  while (!story.empty()) {
    const std::string_view word = story.substr(0, std::min(story.find_first_of(" ()|?*"), story.size()));
    const auto* const line = std::ranges::find(kLines, word, &LineKind::name);
    const auto* const piece = std::ranges::find(kPieces, word.substr(word.starts_with('$')), &Story::name);
    if (word.empty()) {
      if (story.front() != ' ') expression += static_cast<char16_t>(story.front());
    } else if (line != std::end(kLines)) {
      expression += characterOf(*line);
    } else if (piece != std::end(kPieces)) {
      (expression += u'(') += expressionOf(piece->lines) += u')';
    } else {
      throw std::logic_error("there is no such line or piece: " + std::string(word));
    }
    story.remove_prefix(std::max<std::size_t>(1, word.size()));
  }
  return expression;
}

std::vector<std::unique_ptr<icu::RegexPattern>> compiledStories() {
  std::vector<std::unique_ptr<icu::RegexPattern>> patterns;
  for (const Story& story : kStories) {
    UErrorCode code = U_ZERO_ERROR;
    patterns.emplace_back(icu::RegexPattern::compile(expressionOf(story.lines), 0, code));
    if (U_FAILURE(code)) throw std::logic_error("no expression: " + std::string(story.lines));
  }
  return patterns;
}

// Made before any life begins, each of which is a process of its own.
const std::vector<std::unique_ptr<icu::RegexPattern>> kExpressions = compiledStories();

bool matches(std::string_view text, std::string_view pattern) {
  const std::size_t gap = pattern.find("{}");
  if (gap == std::string_view::npos) return text == pattern;
  if (!text.starts_with(pattern.substr(0, gap))) return false;
  const std::string_view rest = pattern.substr(gap + 2);
  text.remove_prefix(gap);
  if (rest.empty()) return true;
  const std::string_view next = rest.substr(0, rest.find("{}"));
  for (std::size_t place = text.find(next); place != std::string_view::npos;
       place = text.find(next, place + 1)) {
    if (matches(text.substr(place), rest)) return true;
  }
  return false;
}

}  // namespace

std::span<const Story> stories() { return kStories; }

const LineKind* kindOf(std::string_view level, std::string_view message) {
  const auto* const found = std::ranges::find_if(
      kLines, [&](const LineKind& kind) { return kind.level == level && matches(message, kind.pattern); });
  return found == std::end(kLines) ? nullptr : found;
}

std::vector<std::string> linesWithoutStory() {
  std::vector<std::string> left;
  for (const LineKind& kind : kLines) {
    const auto tells = [&](const auto& story) { return story->pattern().indexOf(characterOf(kind)) >= 0; };
    if (std::ranges::none_of(kExpressions, tells)) left.emplace_back(kind.name);
  }
  return left;
}

// A search that came to the end of the lines would have gone on with more of them.
const Story* storyOf(const std::vector<const LineKind*>& lines, bool isWhole) {
  icu::UnicodeString told;
  for (const LineKind* const line : lines) told += characterOf(*line);
  for (std::size_t i = 0; i < std::size(kStories); ++i) {
    UErrorCode code = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> matcher(kExpressions[i]->matcher(told, code));
    if (matcher->matches(code) || (!isWhole && matcher->hitEnd())) return &kStories[i];
  }
  return nullptr;
}

}  // namespace karno::simulation
