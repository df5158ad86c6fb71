#include "platform/macos/processes/authorisations.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <vector>

#include "elements_are.h"

// What the Security framework declares.
extern "C" {
struct AuthorizationOpaqueRef {
  char unused = 0;  // an empty structure has another size in C
};
struct AuthorizationItem {
  const char* name;
  std::size_t valueLength;
  void* value;
  std::uint32_t flags;
};
struct AuthorizationItemSet {
  std::uint32_t count;
  AuthorizationItem* items;
};
std::int32_t AuthorizationCreate(const AuthorizationItemSet* rights, const AuthorizationItemSet* environment,
                                 std::uint32_t flags, AuthorizationOpaqueRef** authorization);
std::int32_t AuthorizationCopyRights(AuthorizationOpaqueRef* authorization,
                                     const AuthorizationItemSet* rights,
                                     const AuthorizationItemSet* environment, std::uint32_t flags,
                                     AuthorizationItemSet** granted);
std::int32_t AuthorizationFree(AuthorizationOpaqueRef* authorization, std::uint32_t flags);

// dlsym() to the source under test.
void* karno_stand_in_dlsym(void* library, const char* name) noexcept;
}

namespace karno::platform::trial {
namespace {

using karno::test::ElementsAre;
using ::testing::IsEmpty;

// Stands in for the framework: writes down what it is asked and gives the answers that were set.
struct Security {
  Security() { current = this; }
  ~Security() { current = nullptr; }
  Security(const Security&) = delete;
  Security& operator=(const Security&) = delete;

  static inline Security* current = nullptr;

  std::vector<std::string> lines;
  std::int32_t answer = 0;
  bool givesReferences = true;
  bool canExecute = true;
  std::function<void()> inChild = [] {};  // what the command is
  bool startsChild = true;
  AuthorizationOpaqueRef reference;

