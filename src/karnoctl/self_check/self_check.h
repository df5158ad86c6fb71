#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "karnoctl/self_check/self_check_bundle.h"

namespace karno::karnoctl {

// Looks at all of the bundle and at the system, but for its exceptions: see checkExceptions().
void checkBundleAndSystem(const CheckedBundle& bundle);

// What is said when nothing is wrong.
std::string closingSentence(const CheckedBundle& bundle);

// All findings for scripts.
std::string findingsJson(const CheckedBundle& bundle);

// The parts of it, each in a file of its own. `information` is what the launcher's Info.plist holds, nothing
// where it cannot be read; `cost` is what it costs when the thing looked at is not as it should be.
inline constexpr std::string_view kInformationFile = "Contents/Info.plist";
inline constexpr const char* kSeal = "Contents/_CodeSignature/CodeResources";

// Whether the launcher's own Info.plist says all that the launcher, its updater and the system need of it.
// Its entries, for those who go on with them; absent when it cannot be read.
std::optional<platform::Value::Dictionary> checkInformation(const CheckedBundle& bundle);

// The SUPublicEDKey of a build that was given none: its private half was thrown away when it was made.
std::string_view publicKeyOfNobody();

// The text under that key; absent when there is none, or an empty one.
std::optional<std::string> textIn(const platform::Value::Dictionary& information, std::string_view key);

// Whether it can be the name of a host, with or without a port: "updates.example.org", "localhost:8443".
bool looksLikeHost(const std::string& text);

// Whether `file` names that identifier.
void checkIdentifier(const CheckedBundle& bundle, const std::string& file,
                     const platform::Value::Dictionary& information, std::string_view identifier,
                     std::string_view cost);

// Whether that program of the bundle is there, may be executed and is one of this machine: of its processor
// on Linux, of every processor of a Mac, and signed, on macOS.
void checkProgram(const CheckedBundle& bundle, const std::string& file, std::string_view cost);

// Both builds of the client, and on Linux the program that installs updates.
void checkHelpers(const CheckedBundle& bundle);

// On macOS, whether the bundle as a whole is signed, and whether it has the framework that updates it, which
// is loaded for that and asked for what the launcher sends to it.
void checkMacBundle(const CheckedBundle& bundle);

// Whether the system starts the bundle and lets it be updated where it lies: the lowest system that it names,
// translocation, quarantine, whose signature it has and whether it fits, what Gatekeeper says of it, and whom
// it belongs to. Asks tools of the system and waits for them; what a missing one would have told is noted as
// not checked.
void checkTrust(const CheckedBundle& bundle, const platform::Value::Dictionary& information);

// Where the bundle as a whole is sealed, whether its signature fits, whose it is, and whether Gatekeeper
// accepts it. A bundle without a seal is not looked at: on Linux nobody wants one.
void checkSeal(const CheckedBundle& bundle, bool isInQuarantine);

// Whether each language has its tables, they can be read, and none lacks a text that another has. Info.plist
// names the languages; without it only the base texts are looked at.
void checkTexts(const CheckedBundle& bundle, const platform::Value::Dictionary& information);

// Whether this system has everything that the launcher sends to its classes.
void checkSystem(const CheckedBundle& bundle);

// Raises an exception in the system. What has been found so far should have been said by now, since a system
// where it does not become an error may end this process.
void checkExceptions(const CheckedBundle& bundle);

}  // namespace karno::karnoctl
