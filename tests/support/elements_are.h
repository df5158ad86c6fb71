#pragma once
#include <gmock/gmock.h>

#include <concepts>
#include <string>
#include <type_traits>
#include <vector>

namespace karno::test {

template <typename... Args>
concept Texts = (std::convertible_to<Args, std::string> && ...);

template <typename... Args>
concept AlikeValues = !Texts<Args...> && (std::equality_comparable<Args> && ...) &&
                      (std::same_as<Args, std::common_type_t<Args...>> && ...);

// GoogleMock's ElementsAre is a class of its own for every number and kind of its arguments, which is a
// quarter of what a test takes to compile. This one stands for it and is the same for all numbers of texts,
// or of values of one type, that a vector is held against.
template <typename... Args>
requires Texts<Args...> testing::Matcher < const std::vector<std::string>
& > ElementsAre(const Args&... texts) {
  return testing::ElementsAreArray(std::vector<std::string>{texts...});
}

template <typename... Args>
requires AlikeValues<Args...> testing::Matcher < const std::vector<std::common_type_t<Args...>>
& > ElementsAre(const Args&... values) {
  return testing::ElementsAreArray(std::vector<std::common_type_t<Args...>>{values...});
}

// Where one of them is a matcher, or their types differ.
template <typename... Args>
requires(!Texts<Args...> && !AlikeValues<Args...>) auto ElementsAre(const Args&... matchers) {
  return testing::ElementsAre(matchers...);
}

}  // namespace karno::test
