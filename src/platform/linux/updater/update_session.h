#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/updater/feed/appcast.h"
#include "platform/linux/updater/feed/item_choice.h"
#include "platform/linux/updater/update_services.h"
#include "platform/linux/updater/update_texts.h"
#include "platform/updater.h"
#include "platform/windows.h"

namespace karno::platform::updates {

// One check of the feed and all that follows from it, up to an installer that waits for the launcher's end.
// Main thread only; what takes long runs on a global queue. It keeps itself alive until it has ended.
class UpdateSession : public std::enable_shared_from_this<UpdateSession> {
 public:
  struct Parts {
    Updater& updater;
    UpdaterDelegate& delegate;
    UpdateServices services;
    std::shared_ptr<const UpdateTexts> texts;
    bool isUserAsking = false;
    std::function<void()> ended;  // called once
  };

  explicit UpdateSession(Parts parts) : parts_(std::move(parts)) {}

  void begin();

  // For a user who asks again.
  void bringToFront();

 private:
  void giveUpFetchingInTime();
  Result<std::vector<FeedItem>> fetchAndRead(const std::string& feed) const;
  void feedCame(const Result<std::vector<FeedItem>>& items);
  void judge(const std::vector<FeedItem>& items);
  void nothingToOffer(NothingToOffer reason);
  void offer();
  void chosen(long choice);
  void download();
  void downloaded(const std::optional<Error>& error);
  void unpack();
  void unpacked(const Result<std::string>& newBundle);
  void install(const std::string& newBundle);
  void abort(const Error& error);
  void end();

  void removeFolder(std::string& folder);
  void showProgress(const std::string& message);
  void hideProgress();
  void cancel();
  std::string amountText(std::uint64_t done, std::uint64_t total) const;
  Progress progressOnMainThread(bool saysHowMuch);
  std::string textOf(std::string_view token) const;

  const Parts parts_;
  FeedItem item_;
  AppcastItem told_;            // the same as the delegate sees it
  std::string downloadFolder_;  // empty: none
  std::string unpackFolder_;
  std::atomic<bool> isCancelled_{false};
  std::atomic<bool> hasEnded_{false};
  std::atomic<std::int64_t> shownPercent_{-1};
  bool hasFeed_ = false;
  bool hasUserAgreed_ = false;
  std::unique_ptr<OfferWindow> offerWindow_;
  std::unique_ptr<ProgressWindow> progressWindow_;
};

}  // namespace karno::platform::updates
