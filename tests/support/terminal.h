#pragma once
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fake_platform.h"
#include "fake_runtime_check.h"
#include "karnoctl/command_line.h"

namespace karno::test {

// A person who types karnoctl's command lines on a machine of the test's.
class Terminal {
 public:
  int run(const std::vector<std::string>& arguments) { return karnoctl::run(arguments, "1.2.3", context_); }

  // From now on the output goes to a screen.
  void becomeScreen(bool withColours) {
    context_.outputIsTerminal = true;
    context_.outputWantsColours = withColours;
  }

  // From now on it takes ASCII alone.
  void becomePlain() { context_.outputIsUTF8 = false; }

  // From now on nothing can be printed any more.
  void close() { out_.setstate(std::ios::badbit); }

  // From now on the files that are for this user alone lie there, or cannot be written for that reason.
  void keepPrivateFiles(FakeFiles& files, const std::optional<platform::Error>& hindrance = std::nullopt) {
    context_.writePrivateFile = [&files, hindrance](const std::string& path, std::string_view bytes) {
      if (!hindrance) files.addFile(path, std::string(bytes));
      return hindrance;
    };
  }

  // What karnoctl finds when it checks the system.
  FakeRuntimeCheck& runtime() { return runtime_; }

  std::string out() const { return out_.str(); }
  std::string err() const { return err_.str(); }

  // What has been printed since the last call.
  std::string newOut() {
    std::string text = out_.str();
    out_.str("");
    return text;
  }

 private:
  std::ostringstream out_;
  std::ostringstream err_;
  FakeRuntimeCheck runtime_;
  karnoctl::Context context_{.out = out_,
                             .err = err_,
                             .platform = [] { return std::ref(platform::host()); },
                             .runtimeCheck = [this]() -> platform::RuntimeCheck& { return runtime_; }};
};

}  // namespace karno::test
