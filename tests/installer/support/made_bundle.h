#pragma once
#include <string>
#include <vector>

#include "support/made_archive.h"

namespace karno::test {

struct BundleTexts {
  std::string version = "2";
  std::string identifier = "it.vantul.KarnoWrapper";
  std::string executable = "Karno";
};

// The text of its Info.plist.
std::string infoPlist(const BundleTexts& texts);

// A small bundle "Karno.app": its property list, an executable that tells the version, a resource and a
// framework with the links that frameworks have.
std::vector<Item> bundleItems(const BundleTexts& texts = {});

// The items of one list and then those of another.
std::vector<Item> joined(std::vector<Item> items, const std::vector<Item>& more);

// Lays the items out under a folder.
void writeItems(const std::string& folder, const std::vector<Item>& items);

// Everything under a folder, one line each in the order of names: permissions, path, and what a file holds or
// where a link leads. "(nothing)" when there is no such folder.
std::string treeText(const std::string& folder);

// The tree of one that was laid out by writeItems().
std::string treeOf(const std::vector<Item>& items);

}  // namespace karno::test
