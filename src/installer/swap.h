#pragma once
#include <functional>
#include <string>

namespace karno::installer {

// Exchanges what two paths lead to in one step: at every instant each of them leads to one or the other. 0 or
// an errno.
using Exchange = std::function<int(const std::string& one, const std::string& other)>;

// Puts a new bundle where an old one is. Where the file system cannot exchange in one step the old one is
// first moved aside, to "<bundle>.old-<six letters>"; only a kill between these two moves leaves nothing in
// the place. Both lie on one volume and neither holds the other.
class Swap {
 public:
  Swap(std::string newBundle, std::string bundle, Exchange exchange);

  // 0 or an errno; then the old bundle is where it was.
  int swap();

  // After swap(). 0 or an errno.
  int swapBack();

  // Brings the moves to the disk. 0 or an errno.
  int makeDurable() const;

  // Where the old bundle is when it is not in its place; empty when it is.
  const std::string& oldBundle() const { return oldBundle_; }

 private:
  int moveAsideAndIn();

  const std::string newBundle_;
  const std::string bundle_;
  const Exchange exchange_;
  std::string oldBundle_;
};

}  // namespace karno::installer
