#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_target.h"
#include "karno-appcast/failure.h"
#include "karno-appcast/feed/feed_check.h"
#include "platform/linux/updater/feed/update_address.h"
#include "platform/text/one_line.h"

namespace karno::fuzz {
namespace {

using appcast::FeedStandard;
using platform::Error;
using platform::URLLimits;
using platform::URLSink;
using platform::updates::FeedItem;

// The public half of RFC 8032's first example, which has signed the archive for the corpus.
constexpr const char* kPublicKey = "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=";
constexpr const char* kIdentifier = "it.vantul.KarnoWrapper";

// An archive costs more than all the rest of an input: it is unpacked.
constexpr int kArchivesMax = 2;

struct Free {
  void operator()(archive* writer) const { archive_write_free(writer); }
  void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};

void addFile(archive* writer, const char* path, std::string_view content) {
  const std::unique_ptr<archive_entry, Free> entry(archive_entry_new());
  archive_entry_set_pathname(entry.get(), path);
  archive_entry_set_filetype(entry.get(), AE_IFREG);
  archive_entry_set_perm(entry.get(), 0755);
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(content.size()));
  const bool isAdded =
      archive_write_header(writer, entry.get()) == ARCHIVE_OK &&
      archive_write_data(writer, content.data(), content.size()) == static_cast<la_ssize_t>(content.size());
  mustHold(isAdded, "a file can be put into an archive");
}

// Version 2 of the launcher, the same bytes in every run.
std::string archivedBundle() {
  const std::string information =
      "<plist><dict><key>CFBundleExecutable</key><string>Karno</string>"
      "<key>CFBundleIdentifier</key><string>" +
      std::string(kIdentifier) +
      "</string><key>CFBundleVersion</key><string>2</string>"
      "<key>SUPublicEDKey</key><string>" +
      kPublicKey + "</string></dict></plist>\n";
  std::array<char, 16384> bytes{};
  std::size_t used = 0;
  const std::unique_ptr<archive, Free> writer(archive_write_new());
  mustHold(archive_write_set_format_ustar(writer.get()) == ARCHIVE_OK &&
               archive_write_open_memory(writer.get(), bytes.data(), bytes.size(), &used) == ARCHIVE_OK,
           "an archive can be begun");
  addFile(writer.get(), "Karno.app/Contents/Info.plist", information);
  addFile(writer.get(), "Karno.app/Contents/MacOS/Karno", "#!/bin/sh\n");
  mustHold(archive_write_close(writer.get()) == ARCHIVE_OK, "an archive can be ended");
  return {bytes.data(), used};
}

// A web that has one archive under many names, and pages, and remembers who asked for what.
class MadeUpWeb {
 public:
  std::optional<Error> fetch(const std::string& url, const URLLimits& limits, URLSink& sink) {
    static const std::string archive = archivedBundle();
    mustHold(!platform::updates::refusalOfAddress(url), "nothing is fetched over an unsafe line");
    mustHold(limits.bodyBytesMax > 0, "what is fetched is bounded");
    asked_.push_back(url);
    if (url.ends_with(".html")) return sink.take("<p>New</p>");
    const bool isCut = url.ends_with("cut.tar");
    if (!url.ends_with(".tar") || ++archives_ > kArchivesMax)
      return Error(std::string(platform::kURLErrorDomain), -1100);
    return sink.take(std::string_view(archive).substr(0, isCut ? archive.size() / 2 : archive.size()));
  }

  const std::vector<std::string>& asked() const { return asked_; }

 private:
  std::vector<std::string> asked_;
  int archives_ = 0;
};

struct Printed {
  std::size_t items = 0;
  std::size_t faults = 0;
  bool saysNothingIsOffered = false;
};

// Faults alone begin with a blank.
Printed readPrinted(const std::string& text) {
  Printed printed;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    mustHold(platform::inOneLine(line) == line, "nothing that is printed does more than be seen");
    mustHold(!printed.saysNothingIsOffered, "that nothing is offered is said at the end");
    if (line == "Nothing is offered.") {
      printed.saysNothingIsOffered = true;
    } else if (line.starts_with("  wrong: ")) {
      ++printed.faults;
    } else {
      ++printed.items;
    }
  }
  return printed;
}

void checkOutcome(const std::vector<FeedItem>& items, const FeedStandard& standard, std::size_t faults,
                  const std::string& text, const MadeUpWeb& web) {
  const Printed printed = readPrinted(text);
  mustHold(printed.items == items.size(), "each item is reported");
  mustHold(printed.faults == faults, "each fault is printed and counted");
  if (!standard.looker) {
    mustHold(!printed.saysNothingIsOffered, "without a launcher nothing is offered or not");
    return;
  }
  std::size_t offered = 0;
  for (const appcast::Verdict& verdict : appcast::verdictsOf(*standard.looker, items)) {
    mustHold(verdict.isOffered == verdict.reason.empty(), "what is not offered has a reason");
    if (verdict.isOffered) ++offered;
  }
  mustHold(offered <= 1, "a launcher is offered one item at most");
  mustHold(printed.saysNothingIsOffered == (offered == 0), "it is said when nothing is offered");
  mustHold(web.asked().size() <= 2 * offered, "only what is offered is fetched: an archive and a page");
}

void checkFor(const FeedStandard& standard, const std::string& bytes) {
  const auto items = platform::updates::parseAppcast(bytes);
  MadeUpWeb web;
  std::ostringstream out;
  try {
    const std::size_t faults = appcast::checkFeed(
        bytes, standard,
        [&web](const auto& url, const auto& limits, auto& sink) { return web.fetch(url, limits, sink); },
        out);
    mustHold(bool{items}, "what is no feed is no feed here");
    checkOutcome(items.value(), standard, faults, out.str(), web);
  } catch (const appcast::Failure& failure) {
    mustHold(!items, "what launchers read is looked into");
    mustHold(out.str().empty() && web.asked().empty(), "of what is no feed nothing is said");
    mustHold(platform::inOneLine(failure.what()) == failure.what(), "why it is none is a line");
  }
}

FeedStandard launcher(std::string version, std::string system) {
  return {.looker = appcast::Looker{.version = std::move(version), .system = std::move(system)},
          .publicKey = kPublicKey,
          .identifier = kIdentifier,
          .archives = {}};
}

void check(std::string_view bytes) {
  static const std::vector<FeedStandard> standards = {
      {},
      {.looker = {}, .publicKey = kPublicKey, .identifier = "it.vantul.Other", .archives = "/dev/null"},
      {.looker = appcast::Looker{.version = "1.0b2", .system = "12.6.0"},
       .publicKey = {},
       .identifier = {},
       .archives = {}},
      launcher("1", "10.14.6"),
      launcher("1.9.9", "26.0.0"),
      launcher("2", "12.6.0")};
  for (const FeedStandard& standard : standards) checkFor(standard, std::string(bytes));
}

}  // namespace
}  // namespace karno::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  karno::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
