#pragma once
#include <gmock/gmock.h>

#include "fake_platform.h"
#include "ipc/karno_wrappper_notifier_listener.h"

namespace karno::test {

// A machine whose launcher listens and has both builds at hand.
class Listener : public ::testing::Test {
 protected:
  Listener() {
    machine.withEmbeddedBuilds().withStrings(kStrings);
    KarnoWrappperNotifierListener::manager().start();
  }

  static constexpr const char* kStrings =
      R"({"WHOOPS": "Whoops!", "ERROR_FATAL": "Karno has crashed.", "YES": "Ja", "NO": "Nein"})";

  FakePlatform machine;
};

}  // namespace karno::test
