#include "installer/install.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "installer/bundle_facts.h"
#include "installer/process_end.h"
#include "installer/tree_removal.h"

namespace karno::installer {
namespace {

namespace fs = std::filesystem;
using Complaint = std::optional<std::string>;

std::string words(int error) { return std::generic_category().message(error); }

struct Places {
  std::string newBundle;
  std::string bundle;
  std::string staging;  // empty when the new bundle lies in no staging folder
};

bool holds(const std::string& folder, const std::string& path) {
  return path == folder || path.starts_with(folder + "/");
}

// Nothing for what is no folder.
std::optional<struct stat> folderStatus(const std::string& path) {
  struct stat status = {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return std::nullopt;
  return status;
}

// With every link on the way followed, so that it is the bundle itself that moves.
std::string canonical(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? std::string() : real.string();
}

std::string stagingFolderOf(const std::string& newBundle) {
  const fs::path folder = fs::path(newBundle).parent_path();
  return folder.filename().string().starts_with(kStagingPrefix) ? folder.string() : std::string();
}

Complaint findPlaces(const InstallRequest& request, Places& places) {
  places.newBundle = canonical(request.newBundle);
  places.bundle = canonical(request.bundle);
  const auto newStatus = folderStatus(places.newBundle);
  const auto status = folderStatus(places.bundle);
  if (!newStatus) return "There is no new bundle.";
  if (!status) return "There is no bundle to be replaced.";
  if (newStatus->st_dev != status->st_dev) return "The bundles are on different volumes.";

  places.staging = stagingFolderOf(places.newBundle);
  const bool isEntangled = holds(places.bundle, places.newBundle) || holds(places.newBundle, places.bundle) ||
                           (!places.staging.empty() && holds(places.staging, places.bundle));
  if (isEntangled) return "One of the bundles lies in the other or beside it in the staging folder.";
  return std::nullopt;
}

Complaint waitFor(const InstallRequest& request) {
  const int error = waitForEnd(request.after, request.giveUpAfter);
  if (error == 0) return std::nullopt;
  if (error == ETIMEDOUT) return fmt::format("The process {} did not end.", request.after);
  return fmt::format("The process {} cannot be watched: {}.", request.after, words(error));
}

Complaint checkUpdate(const std::string& path, const BundleFacts& current) {
  const auto candidate = readBundleFacts(path);
  if (!candidate) return candidate.error().text;
  if (const auto failure = checkIsUpdate(candidate.value(), current)) return failure->text;
  return std::nullopt;
}

Complaint swapChecked(const Places& places, Swap& swap) {
  const auto current = readBundleFacts(places.bundle);
  if (!current) return "Of the present bundle: " + current.error().text;
  if (auto complaint = checkUpdate(places.newBundle, current.value())) return complaint;

  if (const int error = swap.swap()) return "The bundle could not be replaced: " + words(error) + ".";
  auto complaint = checkUpdate(places.bundle, current.value());
  if (!complaint) return std::nullopt;
  if (const int error = swap.swapBack())
    *complaint += " The old bundle could not be put back: " + words(error) + ".";
  return complaint;
}

// What is left over, in words; empty when all is gone.
std::string removeRemains(const std::string& oldBundle, const std::string& staging) {
  int error = removeTree(oldBundle);
  if (!staging.empty()) {
    const int stagingError = removeTree(staging);
    if (error == 0) error = stagingError;
  }
  return error == 0 ? std::string() : "The old bundle could not be removed: " + words(error) + ".";
}

InstallEnd givenUp(const Places& places, std::string complaint) {
  if (!places.staging.empty()) removeTree(places.staging);
  return {.isInstalled = false, .complaint = std::move(complaint)};
}

}  // namespace

InstallEnd installUpdate(const InstallRequest& request, const Exchange& exchange) {
  Places places;
  if (auto complaint = findPlaces(request, places)) return {false, *complaint};
  if (auto complaint = waitFor(request)) return givenUp(places, *complaint);
  // It may have been long.
  if (auto complaint = findPlaces(request, places)) return {false, *complaint};

  Swap swap(places.newBundle, places.bundle, exchange);
  if (auto complaint = swapChecked(places, swap)) {
    // The staging folder may hold the only whole bundle now.
    if (!swap.oldBundle().empty()) return {false, *complaint};
    return givenUp(places, *complaint);
  }
  if (const int error = swap.makeDurable())
    return {true, "The old bundle stays, as the new one may not be on the disk: " + words(error) + "."};
  return {true, removeRemains(swap.oldBundle(), places.staging)};
}

}  // namespace karno::installer
