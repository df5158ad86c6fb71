#include "platform/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "../support/forked_process.h"
#include "../support/scoped_environment.h"
#include "platform/posix/scoped_descriptor.h"

namespace karno::platform {
namespace {

using test::ForkedProcess;
using test::ScopedEnvironment;

// Asks in a process whose standard output is that file.
bool askedWithOutputTo(const std::string& path, const std::function<bool()>& question) {
  ForkedProcess process([&] {
    const ScopedDescriptor output(::open(path.c_str(), O_RDWR | O_NOCTTY));
    if (::dup2(output.get(), STDOUT_FILENO) != STDOUT_FILENO) return 2;
    return question() ? 1 : 0;
  });
  const int answer = process.exitStatus();
  EXPECT_NE(answer, 2) << "cannot write to " << path;
  return answer == 1;
}

class Terminal : public testing::Test {
 protected:
  Terminal() {
    EXPECT_EQ(::grantpt(device.get()), 0);
    EXPECT_EQ(::unlockpt(device.get()), 0);
  }

  bool wantsColours() const { return askedWithOutputTo(::ptsname(device.get()), standardOutputWantsColours); }

  const ScopedDescriptor device{::posix_openpt(O_RDWR | O_NOCTTY)};
  const ScopedEnvironment term{"TERM", "xterm"};
  const ScopedEnvironment noColor{"NO_COLOR", std::nullopt};
};

TEST_F(Terminal, IsKnownAsOne) {
  EXPECT_TRUE(askedWithOutputTo(::ptsname(device.get()), standardOutputIsTerminal));
  EXPECT_FALSE(askedWithOutputTo("/dev/null", standardOutputIsTerminal));
}

TEST_F(Terminal, WantsColours) {
  EXPECT_TRUE(wantsColours());
  EXPECT_FALSE(askedWithOutputTo("/dev/null", standardOutputWantsColours));
}

TEST(StandardOutput, IsKnownToBeClosed) {
  ForkedProcess process([] {
    ::close(STDOUT_FILENO);
    return standardOutputIsOpen() ? 1 : 0;
  });

  EXPECT_EQ(process.exitStatus(), 0);
  EXPECT_TRUE(askedWithOutputTo("/dev/null", standardOutputIsOpen));
}

struct Locale {
  std::optional<std::string> all;
  std::optional<std::string> characters;
  std::optional<std::string> language;
  bool isUTF8;
};

class LocaleOfTheUser : public testing::TestWithParam<Locale> {};

TEST_P(LocaleOfTheUser, IsTheFirstThatIsSet) {
  const ScopedEnvironment all("LC_ALL", GetParam().all);
  const ScopedEnvironment characters("LC_CTYPE", GetParam().characters);
  const ScopedEnvironment language("LANG", GetParam().language);

  EXPECT_EQ(localeIsUTF8(), GetParam().isUTF8);
}

INSTANTIATE_TEST_SUITE_P(Each, LocaleOfTheUser,
                         testing::Values(Locale{{}, {}, {}, false}, Locale{{}, {}, "C", false},
                                         Locale{{}, {}, "de_DE.UTF-8", true}, Locale{{}, {}, "C.utf8", true},
                                         Locale{{}, {}, "de_DE.UTF-8@euro", true},
                                         Locale{{}, {}, "de_DE.ISO8859-1", false},
                                         Locale{{}, "UTF-8", "C", true}, Locale{"", "", "C.UTF-8", true},
                                         Locale{"C", "UTF-8", "C.UTF-8", false}));

TEST(ToolWithoutAReader, EndsAsOthersDo) {
  ForkedProcess process([] {
    ::signal(SIGPIPE, SIG_IGN);
    endWithTheReaderOfTheOutput();
    ::raise(SIGPIPE);
    return 1;
  });

  EXPECT_EQ(process.exitStatus(), 128 + SIGPIPE);
}

TEST_F(Terminal, WantsNoColoursWhenTheEnvironmentSaysSo) {
  {
    const ScopedEnvironment dumb("TERM", "dumb");
    EXPECT_FALSE(wantsColours());
  }
  {
    const ScopedEnvironment set("NO_COLOR", "1");
    EXPECT_FALSE(wantsColours());
  }
  const ScopedEnvironment empty("NO_COLOR", "");
  EXPECT_TRUE(wantsColours());
}

}  // namespace
}  // namespace karno::platform
