#pragma once
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "subprocess.h"

namespace karno::test {

// The commands of docs/releasing.md, typed block by block into one shell. A block goes by the comment that it
// begins with.
class ReleaseDocument {
 public:
  // `sources` is the folder that the shell is in, `environment` what it has beside the test's own.
  ReleaseDocument(const std::filesystem::path& document, std::filesystem::path sources,
                  std::map<std::string, std::string> environment);

  // Has the person write another value than the document: of a variable that a block sets, or of any other
  // words in the blocks.
  void set(const std::string& variable, const std::string& value) { values_[variable] = value; }
  void replace(const std::string& words, const std::string& others) { words_[words] = others; }

  // Types that block; what it prints. Throws std::runtime_error when a command fails.
  std::string type(const std::string& title);

  // Types it into another shell, which goes with the object; it prints into the file.
  std::unique_ptr<Subprocess> typeElsewhere(const std::string& title, const std::filesystem::path& output);

  // The blocks that were not typed, but for those that are for a Mac.
  std::vector<std::string> untyped() const;

 private:
  struct Block {
    std::string title;
    std::string commands;
    bool isTyped = false;
  };

  std::vector<std::string> shellFor(const std::string& title);

  const std::filesystem::path sources_;
  const std::map<std::string, std::string> environment_;
  std::map<std::string, std::string> values_;
  std::map<std::string, std::string> words_;
  std::vector<Block> blocks_;
};

}  // namespace karno::test
