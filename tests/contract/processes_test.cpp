#include "platform/processes.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <future>
#include <map>
#include <mutex>
#include <vector>

#include "elements_are.h"
#include "printing.h"
#include "programs.h"

namespace karno::test {
namespace {

using karno::test::ElementsAre;
using platform::Error;
using platform::Processes;
using platform::RunningProcess;
using platform::TaskEnd;
using platform::TerminationReason;
using platform::WaitResult;
using testing::AllOf;
using testing::Contains;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kIdentifier = "it.vantul.test.Sleeper";
constexpr std::int32_t kNoProcess = 2'000'000'000;

// What threads of the platform's tell, by process identifier.
template <class Value>
class Told {
 public:
  void add(std::int32_t processIdentifier, Value value) {
    const std::lock_guard lock(mutex_);
    values_[processIdentifier].push_back(std::move(value));
  }
  std::vector<Value> of(std::int32_t processIdentifier) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(processIdentifier);
    return found == values_.end() ? std::vector<Value>() : found->second;
  }

 private:
  mutable std::mutex mutex_;
  std::map<std::int32_t, std::vector<Value>> values_;
};

// Tasks, processes, the list of processes and the workspace tell of the same processes.
class ProcessesContract : public ProgramsContract {
 protected:
  ~ProcessesContract() override {
    for (const std::int32_t child : children_) {
      processes_.terminate(child);
      waitForEnd(child);
    }
  }

  // The handler may be called before its child's identifier is known here.
  std::int32_t launch(
      const std::string& path, std::function<void()> whenEnded = [] {}) {
    std::promise<std::int32_t> identifier;
    const auto child =
        services_.tasks.launch({.executablePath = path, .arguments = {"60"}},
                               [=, this, identifier = identifier.get_future().share()](const TaskEnd& end) {
                                 whenEnded();
                                 ends_.add(identifier.get(), end);
                               });
    EXPECT_TRUE(child) << child.error().description();
    identifier.set_value(child.value());
    children_.push_back(child.value());
    return child.value();
  }

  bool waitForEnd(std::int32_t child) {
    return here_.waitUntil([=, this] { return !ends_.of(child).empty(); });
  }

  void waitOnAnotherThread(std::int32_t child) {
    services_.dispatch.globalQueue(platform::QueuePriority::Default).async([=, this] {
      waits_.add(child, processes_.waitForChild(child));
    });
  }

  std::vector<std::int32_t> listed() const {
    std::vector<std::int32_t> identifiers;
    for (const RunningProcess& process : services_.processList.runningProcesses())
      identifiers.push_back(process.processIdentifier);
    return identifiers;
  }

  std::vector<std::int32_t> applications(const std::string& identifier = kIdentifier) const {
    std::vector<std::int32_t> identifiers;
    for (const auto& application : services_.workspace.runningApplications(identifier))
      identifiers.push_back(application.processIdentifier);
    return identifiers;
  }

  // A child of this process that runs that program.
  testing::Matcher<const RunningProcess&> isChild(std::int32_t identifier, const std::string& path) const {
    return AllOf(Field(&RunningProcess::processIdentifier, identifier),
                 Field(&RunningProcess::executablePath, path),
                 Field(&RunningProcess::parentProcessIdentifier, processes_.currentProcessIdentifier()));
  }

  Processes& processes_ = services_.processes;
  Told<TaskEnd> ends_;
  Told<WaitResult> waits_;

