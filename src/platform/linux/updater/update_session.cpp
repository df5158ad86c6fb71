#include "platform/linux/updater/update_session.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "platform/linux/updater/feed/notes_text.h"
#include "platform/linux/updater/feed/update_address.h"
#include "platform/linux/updater/setting_keys.h"
#include "platform/linux/updater/telling.h"
#include "platform/linux/updater/update_errors.h"
#include "platform/platform.h"
#include "platform/text/one_line.h"

namespace karno::platform::updates {
namespace {

constexpr std::uint64_t kDownloadBytesMax = 4ULL << 30U;  // whatever length the feed tells

const Bundle& bundle() { return host().bundles.mainBundle(); }

constexpr int kUnseenFetchSeconds = 60;  // redirects, and the reading of what came, included

// In whole megabytes, since every language has its own sign before a fraction.
std::string megabytes(std::uint64_t bytes) {
  constexpr std::uint64_t kMegabyte = 1'000'000;
  return std::to_string(bytes / kMegabyte + (bytes % kMegabyte == 0 ? 0 : 1));
}

// Work that blocks, and what the main thread does with its result. A modal alert does not hold up the second.
template <class Work, class Then>
void inBackground(Work work, Then then) {
  host().dispatch.globalQueue(QueuePriority::Default).async([work = std::move(work), then = std::move(then)] {
    host().dispatch.mainEvents().async([result = work(), then] { then(result); });
  });
}

std::string_view tokenFor(NothingToOffer reason) {
  switch (reason) {
    case NothingToOffer::SystemTooOld:
      return "SYSTEM_TOO_OLD";
    case NothingToOffer::SystemTooNew:
      return "SYSTEM_TOO_NEW";
    default:
      return "UP_TO_DATE_EXPLANATION";
  }
}

}  // namespace

std::string UpdateSession::textOf(std::string_view token) const {
  const std::string name = infoText("CFBundleName");
  const std::string version = infoText("CFBundleShortVersionString");
  return parts_.texts->text(token, {{"name", name}, {"old", version}, {"new", item_.displayVersion}});
}

void UpdateSession::begin() {
  const std::string feed = parts_.delegate.feedURLStringForUpdater(parts_.updater);
  parts_.services.settings.setObject(Value(host().clock.now()), kLastCheckKey);
  if (const auto refusal = refusalOfAddress(feed)) return abort(*refusal);
  if (parts_.isUserAsking) {
    showProgress(textOf("CHECKING"));
  } else {
    giveUpFetchingInTime();
  }
  inBackground(
      [self = shared_from_this(), feed] { return self->fetchAndRead(feed); },
      [self = shared_from_this()](const Result<std::vector<FeedItem>>& items) { self->feedCame(items); });
}

// Nobody sees a check of the updater's own, and nobody can cancel it; meanwhile the end of the client counts
// as a part of an update.
void UpdateSession::giveUpFetchingInTime() {
  host().dispatch.globalQueue(QueuePriority::Background).async([weak = weak_from_this()] {
    host().dispatch.sleep(kUnseenFetchSeconds);
    host().dispatch.mainEvents().async([weak] {
      const auto self = weak.lock();
      if (!self || self->hasFeed_ || self->hasEnded_) return;
      self->abort(updateError(
          UpdateErrorCode::Feed,
          fmt::format("The list of updates could not be fetched within {} seconds.", kUnseenFetchSeconds)));
    });
  });
}

// On a global queue: anybody's server decides how much there is to read.
Result<std::vector<FeedItem>> UpdateSession::fetchAndRead(const std::string& feed) const {
  const Result<std::string> bytes =
      parts_.services.fetchFeed(feed, [self = shared_from_this()] { return !self->hasEnded_; });
  if (!bytes) {
    return updateError(UpdateErrorCode::Feed, fmt::format("The list of updates could not be fetched: {}",
                                                          bytes.error().localizedDescription()));
  }
  Result<std::vector<FeedItem>> items = parts_.services.readFeed(bytes.value());
  if (!items) return items;
  for (FeedItem& item : items.value()) {
    item.notes = shownNotes(std::move(item.notes), item.notesFormat);
    for (TranslatedNotes& each : item.translatedNotes)
      each.notes = shownNotes(std::move(each.notes), each.format);
  }
  return items;
}

void UpdateSession::bringToFront() {
  host().application.activateIgnoringOtherApps();
  if (offerWindow_) offerWindow_->bringToFront();
  if (progressWindow_) progressWindow_->show();
}

void UpdateSession::feedCame(const Result<std::vector<FeedItem>>& items) {
  if (hasEnded_) return;
  hideProgress();
  hasFeed_ = true;
  if (!items) return abort(items.error());
  parts_.delegate.didFinishLoadingAppcast(parts_.updater);
  judge(items.value());
}

void UpdateSession::judge(const std::vector<FeedItem>& items) {
  const std::optional<Value> skipped = parts_.services.settings.objectForKey(kSkippedVersionKey);
  const std::string* const skippedVersion = skipped ? skipped->get<std::string>() : nullptr;
  const auto choice = chooseItem(items, {.version = infoText("CFBundleVersion"),
                                         .system = host().systemVersion,
                                         .skippedVersion = skippedVersion != nullptr ? *skippedVersion : "",
                                         .isUserAsking = parts_.isUserAsking});
  if (const auto* const reason = std::get_if<NothingToOffer>(&choice)) return nothingToOffer(*reason);
  item_ = std::get<FeedItem>(choice);
  told_ = {.title = item_.title, .displayVersionString = item_.displayVersion};
  offer();
}

void UpdateSession::nothingToOffer(NothingToOffer reason) {
  const std::string explanation = textOf(tokenFor(reason));
  const Error error = updateError(UpdateErrorCode::NoUpdate, explanation);
  parts_.delegate.updaterDidNotFindUpdate(parts_.updater, error);
  parts_.delegate.didAbortWithError(parts_.updater, error);
  end();
  if (parts_.isUserAsking) tellUser(textOf("UP_TO_DATE"), explanation, textOf("OK"));
}

void UpdateSession::offer() {
  parts_.delegate.didFindValidUpdate(parts_.updater, told_);
  const bool isOnlyToRead = item_.isInformationOnly;
  const OfferTexts texts{.title = textOf("OFFER_TITLE"),
                         .message = textOf("OFFER_MESSAGE"),
                         .explanation = textOf(isOnlyToRead ? "OFFER_INFORMATION" : "OFFER_EXPLANATION"),
                         .notes = notesFor(item_, parts_.services.languages()),
                         .install = textOf(isOnlyToRead ? "LEARN_MORE" : "INSTALL"),
                         .later = textOf("LATER"),
                         .skip = item_.isCritical ? "" : textOf("SKIP")};
  offerWindow_ = parts_.services.offerWindows.show(texts, [weak = weak_from_this()](long choice) {
    if (const auto self = weak.lock()) self->chosen(choice);
  });
  if (!offerWindow_) return chosen(kUserUpdateChoiceDismiss);
  if (parts_.isUserAsking) bringToFront();
}

void UpdateSession::chosen(long choice) {
  const auto self = shared_from_this();
  offerWindow_.reset();
  // Who goes on to the page has nothing installed.
  const bool readsOn = choice == kUserUpdateChoiceInstall && item_.isInformationOnly;
  if (readsOn) host().workspace.openURL(item_.informationURL);
  if (choice == kUserUpdateChoiceSkip) parts_.services.settings.setObject(item_.version, kSkippedVersionKey);
  parts_.delegate.userDidMakeChoice(parts_.updater, readsOn ? kUserUpdateChoiceDismiss : choice, told_);
  if (choice != kUserUpdateChoiceInstall || readsOn) return end();
  hasUserAgreed_ = true;
  download();
}

void UpdateSession::download() {
  if (const auto refusal = refusalOfAddress(item_.downloadURL)) return abort(*refusal);
  UpdateFolders& folders = parts_.services.folders;
  if (const auto refusal = folders.refusalOfPlace(bundle().bundlePath())) return abort(*refusal);
  const Result<std::string> folder = folders.makeFolderBeside(bundle().bundlePath());
  if (!folder) return abort(folder.error());
  downloadFolder_ = folder.value();

  parts_.delegate.willDownloadUpdate(parts_.updater, told_, inOneLine(item_.downloadURL));
  showProgress(textOf("DOWNLOADING"));
  inBackground(
      [self = shared_from_this(), progress = progressOnMainThread(true)] {
        return self->parts_.services.downloads.download(
            self->item_.downloadURL, self->downloadFolder_ + "/archive",
            std::min(self->item_.length.value_or(kDownloadBytesMax), kDownloadBytesMax), progress);
      },
      [self = shared_from_this()](const std::optional<Error>& error) { self->downloaded(error); });
}

void UpdateSession::downloaded(const std::optional<Error>& error) {
  hideProgress();
  if (isCancelled_) {
    parts_.delegate.userDidCancelDownload(parts_.updater);
    return end();
  }
  if (error) {
    parts_.delegate.failedToDownloadUpdate(parts_.updater, told_, *error);
    return abort(updateError(UpdateErrorCode::Download, fmt::format("The update could not be downloaded: {}",
                                                                    error->localizedDescription())));
  }
  parts_.delegate.didDownloadUpdate(parts_.updater, told_);
  unpack();
}

void UpdateSession::unpack() {
  const Result<std::string> folder = parts_.services.folders.makeFolderBeside(bundle().bundlePath());
  if (!folder) return abort(folder.error());
  unpackFolder_ = folder.value();
  parts_.delegate.willExtractUpdate(parts_.updater, told_);
  showProgress(textOf("EXTRACTING"));
  UnpackRequest request{.archive = downloadFolder_ + "/archive",
                        .length = item_.length,
                        .signature = item_.edSignature,
                        .publicKey = infoText(kPublicKeyKey),
                        .bundle = bundle().bundlePath(),
                        .folder = unpackFolder_};
  inBackground(
      [self = shared_from_this(), request = std::move(request), progress = progressOnMainThread(false)] {
        return self->parts_.services.installer.unpack(request, progress);
      },
      [self = shared_from_this()](const Result<std::string>& newBundle) { self->unpacked(newBundle); });
}

void UpdateSession::unpacked(const Result<std::string>& newBundle) {
  hideProgress();
  if (isCancelled_)
    return abort(updateError(UpdateErrorCode::Cancelled, "The user cancelled the installation."));
  if (!newBundle) return abort(newBundle.error());
  parts_.delegate.didExtractUpdate(parts_.updater, told_);
  install(newBundle.value());
}

// From here on the session stays in progress until the launcher has ended, and the installer clears away what
// it was given.
void UpdateSession::install(const std::string& newBundle) {
  removeFolder(downloadFolder_);
  parts_.delegate.willInstallUpdate(parts_.updater, told_);
  const bool relaunch = parts_.delegate.updaterShouldRelaunchApplication(parts_.updater);
  if (const auto error =
          parts_.services.installer.installAfterQuit({.newBundle = newBundle,
                                                      .bundle = bundle().bundlePath(),
                                                      .touchfile = parts_.delegate.updatedTouchfile(),
                                                      .relaunch = relaunch}))
    return abort(*error);
  parts_.services.folders.handOver(unpackFolder_);
  if (relaunch) host().application.terminate();
}

void UpdateSession::abort(const Error& error) {
  hideProgress();
  const bool isTold = (parts_.isUserAsking || hasUserAgreed_) && !isCancelled_;
  parts_.delegate.didAbortWithError(parts_.updater, error);
  end();
  if (isTold)
    tellUser(textOf(hasUserAgreed_ ? "FAILED" : "CHECK_FAILED"), error.localizedDescription(), textOf("OK"));
}

// The reading of a feed cannot be stopped, so nobody waits for it; a fetch, a download and the installer hear
// of it.
void UpdateSession::cancel() {
  const auto self = shared_from_this();
  isCancelled_ = true;
  hideProgress();
  if (!hasFeed_) abort(updateError(UpdateErrorCode::Cancelled, "The user cancelled the check."));
}

void UpdateSession::end() {
  hasEnded_ = true;
  removeFolder(downloadFolder_);
  removeFolder(unpackFolder_);
  offerWindow_.reset();
  parts_.ended();
}

void UpdateSession::removeFolder(std::string& folder) {
  if (!folder.empty()) parts_.services.folders.remove(std::exchange(folder, {}));
}

void UpdateSession::showProgress(const std::string& message) {
  shownPercent_ = -1;
  progressWindow_ = host().windows.makeProgressWindow();
  progressWindow_->setTitle(textOf("OFFER_TITLE"));
  progressWindow_->textField().setStringValue(message);
  progressWindow_->progressIndicator().setMinValue(0);
  progressWindow_->progressIndicator().setMaxValue(100);
  progressWindow_->progressIndicator().setDoubleValue(0);
  progressWindow_->cancelButton().setTitle(textOf("CANCEL"));
  progressWindow_->cancelButton().setAction([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->cancel();
  });
  progressWindow_->show();
}

void UpdateSession::hideProgress() {
  if (!progressWindow_) return;
  progressWindow_->close();
  progressWindow_.reset();
}

std::string UpdateSession::amountText(std::uint64_t done, std::uint64_t total) const {
  return parts_.texts->text("DOWNLOADING_AMOUNT", {{"name", infoText("CFBundleName")},
                                                   {"new", item_.displayVersion},
                                                   {"total", megabytes(total)},
                                                   {"left", megabytes(total - std::min(done, total))}});
}

// The main thread hears of whole percents only.
Progress UpdateSession::progressOnMainThread(bool saysHowMuch) {
  return [self = shared_from_this(), saysHowMuch](std::uint64_t done, std::uint64_t total) {
    if (self->isCancelled_) return false;
    if (total == 0) return true;
    const auto percent =
        static_cast<std::int64_t>(100.0 * static_cast<double>(done) / static_cast<double>(total));
    if (self->shownPercent_.exchange(percent) == percent) return true;
    host().dispatch.mainEvents().async([self, saysHowMuch, done, total, percent] {
      if (!self->progressWindow_) return;
      if (saysHowMuch) self->progressWindow_->textField().setStringValue(self->amountText(done, total));
      self->progressWindow_->progressIndicator().setDoubleValue(static_cast<double>(percent));
    });
    return true;
  };
}

}  // namespace karno::platform::updates
