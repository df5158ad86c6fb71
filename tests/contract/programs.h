#pragma once
#include "world.h"

namespace karno::test {

// A world with programs that a contract can start.
class Programs {
 public:
  virtual ~Programs() = default;

  virtual World& world() = 0;

  // The path of a program of that name that runs for a minute when its argument is 60. The second is the
  // executable of a bundle with that identifier.
  virtual std::string sleeper(const std::string& name) = 0;
  virtual std::string sleeperInBundle(const std::string& identifier) = 0;

  // The path of a program that ends at once, in that way.
  virtual std::string ending(const platform::TaskEnd& end) = 0;

  // A command and a shell line that print the text. They exit with that status.
  virtual platform::TaskLaunch commandPrinting(const std::string& text, int status) = 0;
  virtual std::string linePrinting(const std::string& text, int status) = 0;
};

std::unique_ptr<Programs> makeFakePrograms();
std::unique_ptr<Programs> makeNativePrograms();

class ProgramsContract : public testing::TestWithParam<std::unique_ptr<Programs> (*)()> {
 protected:
  const std::unique_ptr<Programs> programs_ = GetParam()();
  World& here_ = programs_->world();
  platform::Platform& services_ = here_.services();
};

}  // namespace karno::test