 private:
  std::vector<std::int32_t> children_;
};

auto isEnd(int status, TerminationReason reason) {
  return AllOf(Field(&TaskEnd::terminationStatus, status), Field(&TaskEnd::terminationReason, reason));
}

auto isWait(std::int32_t result, int error) {
  return AllOf(Field(&WaitResult::result, result), Field(&WaitResult::error, error));
}

TEST_P(ProcessesContract, TellOnceHowAChildEnded) {
  for (const TaskEnd& end :
       {TaskEnd{.terminationStatus = 0}, TaskEnd{.terminationStatus = 7},
        TaskEnd{.terminationStatus = SIGKILL, .terminationReason = TerminationReason::UncaughtSignal}}) {
    const std::int32_t child = launch(programs_->ending(end));

    EXPECT_TRUE(waitForEnd(child));
    here_.waitUntil([] { return false; }, 0.05);
    EXPECT_THAT(ends_.of(child), ElementsAre(isEnd(end.terminationStatus, end.terminationReason)));
  }
}

TEST_P(ProcessesContract, TellTheEndOnNeitherTheMainThreadNorBeforeItsTime) {
  bool isMainThread = true;
  const std::int32_t child =
      launch(programs_->sleeper("Sleeper"), [&] { isMainThread = services_.dispatch.isMainThread(); });

  here_.waitUntil([] { return false; }, 0.05);
  const auto toldTooEarly = ends_.of(child);
  processes_.terminate(child);

  EXPECT_TRUE(waitForEnd(child));
  EXPECT_THAT(toldTooEarly, IsEmpty());
  EXPECT_FALSE(isMainThread);
}

TEST_P(ProcessesContract, AreNotMadeOfWhatIsNoProgram) {
  here_.write("folder/file", "");
  bool isTold = false;

  for (const auto& [path, error] :
       {std::pair(here_ / "none", ENOENT), std::pair(here_ / "none/program", ENOENT),
        std::pair(std::string(), ENOENT), std::pair(here_ / "folder", EACCES)}) {
    const auto child = services_.tasks.launch({.executablePath = path, .arguments = {}},
                                              [&](const TaskEnd&) { isTold = true; });

    ASSERT_FALSE(child) << path;
    EXPECT_EQ(child.error(), Error::posix(error)) << path;
  }
  here_.waitUntil([] { return false; }, 0.05);
  EXPECT_FALSE(isTold);
}

TEST_P(ProcessesContract, AreListedWithWhatTheyRunAndWhoStartedThem) {
  const std::string path = programs_->sleeper("Sleeper");

  const std::int32_t first = launch(path);
  const std::int32_t second = launch(path);

  EXPECT_GT(first, 0);
  EXPECT_NE(first, second);
  EXPECT_THAT(services_.processList.runningProcesses(),
              AllOf(Contains(isChild(first, path)), Contains(isChild(second, path))));
  EXPECT_TRUE(std::ranges::is_sorted(listed()));
}

TEST_P(ProcessesContract, AreListedWithTheDateOfTheirStart) {
  const std::int32_t child = launch(programs_->sleeper("Sleeper"));

  const std::vector<RunningProcess> processes = services_.processList.runningProcesses();
  const auto found = std::ranges::find(processes, child, &RunningProcess::processIdentifier);

  ASSERT_NE(found, processes.end());
  ASSERT_TRUE(found->startDate);
  EXPECT_NEAR(platform::secondsBetween(*found->startDate, services_.clock.now()), 0, 5);
}

TEST_P(ProcessesContract, AreNamedAfterTheirPrograms) {
  const std::int32_t child = launch(programs_->sleeper("Sleeper"));

  EXPECT_EQ(processes_.name(child), "Sleeper");
  EXPECT_NE(processes_.name(processes_.currentProcessIdentifier()), "");
  for (const std::int32_t nobody : {0, -1, kNoProcess}) EXPECT_EQ(processes_.name(nobody), "");
}

TEST_P(ProcessesContract, EndByTheTerminationSignalAndAreGone) {
  const std::int32_t child = launch(programs_->sleeper("Sleeper"));

  const int error = processes_.terminate(child);

  EXPECT_EQ(error, 0);
  EXPECT_TRUE(waitForEnd(child));
  EXPECT_THAT(ends_.of(child), ElementsAre(isEnd(SIGTERM, TerminationReason::UncaughtSignal)));
  EXPECT_THAT(listed(), Not(Contains(child)));
  EXPECT_EQ(processes_.name(child), "");
  EXPECT_EQ(processes_.terminate(child), ESRCH);
}

TEST_P(ProcessesContract, AreSignalledOnlyOneByOne) {
  for (const std::int32_t nobody : {0, -1, kNoProcess}) EXPECT_EQ(processes_.terminate(nobody), ESRCH);
}

TEST_P(ProcessesContract, AreWaitedForAndTheEndIsToldAllTheSame) {
  const std::int32_t child = launch(programs_->sleeper("Sleeper"));
  waitOnAnotherThread(child);
  here_.waitUntil([] { return false; }, 0.05);
  const auto answeredTooEarly = waits_.of(child);

  processes_.terminate(child);

  EXPECT_TRUE(waitForEnd(child));
  EXPECT_TRUE(here_.waitUntil([&] { return !waits_.of(child).empty(); }));
  EXPECT_THAT(answeredTooEarly, IsEmpty());
  EXPECT_THAT(waits_.of(child), ElementsAre(isWait(child, 0)));
  EXPECT_THAT(processes_.waitForChild(child), isWait(-1, ECHILD));
}

TEST_P(ProcessesContract, AreGivenToOneOfTwoWaits) {
  const std::int32_t child = launch(programs_->sleeper("Sleeper"));
  waitOnAnotherThread(child);
  waitOnAnotherThread(child);
  here_.waitUntil([] { return false; }, 0.05);

  processes_.terminate(child);

  EXPECT_TRUE(here_.waitUntil([&] { return waits_.of(child).size() == 2; }));
  EXPECT_THAT(waits_.of(child), testing::UnorderedElementsAre(isWait(child, 0), isWait(-1, ECHILD)));
}

TEST_P(ProcessesContract, AreNotWaitedForWhenTheyAreNoChildren) {
  for (const std::int32_t other :
       {0, -1, kNoProcess, processes_.parentProcessIdentifier(), processes_.currentProcessIdentifier()})
    EXPECT_THAT(processes_.waitForChild(other), isWait(-1, ECHILD));
}

TEST_P(ProcessesContract, AreApplicationsWhenTheyRunFromABundle) {
  const std::string path = programs_->sleeperInBundle(kIdentifier);
  const std::int32_t plain = launch(programs_->sleeper("Sleeper"));

  const std::int32_t child = launch(path);

  EXPECT_THAT(applications(), ElementsAre(child));
  EXPECT_THAT(applications("it.vantul.test.sleeper"), IsEmpty());
  EXPECT_THAT(services_.workspace.bundlePathsOfRunningApplications(),
              Contains(path.substr(0, path.find("/Contents/MacOS/"))));
  EXPECT_THAT(listed(), testing::IsSupersetOf({plain, child}));
}

// So that who hears of the end can start the next one and never takes the old one for it.
TEST_P(ProcessesContract, AreApplicationsUntilTheirEndIsTold) {
  std::vector<std::int32_t> applicationsWhenTold;
  const std::int32_t child =
      launch(programs_->sleeperInBundle(kIdentifier), [&] { applicationsWhenTold = applications(); });

  processes_.terminate(child);

  EXPECT_TRUE(waitForEnd(child));
  EXPECT_THAT(applicationsWhenTold, ElementsAre(child));
  EXPECT_TRUE(here_.waitUntil([this] { return applications().empty(); }));
}

INSTANTIATE_TEST_SUITE_P(Fake, ProcessesContract, testing::Values(makeFakePrograms));
INSTANTIATE_TEST_SUITE_P(Native, ProcessesContract, testing::Values(makeNativePrograms));

}  // namespace
}  // namespace karno::test
