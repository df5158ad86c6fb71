#pragma once
#include <gtest/gtest.h>

#include <string>

#include "complete_bundle.h"
#include "fake_platform.h"
#include "terminal.h"

namespace karno::test {

// A machine with a complete bundle, and a terminal on it.
class SelfCheckedMachine : public testing::Test {
 protected:
  // What self-check says about the bundle as it is now.
  std::string said() {
    status_ = terminal_.run({"self-check"});
    return terminal_.newOut();
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
