#include <ostream>

#include "command_line/arguments.h"
#include "installer/bundle_facts.h"
#include "karno-appcast/archives/info_plist.h"
#include "karno-appcast/archives/published_files.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed/feed_check.h"
#include "karno-appcast/feed/feed_texts.h"
#include "karno-appcast/keys/base64.h"
#include "karno-appcast/verbs.h"
#include "platform/posix/files/whole_file.h"

namespace karno::appcast {
namespace {

using command_line::Arguments;
using command_line::UsageError;

constexpr std::size_t kPublicKeyBytes = 32;

// The launcher whose eyes look at the feed; what is absent is not known of it.
struct Launcher {
  std::optional<std::string> version;
  std::optional<std::string> publicKey;
  std::optional<std::string> identifier;
};

Launcher launcherIn(const std::string& bundle) {
  const auto facts = installer::readBundleFacts(bundle);
  if (!facts) throw Failure(bundle + ": " + facts.error().text);
  const auto file = platform::readWholeFile(bundle + "/Contents/Info.plist");
  if (!file) throw systemFailure("cannot read " + bundle, static_cast<int>(file.error().code()));
  const BundleInfo info = readInfoPlist(file.value().bytes);
  if (info.publicKey.empty()) throw Failure(bundle + " has no SUPublicEDKey and takes no update");
  return {.version = info.version, .publicKey = info.publicKey, .identifier = facts.value().identifier};
}

std::optional<Looker> lookerIn(const Arguments& arguments, const Launcher& launcher) {
  const auto version = arguments.value("--version-of-launcher");
  const auto system = arguments.value("--system");
  const auto looking = version ? version : launcher.version;
  if (looking && !system) throw UsageError("check needs --system for what a launcher would be offered");
  if (!looking && system) throw UsageError("--system goes with --against or --version-of-launcher");
  if (!looking) return std::nullopt;
  try {
    return Looker{.version = *looking, .system = threePartVersion(*system)};
  } catch (const Failure& failure) {
    throw UsageError(failure.what());
  }
}

std::optional<std::string> publicKeyIn(const Arguments& arguments) {
  auto key = arguments.value("--public-key");
  if (key && !bytesOfBase64(*key, kPublicKeyBytes))
    throw UsageError("--public-key needs a public key: base64 of 32 bytes");
  return key;
}

FeedStandard standardIn(const Arguments& arguments) {
  const std::optional<std::string> publicKey = publicKeyIn(arguments);
  const auto bundle = arguments.value("--against");
  const Launcher launcher = bundle ? launcherIn(*bundle) : Launcher();
  return {.looker = lookerIn(arguments, launcher),
          .publicKey = publicKey ? publicKey : launcher.publicKey,
          .identifier = launcher.identifier,
          .archives = arguments.value("--archives")};
}

std::size_t faultsIn(const std::string& place, const FeedStandard& standard, std::ostream& out) {
  const std::string bytes = readFeed(place, fetchFromTheWeb);
  try {
    return checkFeed(bytes, standard, fetchFromTheWeb, out);
  } catch (const Failure& failure) {
    throw Failure(place + ": " + failure.what());
  }
}

int check(const Arguments& arguments, std::ostream& out) {
  const std::string place = arguments.requiredWord();
  const std::size_t faults = faultsIn(place, standardIn(arguments), out);
  if (faults > 0)
    throw Failure(place + " has " + std::to_string(faults) + (faults == 1 ? " fault" : " faults"));
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb checkVerb(std::ostream& out) {
  return {
      .name = "check",
      .synopsis =
          "FEED [--against BUNDLE | --version-of-launcher VERSION] [--system VERSION]\n"
          "                           [--public-key KEY] [--archives FOLDER]",
      .summary = "read a published feed as a launcher would",
      .help =
          "Reads FEED, an https address or a file, with the launcher's own code, and fetches what it\n"
          "offers. Tells of each item whether a launcher would be offered it and why not, and of what it\n"
          "is offered, or of every item without a launcher, what is wrong: address, length, signature,\n"
          "what is in the archive, notes. Exits with 1 when anything is.\n"
          "\n"
          "  --against BUNDLE          the launcher: its version and its public key count\n"
          "  --version-of-launcher VERSION\n"
          "                            another CFBundleVersion than the bundle's\n"
          "  --system VERSION          the system that the launcher runs on\n"
          "  --public-key KEY          the key that has to have signed; by default the launcher's, or\n"
          "                            the one that the archive's own bundle carries\n"
          "  --archives FOLDER         take the archives from FOLDER instead of fetching them\n",
      .options = {"--against", "--version-of-launcher", "--system", "--public-key", "--archives"},
      .word = "FEED",
      .run = [&out](const auto& arguments) { return check(arguments, out); }};
}

}  // namespace karno::appcast