  std::string shown(const AuthorizationOpaqueRef* given) const {
    return given == &reference ? "the reference" : "another reference";
  }
};

Security& security() { return *Security::current; }

std::string rightsIn(const AuthorizationItemSet* set) {
  if (set == nullptr) return "none";
  std::string text = fmt::format("{}:", set->count);
  for (std::uint32_t index = 0; index < set->count; ++index) {
    const AuthorizationItem& item = set->items[index];
    text +=
        fmt::format(" {} ({} bytes at {}, flags {})", item.name, item.valueLength, item.value, item.flags);
  }
  return text;
}

std::int32_t execute(AuthorizationOpaqueRef* reference, const char* path, std::uint32_t options,
                     char* const* arguments, std::FILE** pipe) {
  std::string line = fmt::format("execute with {}: {}", security().shown(reference), path);
  for (; *arguments != nullptr; ++arguments) line += fmt::format(" [{}]", *arguments);
  line += fmt::format(", options {}, {}", options, pipe == nullptr ? "no pipe" : "a pipe");
  security().lines.push_back(line);
  if (security().answer == 0 && security().startsChild && ::fork() == 0) {
    security().inChild();
    ::_exit(0);
  }
  return security().answer;
}

class MacAuthorisations : public testing::Test {
 protected:
  Security security_;
  SecurityAuthorisations authorisations_;
  const TaskLaunch copy_ = {.executablePath = "/bin/cp", .arguments = {"-pR", "/a b/Karno.app", "/c"}};
};

TEST_F(MacAuthorisations, AreReferencesWithoutRightsAndAreGivenBack) {
  authorisations_.create().reset();

  EXPECT_THAT(security_.lines,
              ElementsAre("create: rights none, environment none, flags 0", "free the reference: flags 0"));
}

TEST_F(MacAuthorisations, AreNoneWhereTheSystemRefuses) {
  security_.answer = -60008;

  EXPECT_EQ(authorisations_.create(), nullptr);
  EXPECT_THAT(security_.lines, ElementsAre("create: rights none, environment none, flags 0"));
}

TEST_F(MacAuthorisations, AreNoneWhereTheSystemGivesNothing) {
  security_.givesReferences = false;

  EXPECT_EQ(authorisations_.create(), nullptr);
}

TEST_F(MacAuthorisations, AskForOneRightByItsName) {
  const auto authorisation = authorisations_.create();

  authorisation->copyRight("system.privilege.admin", 19);

  EXPECT_EQ(
      security_.lines.back(),
      "copy with the reference: rights 1: system.privilege.admin (0 bytes at 0x0, flags 0), environment "
      "none, flags 19, granted not wanted");
}

TEST_F(MacAuthorisations, TellARefusalFromACancellation) {
  const auto authorisation = authorisations_.create();
  EXPECT_EQ(authorisation->copyRight("right", 0), RightAnswer::Granted);

  security_.answer = -60006;  // the user cancelled
  EXPECT_EQ(authorisation->copyRight("right", 0), RightAnswer::Cancelled);
  security_.answer = -60005;  // denied
  EXPECT_EQ(authorisation->copyRight("right", 0), RightAnswer::Refused);
  security_.answer = -60007;  // there is nobody to ask
  EXPECT_EQ(authorisation->copyRight("right", 0), RightAnswer::Refused);
}

TEST_F(MacAuthorisations, LookTheDeprecatedFunctionUpOnceAndOnlyWhenItIsWanted) {
  const auto authorisation = authorisations_.create();
  security_.lines.clear();
  EXPECT_THAT(security_.lines, IsEmpty());

  EXPECT_TRUE(authorisation->canExecuteWithPrivileges());
  EXPECT_TRUE(authorisation->canExecuteWithPrivileges());
  authorisations_.create()->canExecuteWithPrivileges();

  EXPECT_THAT(security_.lines,
              ElementsAre("look AuthorizationExecuteWithPrivileges up in what is loaded",
                          "create: rights none, environment none, flags 0", "free the reference: flags 0"));
}

TEST_F(MacAuthorisations, DoWithoutTheDeprecatedFunctionOnceItIsGone) {
  security_.canExecute = false;

  EXPECT_FALSE(authorisations_.create()->canExecuteWithPrivileges());
}

TEST_F(MacAuthorisations, RunACommandAndWaitForIt) {
  const auto authorisation = authorisations_.create();
  ASSERT_TRUE(authorisation->canExecuteWithPrivileges());

  const auto end = authorisation->executeWithPrivileges(copy_);

  ASSERT_TRUE(end);
  EXPECT_EQ(end.value().terminationStatus, 0);
  EXPECT_EQ(end.value().terminationReason, TerminationReason::Exit);
  EXPECT_EQ(security_.lines.back(),
            "execute with the reference: /bin/cp [-pR] [/a b/Karno.app] [/c], options 0, no pipe");
}

TEST_F(MacAuthorisations, TellHowACommandEnded) {
  const auto authorisation = authorisations_.create();
  ASSERT_TRUE(authorisation->canExecuteWithPrivileges());
  security_.inChild = [] { ::_exit(3); };
  const auto failed = authorisation->executeWithPrivileges(copy_);
  security_.inChild = [] { ::kill(::getpid(), SIGKILL); };
  const auto killed = authorisation->executeWithPrivileges(copy_);

  ASSERT_TRUE(failed);
  EXPECT_EQ(failed.value().terminationStatus, 3);
  EXPECT_EQ(failed.value().terminationReason, TerminationReason::Exit);
  ASSERT_TRUE(killed);
  EXPECT_EQ(killed.value().terminationStatus, SIGKILL);
  EXPECT_EQ(killed.value().terminationReason, TerminationReason::UncaughtSignal);
}

TEST_F(MacAuthorisations, TellWhyACommandWasNotStarted) {
  const auto authorisation = authorisations_.create();
  ASSERT_TRUE(authorisation->canExecuteWithPrivileges());
  security_.answer = -60031;  // the tool could not be run

  const auto end = authorisation->executeWithPrivileges(copy_);

  ASSERT_FALSE(end);
  EXPECT_EQ(end.error(), Error("NSOSStatusErrorDomain", -60031));
}

TEST_F(MacAuthorisations, TellOfACommandThatCannotBeWaitedFor) {
  const auto authorisation = authorisations_.create();
  ASSERT_TRUE(authorisation->canExecuteWithPrivileges());
  security_.startsChild = false;

  const auto end = authorisation->executeWithPrivileges(copy_);

  ASSERT_FALSE(end);
  EXPECT_EQ(end.error(), Error::posix(ECHILD));
}

}  // namespace
}  // namespace karno::platform::trial

using karno::platform::trial::rightsIn;
using karno::platform::trial::security;

std::int32_t AuthorizationCreate(const AuthorizationItemSet* rights, const AuthorizationItemSet* environment,
                                 std::uint32_t flags, AuthorizationOpaqueRef** authorization) {
  security().lines.push_back(fmt::format("create: rights {}, environment {}, flags {}", rightsIn(rights),
                                         rightsIn(environment), flags));
  if (security().answer == 0 && security().givesReferences) *authorization = &security().reference;
  return security().answer;
}

std::int32_t AuthorizationCopyRights(AuthorizationOpaqueRef* authorization,
                                     const AuthorizationItemSet* rights,
                                     const AuthorizationItemSet* environment, std::uint32_t flags,
                                     AuthorizationItemSet** granted) {
  security().lines.push_back(fmt::format(
      "copy with {}: rights {}, environment {}, flags {}, granted {}", security().shown(authorization),
      rightsIn(rights), rightsIn(environment), flags, granted == nullptr ? "not wanted" : "wanted"));
  return security().answer;
}

std::int32_t AuthorizationFree(AuthorizationOpaqueRef* authorization, std::uint32_t flags) {
  security().lines.push_back(fmt::format("free {}: flags {}", security().shown(authorization), flags));
  return 0;
}

void* karno_stand_in_dlsym(void* library, const char* name) noexcept {
  security().lines.push_back(
      fmt::format("look {} up in {}", name, library == RTLD_DEFAULT ? "what is loaded" : "one library"));
  return security().canExecute ? reinterpret_cast<void*>(&karno::platform::trial::execute) : nullptr;
}
