#pragma once
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "complete_bundle.h"
#include "fake_platform.h"
#include "terminal.h"

namespace karno::test {

// A machine with a complete bundle, and a terminal on it.
class SelfCheckedMachine : public testing::Test {
 protected:
  // What is always said of a client with the identifier that it should have.
  static constexpr std::string_view kClientNote =
      "Note: Contents/Helpers/Karno.app/Contents/Info.plist has the CFBundleIdentifier it.vantul.Karno, "
      "the "
      "settings' domain it.vantul.karno but for case: on a disk that folds case its own preferences and the "
      "settings are one file.\n";

  std::string saidInFull() {
    status_ = terminal_.run({"self-check"});
    return terminal_.newOut();
  }

  // What self-check says about the bundle as it is now, but for that note.
  std::string said() { return withoutClientNote(saidInFull()); }

  static std::string withoutClientNote(std::string text) {
    if (const std::size_t note = text.find(kClientNote); note != std::string::npos) {
      text.erase(note, kClientNote.size());
    }
    return text;
  }

  std::string saidAboutInformation(const std::string& key, platform::Value value) {
    bundle_.information.insert_or_assign(key, std::move(value));
    bundle_.writeInformation();
    return said();
  }

  FakePlatform machine_;
  CompleteBundle bundle_{machine_};
  Terminal terminal_;
  int status_ = -1;
};

}  // namespace karno::test
