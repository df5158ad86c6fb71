#include "support/made_bundle.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "property_list_texts.h"
#include "temporary_folder.h"

namespace karno::test {
namespace {

namespace fs = std::filesystem;

std::string lineOf(const fs::path& path, const fs::path& root) {
  struct stat status = {};
  if (::lstat(path.c_str(), &status) != 0) return "?\n";
  const std::string name = path.lexically_relative(root).string();
  if (S_ISLNK(status.st_mode)) return fmt::format("link {} -> {}\n", name, fs::read_symlink(path).string());
  if (S_ISDIR(status.st_mode)) return fmt::format("{:o} {}/\n", status.st_mode & 07777, name);
  return fmt::format("{:o} {}: {}\n", status.st_mode & 07777, name, contentOf(path.string()));
}

}  // namespace

std::string infoPlist(const BundleTexts& texts) {
  return propertyList(stringEntry("CFBundleExecutable", texts.executable) + "<key>LSUIElement</key><true/>" +
                      stringEntry("CFBundleIdentifier", texts.identifier) +
                      stringEntry("CFBundleVersion", texts.version));
}

std::vector<Item> bundleItems(const BundleTexts& texts) {
  return {
      folder("Karno.app"),
      folder("Karno.app/Contents"),
      file("Karno.app/Contents/Info.plist", infoPlist(texts)),
      folder("Karno.app/Contents/MacOS"),
      file("Karno.app/Contents/MacOS/Karno", "#!/bin/sh\necho version " + texts.version + "\n", 0755),
      file("Karno.app/Contents/Resources/Grüße 日本.txt", "text of " + texts.version),
      file("Karno.app/Contents/Frameworks/F.framework/Versions/A/F", std::string(5000, 'f')),
      link("Karno.app/Contents/Frameworks/F.framework/Versions/Current", "A"),
      link("Karno.app/Contents/Frameworks/F.framework/F", "Versions/Current/F"),
  };
}

std::vector<Item> joined(std::vector<Item> items, const std::vector<Item>& more) {
  items.insert(items.end(), more.begin(), more.end());
  return items;
}

void writeItems(const std::string& folder, const std::vector<Item>& items) {
  for (const Item& item : items) {
    const fs::path path = fs::path(folder) / item.name;
    fs::create_directories(path.parent_path());
    if (item.kind == Kind::Folder) fs::create_directories(path);
    if (item.kind == Kind::Link) fs::create_symlink(item.content, path);
    if (item.kind == Kind::File) std::ofstream(path, std::ios::binary) << item.content;
    if (item.kind != Kind::Link && item.mode != 0) ::chmod(path.c_str(), item.mode);
  }
}

std::string treeText(const std::string& folder) {
  if (!fs::exists(folder)) return "(nothing)";
  std::vector<std::string> lines;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    lines.push_back(lineOf(entry.path(), folder));
  std::sort(lines.begin(), lines.end(), [](const std::string& one, const std::string& other) {
    return one.substr(one.find(' ')) < other.substr(other.find(' '));
  });
  std::string text;
  for (const std::string& line : lines) text += line;
  return text;
}

std::string treeOf(const std::vector<Item>& items) {
  const TemporaryFolder folder;
  writeItems(folder.path(), items);
  return treeText(folder.path());
}

}  // namespace karno::test
