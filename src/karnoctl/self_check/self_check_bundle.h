#pragma once
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
// without its point.
class CheckedBundle {
 public:
  // `ownProgram` is the program that does the checking: the bundle is to run where that does. All but the
  // path must outlive this.
  CheckedBundle(const platform::Platform& platform, const platform::RuntimeCheck& runtime,
                const ProgramImage& ownProgram, std::string path, SelfCheckFindings& findings);

  const platform::Platform& platform() const { return platform_; }
  const platform::RuntimeCheck& runtime() const { return runtime_; }
  const ProgramImage& ownProgram() const { return ownProgram_; }
  bool isForMacOS() const { return ownProgram_.system == ProgramSystem::MacOS; }
  const std::string& path() const { return path_; }
  std::string pathOf(const std::string& file) const { return path_ + "/" + file; }

  SelfCheckFindings& findings() const { return findings_; }
  // Control characters that a file brings along are written as "^[".
  void wrong(std::string_view sentence) const;
  void note(std::string_view sentence) const;

  // Whether it is there and can be opened. If not, that is written down.
  bool hasFile(const std::string& file, std::string_view cost) const;
  bool hasFolder(const std::string& folder, std::string_view cost) const;

  // The whole content; absent, and written down, when there is none or it is larger than what belongs there.
  std::optional<std::string> content(const std::string& file, std::string_view cost) const;

  // The same for a property list that is a dictionary.
  std::optional<platform::Value::Dictionary> dictionary(const std::string& file, std::string_view cost) const;

  platform::Result<ProgramImage> program(const std::string& file) const;

 private:
  const platform::Platform& platform_;
  const platform::RuntimeCheck& runtime_;
  const ProgramImage& ownProgram_;
  const std::string path_;
  SelfCheckFindings& findings_;
};

}  // namespace karno::karnoctl
