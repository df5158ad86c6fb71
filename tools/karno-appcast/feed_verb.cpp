#include <sys/stat.h>

#include <algorithm>
#include <ostream>

#include "command_line/arguments.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed/feed.h"
#include "karno-appcast/feed/feed_texts.h"
#include "karno-appcast/keys/base64.h"
#include "karno-appcast/keys/key_file.h"
#include "karno-appcast/verbs.h"
#include "platform/posix/files/whole_file.h"

namespace karno::appcast {
namespace {

using command_line::Arguments;
using command_line::UsageError;

constexpr std::string_view kFeedName = "/appcast.eddsa.xml";
constexpr mode_t kForEverybody = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
constexpr std::size_t kPublicKeyBytes = 32;

// Empty when there is none yet.
std::string existingFeed(const std::string& path) {
  auto file = platform::readWholeFile(path);
  if (file) return std::move(file.value().bytes);
  const auto error = static_cast<int>(file.error().code());
  if (error == ENOENT) return {};
  throw systemFailure("cannot read " + path, error);
}

void write(const std::string& path, const std::string& text) {
  if (const int error = platform::replaceFile(path, text)) throw systemFailure("cannot write " + path, error);
  if (::chmod(path.c_str(), kForEverybody) != 0) throw systemFailure("cannot open up " + path, errno);
}

std::optional<std::string> plainText(const Arguments& arguments, std::string_view option) {
  auto text = arguments.value(option);
  if (text && !isTextForFeed(*text))
    throw Failure("the " + std::string(option.substr(2)) + " is no plain UTF-8 text");
  return text;
}

std::optional<std::string> systemVersion(const Arguments& arguments, std::string_view option) {
  const auto text = arguments.value(option);
  return text ? std::optional(threePartVersion(*text)) : std::nullopt;
}

std::optional<std::uint64_t> seconds(const Arguments& arguments, std::string_view option) {
  const auto text = arguments.value(option);
  if (!text) return std::nullopt;
  const auto number = command_line::numberIn(*text);
  if (!number || *number == 0)
    throw UsageError(std::string(option) + " needs a number of seconds, not '" + *text + "'");
  return number;
}

ItemWishes wishesIn(const Arguments& arguments) {
  ItemWishes wishes{.minimumSystem = systemVersion(arguments, "--minimum-system"),
                    .maximumSystem = systemVersion(arguments, "--maximum-system"),
                    .channel = plainText(arguments, "--channel"),
                    .notesLink = arguments.value("--notes-link"),
                    .rolloutIntervalInSeconds = seconds(arguments, "--phased-rollout-interval"),
                    .isCritical = arguments.has("--critical")};
  if (wishes.notesLink) checkedAddress(*wishes.notesLink, arguments.has("--allow-http"));
  return wishes;
}

FeedOptions readOptions(const Arguments& arguments) {
  return {.urlPrefix = checkedPrefix(arguments.required("--url-prefix"), arguments.has("--allow-http")),
          .title = plainText(arguments, "--title"),
          .wishes = wishesIn(arguments),
          .wishedFor = plainText(arguments, "--for"),
          .replaced = plainText(arguments, "--replace"),
          .allowsOlder = arguments.has("--older"),
          .nextPublicKey = std::nullopt};
}

// Whatever is wrong with a value is wrong usage.
FeedOptions optionsIn(const Arguments& arguments) {
  try {
    return readOptions(arguments);
  } catch (const Failure& failure) {
    throw UsageError(failure.what());
  }
}

int writeFeed(const Arguments& arguments, const FeedOptions& options, std::ostream& out) {
  const std::string folder = arguments.requiredWord();
  const PrivateKey key = readKeyFile(arguments.required("--private"));
  const std::string output = arguments.value("--output").value_or(folder + std::string(kFeedName));
  const std::vector<Release> releases = readReleases(folder);
  write(output, feedText(releases, existingFeed(output), key, options));
  out << output << " offers " << releases.size() << (releases.size() == 1 ? " release" : " releases")
      << " of " << folder << '\n';
  return command_line::kExitOk;
}

int feed(const Arguments& arguments, std::ostream& out) {
  arguments.requiredWord();
  arguments.required("--private");
  return writeFeed(arguments, optionsIn(arguments), out);
}

int rotate(const Arguments& arguments, std::ostream& out) {
  arguments.requiredWord();
  arguments.required("--private");
  const std::string next = arguments.required("--new-public");
  FeedOptions options = optionsIn(arguments);
  if (!bytesOfBase64(next, kPublicKeyBytes))
    throw UsageError("--new-public needs a public key: base64 of 32 bytes");
  if (next == readKeyFile(arguments.required("--private")).publicKey())
    throw Failure("the new key is the one that the feed has already");
  options.nextPublicKey = next;
  return writeFeed(arguments, options, out);
}

constexpr const char* kSynopsis =
    "FOLDER --private FILE --url-prefix URL [--output FILE] [--title TEXT]\n"
    "                          [--older] [--replace VERSION] [--for VERSION]\n"
    "                          [--minimum-system VERSION] [--maximum-system VERSION]\n"
    "                          [--channel NAME] [--notes-link URL] [--critical]\n"
    "                          [--phased-rollout-interval SECONDS] [--allow-http]";

constexpr const char* kRotateSynopsis =
    "FOLDER --private FILE --new-public KEY --url-prefix URL\n"
    "                            [OPTION OF feed...]";

constexpr const char* kHelp =
    "Looks into every archive in FOLDER (.zip, .tar, .tar.gz, .tar.xz, .tar.bz2, .tar.zst), signs\n"
    "those that are new and writes a feed that offers them, newest first. Refused is what no\n"
    "launcher would install, or what would keep it from installing another update. The notes of\n"
    "Karno-1.1.zip are in Karno-1.1.txt, or in Karno-1.1.html, beside it. Releases of an earlier\n"
    "feed that are not in FOLDER stay in it, as does whatever people wrote into its items.\n"
    "\n"
    "  --private FILE            the private key\n"
    "  --url-prefix URL          where the archives will lie on the server, such as\n"
    "                            https://host/updates/macos/\n"
    "  --output FILE             the feed; FOLDER/appcast.eddsa.xml by default\n"
    "  --title TEXT              the feed's title; the application's name by default\n"
    "  --older                   accept a release that is no newer than published ones\n"
    "  --replace VERSION         accept another archive for that published CFBundleVersion\n"
    "  --allow-http              accept a URL that begins with http://\n"
    "\n"
    "For releases that are new to the feed or replaced:\n"
    "\n"
    "  --for VERSION             for that release instead, also when it is published\n"
    "  --minimum-system VERSION  the oldest system, in place of what the bundle says\n"
    "  --maximum-system VERSION  the newest system\n"
    "  --channel NAME            only for launchers that follow this channel\n"
    "  --notes-link URL          a page with the notes\n"
    "  --critical                an update that cannot be skipped\n"
    "  --phased-rollout-interval SECONDS\n"
    "                            the seconds from one seventh of the Macs to the next\n";

constexpr const char* kRotateHelp =
    "Writes the feed like the verb feed, and has the newest release in FOLDER be the last that the\n"
    "old private key signs: its bundle must carry the new public key. From then on the feed takes\n"
    "newer releases by the new key alone, and offers them to nobody who has not installed this one.\n"
    "\n"
    "  --private FILE            the old private key\n"
    "  --new-public KEY          the new public key\n"
    "\n"
    "The other options are those of feed.\n";

const std::vector<std::string_view> kOptions{"--private",
                                             "--url-prefix",
                                             "--output",
                                             "--title",
                                             "--replace",
                                             "--for",
                                             "--minimum-system",
                                             "--maximum-system",
                                             "--channel",
                                             "--notes-link",
                                             "--phased-rollout-interval"};
const std::vector<std::string_view> kFlags{"--allow-http", "--older", "--critical"};

std::vector<std::string_view> rotateOptions() {
  std::vector<std::string_view> options = kOptions;
  options.emplace_back("--new-public");
  return options;
}

}  // namespace

command_line::Verb feedVerb(std::ostream& out) {
  return {.name = "feed",
          .synopsis = kSynopsis,
          .summary = "write or extend a feed from a folder of releases",
          .help = kHelp,
          .options = kOptions,
          .flags = kFlags,
          .word = "FOLDER",
          .run = [&out](const auto& arguments) { return feed(arguments, out); }};
}

command_line::Verb rotateVerb(std::ostream& out) {
  return {.name = "rotate",
          .synopsis = kRotateSynopsis,
          .summary = "write a feed whose newest release hands over to a new key",
          .help = kRotateHelp,
          .options = rotateOptions(),
          .flags = kFlags,
          .word = "FOLDER",
          .run = [&out](const auto& arguments) { return rotate(arguments, out); }};
}

}  // namespace karno::appcast
