#include "karnoctl/self_check/self_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <regex>

#include "platform/public_key.h"

namespace karno::karnoctl {
namespace {

using platform::Value;

// What a value is to be, and how that is called.
struct Shape {
  std::string_view name;
  bool (*fits)(const Value& value);
};

bool isText(const Value& value) {
  const auto* const text = value.get<std::string>();
  return text != nullptr && !text->empty();
}

bool isTexts(const Value& value) {
  const auto* const elements = value.get<Value::Array>();
  return elements != nullptr && std::ranges::all_of(*elements, &Value::isString);
}

template <auto looksRight>
bool isTextThat(const Value& value) {
  return value.isString() && looksRight(*value.get<std::string>());
}

constexpr Shape kSomeText{"text", isText};
constexpr Shape kTruthValue{"truth value", [](const Value& value) { return value.get<bool>() != nullptr; }};
constexpr Shape kAnyNumber{"number",
                           [](const Value& value) { return value.isNumber() && !kTruthValue.fits(value); }};
constexpr Shape kListOfTexts{"list of texts", isTexts};
constexpr Shape kHostName{"name of a host", isTextThat<looksLikeHost>};
constexpr Shape kKeyOfUpdates{"key of 32 bytes in base64", isTextThat<platform::looksLikePublicKey>};

struct RequiredKey {
  std::string_view key;
  const Shape& shape;
  std::string_view cost;
};

constexpr RequiredKey kRequiredKeys[] = {
    {"CFBundleDevelopmentRegion", kSomeText, "the language of the base texts is not known"},
    {"CFBundleExecutable", kSomeText, "the launcher cannot be started"},
    {"CFBundleLocalizations", kListOfTexts, "all texts are shown in the base language"},
    {"CFBundleName", kSomeText, "the launcher has no name in menus and windows"},
    {"CFBundlePackageType", kSomeText, "the bundle is not taken for an application"},
    {"CFBundleShortVersionString", kSomeText, "the log and the offer of an update tell no version"},
    {"CFBundleVersion", kSomeText, "the updater cannot tell what is newer"},
    {"KarnoMacFUSESite", kHostName, "the site that the launcher has built in is opened"},
    {"KarnoReleasesHost", kHostName, "the host that the launcher has built in is asked"},
    {"KarnoUpdateFeedHost", kHostName, "updates come from the host that the launcher has built in"},
    {"LSMinimumSystemVersion", kSomeText, "it is started on systems that are too old for it"},
    {"LSUIElement", kTruthValue, "the launcher stays in the Dock beside its client"},
    {"NSHighResolutionCapable", kTruthValue, "its windows look blurred"},
    {"NSPrincipalClass", kSomeText, "the launcher ends when it is started"},
    {"SUEnableAutomaticChecks", kTruthValue, "the updater asks the user whether it may look for updates"},
    {"SUPublicEDKey", kKeyOfUpdates, "no update is taken"},
    {"SUScheduledCheckInterval", kAnyNumber, "the updater chooses when it looks for updates"},
    {"SUVerifyUpdateBeforeExtraction", kTruthValue, "archives are unpacked before they are verified"},
};

// Of a host only a missing one is replaced; any text is used as it is.
std::string_view costOfMisfit(const Value& value, const RequiredKey& wanted) {
  const bool isUsed = &wanted.shape == &kHostName && isText(value);
  return isUsed ? "nothing can be fetched from there" : wanted.cost;
}

void checkKey(const CheckedBundle& bundle, const Value::Dictionary& information, const RequiredKey& wanted) {
  const auto entry = information.find(wanted.key);
  if (entry == information.end()) {
    bundle.wrong(fmt::format("{} has no {}: {}.", kInformationFile, wanted.key, wanted.cost));
  } else if (!wanted.shape.fits(entry->second)) {
    bundle.wrong(fmt::format("{} has a {} that is no {}: {}.", kInformationFile, wanted.key,
                             wanted.shape.name, costOfMisfit(entry->second, wanted)));
  }
}

// macOS asks Info.plist which file it is; on Linux it always is the same one.
void checkIcon(const CheckedBundle& bundle, const Value::Dictionary& information) {
  constexpr std::string_view kKey = "CFBundleIconFile";
  constexpr std::string_view kCost = "the launcher has no icon";
  if (!bundle.isForMacOS()) {
    bundle.hasFile("Contents/Resources/karno.png", kCost);
    return;
  }
  const auto name = textIn(information, kKey);
  if (!name) {
    bundle.wrong(fmt::format("{} has no {}: {}.", kInformationFile, kKey, kCost));
    return;
  }
  const bool hasExtension = name->find('.') != std::string::npos;
  bundle.hasFile("Contents/Resources/" + *name + (hasExtension ? "" : ".icns"), kCost);
}

}  // namespace

std::string_view publicKeyOfNobody() { return KARNO_PUBLIC_KEY_OF_NOBODY; }

bool looksLikeHost(const std::string& text) {
  constexpr std::size_t kLettersMax = 260;
  static const std::regex kHostAndPort([] {
    const std::string label = "[0-9A-Za-z]([0-9A-Za-z-]{0,61}[0-9A-Za-z])?";
    return label + "(\\." + label + ")*(:[0-9]{1,5})?";
  }());
  return text.size() <= kLettersMax && std::regex_match(text, kHostAndPort);
}

std::optional<std::string> textIn(const Value::Dictionary& information, std::string_view key) {
  const auto entry = information.find(key);
  if (entry == information.end() || !isText(entry->second)) return std::nullopt;
  return *entry->second.get<std::string>();
}

void checkIdentifier(const CheckedBundle& bundle, const std::string& file,
                     const Value::Dictionary& information, std::string_view identifier,
                     std::string_view cost) {
  const auto found = textIn(information, "CFBundleIdentifier");
  if (!found) {
    bundle.wrong(fmt::format("{} has no CFBundleIdentifier: {}.", file, cost));
  } else if (*found != identifier) {
    bundle.wrong(
        fmt::format("{} has the CFBundleIdentifier {} instead of {}: {}.", file, *found, identifier, cost));
  }
}

std::optional<Value::Dictionary> checkInformation(const CheckedBundle& bundle) {
  const std::string file(kInformationFile);
  auto information = bundle.dictionary(
      file, "the launcher has no version and no updates, and a Mac does not start it at all");
  if (!information) return std::nullopt;
  checkIdentifier(bundle, file, *information, "it.vantul.KarnoWrapper",
                  "its updater and karnoctl take it for another application");
  for (const RequiredKey& wanted : kRequiredKeys) checkKey(bundle, *information, wanted);
  if (textIn(*information, "SUPublicEDKey") == publicKeyOfNobody()) {
    bundle.note(
        fmt::format("{} has the SUPublicEDKey of a build without a key of its own, whose private half "
                    "nobody has: no update is taken.",
                    kInformationFile));
  }
  checkIcon(bundle, *information);
  return information;
}

}  // namespace karno::karnoctl
