#pragma once
#include <sys/types.h>

#include <string>
#include <vector>

#include "installer/install.h"
#include "support/made_bundle.h"
#include "temporary_folder.h"

namespace karno::test {

// A folder with version 1 of a bundle in it and a new one in a staging folder beside.
class InstallPlace {
 public:
  explicit InstallPlace(const std::string& staging = ".karno-update-1", const BundleTexts& newTexts = {});

  const TemporaryFolder& folder() const { return folder_; }
  std::string bundle() const { return folder_ / "Karno.app"; }
  std::string newBundle() const { return newBundle_; }

  // After a process that has ended already.
  installer::InstallRequest request() const;

  // The command line of the program that does the same.
  std::vector<std::string> command() const;

  // Everything in the folder, what it is with nothing but the old bundle in it, and with nothing but the new.
  std::string tree() const { return treeText(folder_.path()); }
  std::string oldTree() const { return treeOf(bundleItems({.version = "1"})); }
  std::string newTree() const { return treeOf(bundleItems()); }

 private:
  const TemporaryFolder folder_;
  const std::string newBundle_;
};

// The identifier of a process that has ended and has been waited for.
pid_t endedProcess();

// A child that waits to be told to end.
class WaitingChild {
 public:
  WaitingChild();
  ~WaitingChild();
  WaitingChild(const WaitingChild&) = delete;
  WaitingChild& operator=(const WaitingChild&) = delete;

  pid_t processIdentifier() const { return process_; }
  bool isRunning() const;

  // It ends by itself a moment later.
  void endSoon() const;

 private:
  pid_t process_ = -1;
};

// installUpdate() in a child that ends by a signal in the exchange.
void endInExchange(const InstallPlace& place, const installer::Exchange& exchange);

}  // namespace karno::test
