#include "platform/linux/machine/machine_root.h"

#include <gtest/gtest.h>

#include "../../support/scoped_environment.h"
#include "platform/system_path.h"

namespace karno::platform {
namespace {

using test::ScopedEnvironment;

TEST(MachineRoot, IsWhatTheEnvironmentNames) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "/srv/machine/");

  EXPECT_EQ(machineRoot(), "/srv/machine");
  EXPECT_EQ(systemPath("/usr/bin/open"), "/srv/machine/usr/bin/open");
}

TEST(MachineRoot, LiesInTheUsersDataFolderOtherwise) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", std::nullopt);
  const ScopedEnvironment data("XDG_DATA_HOME", "/data/ann");

  EXPECT_EQ(systemPath("/Library"), "/data/ann/karno/machine/Library");
}

TEST(MachineRoot, LiesInTheHomeFolderWithoutADataFolder) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "");
  const ScopedEnvironment data("XDG_DATA_HOME", "relative/paths/do/not/count");
  const ScopedEnvironment home("HOME", "/home/ann");

  EXPECT_EQ(systemPath("/Library"), "/home/ann/.local/share/karno/machine/Library");
}

TEST(MachineRoot, CanBeTheRealRoot) {
  const ScopedEnvironment root("KARNO_MACHINE_ROOT", "/");

  EXPECT_EQ(systemPath("/usr/bin/open"), "/usr/bin/open");
}

}  // namespace
}  // namespace karno::platform
