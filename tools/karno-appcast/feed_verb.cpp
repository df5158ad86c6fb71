#include <sys/stat.h>

#include <ostream>

#include "command_line/arguments.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed.h"
#include "karno-appcast/feed_texts.h"
#include "karno-appcast/key_file.h"
#include "karno-appcast/verbs.h"
#include "platform/posix/files/whole_file.h"

namespace karno::appcast {
namespace {

constexpr std::string_view kFeedName = "/appcast.eddsa.xml";
constexpr mode_t kForEverybody = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

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

int writeFeed(const command_line::Arguments& arguments, std::ostream& out) {
  const std::string folder = arguments.requiredWord();
  const std::string keyFile = arguments.required("--private");
  FeedOptions options{
      .urlPrefix = checkedPrefix(arguments.required("--url-prefix"), arguments.has("--allow-http")),
      .title = arguments.value("--title"),
      .minimumSystem = std::nullopt};
  if (!isTextForFeed(options.title.value_or(""))) throw Failure("the title is no plain UTF-8 text");
  if (const auto system = arguments.value("--minimum-system"))
    options.minimumSystem = threePartVersion(*system);
  const std::string output = arguments.value("--output").value_or(folder + std::string(kFeedName));

  const std::vector<Release> releases = readReleases(folder, readKeyFile(keyFile));
  write(output, feedText(releases, existingFeed(output), options));
  out << output << " offers " << releases.size() << (releases.size() == 1 ? " release" : " releases")
      << " of " << folder << '\n';
  return command_line::kExitOk;
}

}  // namespace

command_line::Verb feedVerb(std::ostream& out) {
  return {.name = "feed",
          .synopsis =
              "FOLDER --private FILE --url-prefix URL [--output FILE] [--title TEXT]\n"
              "                          [--minimum-system VERSION] [--allow-http]",
          .summary = "write or extend a feed from a folder of releases",
          .help =
              "Signs every archive in FOLDER (.zip, .tar, .tar.gz, .tar.xz, .tar.bz2, .tar.zst) that has an\n"
              "application at its top and writes a feed that offers them, newest first. The notes of\n"
              "Karno-1.1.zip are in Karno-1.1.txt, or in Karno-1.1.html, beside it. Releases of an earlier\n"
              "feed that are not in FOLDER stay in it.\n"
              "\n"
              "  --private FILE            the private key\n"
              "  --url-prefix URL          where the archives will lie on the server, such as\n"
              "                            https://host/updates/macos/\n"
              "  --output FILE             the feed; FOLDER/appcast.eddsa.xml by default\n"
              "  --title TEXT              the feed's title; the application's name by default\n"
              "  --minimum-system VERSION  the oldest system for these releases, in place of what their\n"
              "                            bundles say\n"
              "  --allow-http              accept a URL that begins with http://\n",
          .options = {"--private", "--url-prefix", "--output", "--title", "--minimum-system"},
          .flags = {"--allow-http"},
          .word = "FOLDER",
          .run = [&out](const auto& arguments) { return writeFeed(arguments, out); }};
}

}  // namespace karno::appcast
