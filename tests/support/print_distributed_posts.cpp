#include <iostream>

#include "CoreFoundation/CoreFoundation.h"

namespace karno::test {
namespace {

// Tells at the end of the program what it has posted, and what it has not given back.
class Posts {
 public:
  Posts() { distributedPosts(); }  // made before this object, and so gone after it
  Posts(const Posts&) = delete;
  Posts& operator=(const Posts&) = delete;
  ~Posts() {
    for (const DistributedPost& post : distributedPosts()) {
      std::cout << post.name << ' ' << post.object << ' ' << post.options;
      for (const auto& [key, value] : post.userInfo) std::cout << ' ' << key << '=' << value;
      std::cout << '\n';
    }
    std::cout << liveDictionaries() << " dictionaries and " << liveStrings() << " strings are left\n";
  }
};

const Posts kPosts;

}  // namespace
}  // namespace karno::test
