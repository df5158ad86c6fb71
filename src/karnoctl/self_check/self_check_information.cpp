#include "karnoctl/self_check/self_check_information.h"

#include <fmt/format.h>

#include <algorithm>

#include "karnoctl/self_check/text_shapes.h"
#include "platform/public_key.h"

namespace karno::karnoctl {
namespace {

using platform::Value;

enum class Shape { Text, Truth, Number, Texts, Host, PublicKey };

struct RequiredKey {
  std::string_view key;
  Shape shape;
  std::string_view cost;
};

constexpr RequiredKey kRequiredKeys[] = {
    {"CFBundleDevelopmentRegion", Shape::Text, "the language of the base texts is not known"},
    {"CFBundleExecutable", Shape::Text, "the launcher cannot be started"},
    {"CFBundleLocalizations", Shape::Texts, "all texts are shown in the base language"},
    {"CFBundleName", Shape::Text, "the launcher has no name in menus and windows"},
    {"CFBundlePackageType", Shape::Text, "the bundle is not taken for an application"},
    {"CFBundleShortVersionString", Shape::Text, "the log and the offer of an update tell no version"},
    {"CFBundleVersion", Shape::Text, "the updater cannot tell what is newer"},
    {"KarnoMacFUSESite", Shape::Host, "the site that the launcher has built in is opened"},
    {"KarnoReleasesHost", Shape::Host, "the host that the launcher has built in is asked"},
    {"KarnoUpdateFeedHost", Shape::Host, "updates come from the host that the launcher has built in"},
    {"LSMinimumSystemVersion", Shape::Text, "it is started on systems that are too old for it"},
    {"LSUIElement", Shape::Truth, "the launcher stays in the Dock beside its client"},
    {"NSHighResolutionCapable", Shape::Truth, "its windows look blurred"},
    {"NSPrincipalClass", Shape::Text, "the launcher ends when it is started"},
    {"SUEnableAutomaticChecks", Shape::Truth, "the updater asks the user whether it may look for updates"},
    {"SUPublicEDKey", Shape::PublicKey, "no update is taken"},
    {"SUScheduledCheckInterval", Shape::Number, "the updater chooses when it looks for updates"},
    {"SUVerifyUpdateBeforeExtraction", Shape::Truth, "archives are unpacked before they are verified"},
};

bool isTexts(const Value& value) {
  const auto* const elements = value.get<Value::Array>();
  return elements != nullptr &&
         std::ranges::all_of(*elements, [](const Value& element) { return element.isString(); });
}

bool fits(const Value& value, Shape shape) {
  const auto* const text = value.get<std::string>();
  switch (shape) {
    case Shape::Text:
      return text != nullptr && !text->empty();
    case Shape::Truth:
      return value.get<bool>() != nullptr;
    case Shape::Number:
      return value.isNumber() && value.get<bool>() == nullptr;
    case Shape::Texts:
      return isTexts(value);
    case Shape::Host:
      return text != nullptr && looksLikeHost(*text);
    case Shape::PublicKey:
      return text != nullptr && platform::looksLikePublicKey(*text);
  }
  return false;
}

std::string_view nameOf(Shape shape) {
  switch (shape) {
    case Shape::Text:
      return "text";
    case Shape::Truth:
      return "truth value";
    case Shape::Number:
      return "number";
    case Shape::Texts:
      return "list of texts";
    case Shape::Host:
      return "name of a host";
    case Shape::PublicKey:
      break;
  }
  return "key of 32 bytes in base64";
}

// Of a host only a missing one is replaced; any text is used as it is.
std::string_view costOfMisfit(const Value& value, const RequiredKey& wanted) {
  const auto* const text = value.get<std::string>();
  const bool isUsed = wanted.shape == Shape::Host && text != nullptr && !text->empty();
  return isUsed ? "nothing can be fetched from there" : wanted.cost;
}

void checkKey(const CheckedBundle& bundle, const Value::Dictionary& information, const RequiredKey& wanted) {
  const auto entry = information.find(wanted.key);
  if (entry == information.end()) {
    bundle.wrong(fmt::format("{} has no {}: {}.", kInformationFile, wanted.key, wanted.cost));
  } else if (!fits(entry->second, wanted.shape)) {
    bundle.wrong(fmt::format("{} has a {} that is no {}: {}.", kInformationFile, wanted.key,
                             nameOf(wanted.shape), costOfMisfit(entry->second, wanted)));
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

std::optional<std::string> textIn(const Value::Dictionary& information, std::string_view key) {
  const auto entry = information.find(key);
  if (entry == information.end() || !fits(entry->second, Shape::Text)) return std::nullopt;
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
