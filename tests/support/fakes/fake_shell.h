#pragma once
#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fake_scheduler.h"
#include "platform/shell.h"

namespace karno::test {

// Shell lines whose output a test lays down. A line that nobody laid down prints nothing.
class FakeShell final : public platform::Shell {
 public:
  struct Opened {
    std::string line;
    std::string thread;
  };

  explicit FakeShell(FakeScheduler& scheduler) : scheduler_(scheduler) {}

  platform::Result<std::unique_ptr<platform::ShellPipe>> open(const std::string& line) override {
    opened.push_back({line, scheduler_.currentThreadName()});
    if (openFailures.contains(line)) return platform::Error::posix(openFailures.at(line));
    return std::unique_ptr<platform::ShellPipe>(std::make_unique<Pipe>(*this, line, outputs[line]));
  }

  std::vector<std::string> lines() const {
    std::vector<std::string> result;
    for (const Opened& one : opened) result.push_back(one.line);
    return result;
  }

  std::map<std::string, std::string> outputs;  // by shell line
  std::map<std::string, int> openFailures;     // errno by shell line
  std::map<std::string, bool> closeFailures;   // by shell line
  std::vector<Opened> opened;
  std::vector<std::string> closed;
  std::vector<std::string> closedUnread;  // those of them that still had something to print

 private:
  class Pipe final : public platform::ShellPipe {
   public:
    Pipe(FakeShell& shell, std::string line, std::string output)
        : shell_(shell), line_(std::move(line)), output_(std::move(output)) {}

    std::optional<std::string> readPiece() override {
      if (read_ == output_.size()) return std::nullopt;
      const std::size_t newline = output_.find('\n', read_);
      const std::size_t end = std::min({newline == std::string::npos ? output_.size() : newline + 1,
                                        read_ + kLongestPiece, output_.size()});
      std::string piece = output_.substr(read_, end - read_);
      read_ = end;
      piece.resize(std::min(piece.find('\0'), piece.size()));
      return piece;
    }

    bool close() override {
      shell_.closed.push_back(line_);
      if (read_ != output_.size()) shell_.closedUnread.push_back(line_);
      return !shell_.closeFailures[line_];
    }

   private:
    static constexpr std::size_t kLongestPiece = 4095;
    FakeShell& shell_;
    const std::string line_;
    const std::string output_;
    std::size_t read_ = 0;
  };

  FakeScheduler& scheduler_;
};

}  // namespace karno::test
