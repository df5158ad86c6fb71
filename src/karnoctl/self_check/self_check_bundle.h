#pragma once
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "karnoctl/error_text.h"
#include "karnoctl/programs/program_image.h"
#include "platform/platform.h"
#include "platform/runtime_check.h"

namespace karno::karnoctl {

// What a self-check has found. Each is one plain sentence.
struct SelfCheckFindings {
  std::vector<std::string> wrong;
  std::vector<std::string> notes;  // worth knowing, but nothing is wrong

  // What was looked at.
  std::size_t programs = 0;
  std::size_t propertyLists = 0;
  std::size_t tables = 0;
  std::size_t messages = 0;
};

// The launcher's bundle in a folder, whose files are named as in it: "Contents/Info.plist". What stands in
// the way of reading one is written down among the findings, with what that costs: the end of a sentence,
// without its point. What it refers to must outlive it.
struct CheckedBundle {
  const platform::Platform& platform;
  const platform::RuntimeCheck& runtime;
  const ProgramImage& ownProgram;  // does the checking: the bundle is to run where that does
  std::string path;
  SelfCheckFindings& findings;

  bool isForMacOS() const { return ownProgram.system == ProgramSystem::MacOS; }
  std::string pathOf(const std::string& file) const { return path + "/" + file; }

  // Control characters that a file brings along are written as "^[".
  void wrong(std::string_view sentence) const;
  void note(std::string_view sentence) const;

  // Null, and written down, when it is not there or cannot be opened.
  std::unique_ptr<platform::ReadableFile> open(const std::string& file, std::string_view cost) const;

  // Whether it is there and can be opened. If not, that is written down.
  bool hasFile(const std::string& file, std::string_view cost) const;
  bool hasFolder(const std::string& folder, std::string_view cost) const;

  // The whole content; absent, and written down, when there is none or it is larger than what belongs there.
  std::optional<std::string> content(const std::string& file, std::string_view cost) const;

  // The same for a property list that is a dictionary.
  std::optional<platform::Value::Dictionary> dictionary(const std::string& file, std::string_view cost) const;

  platform::Result<ProgramImage> program(const std::string& file) const;
};

}  // namespace karno::karnoctl
