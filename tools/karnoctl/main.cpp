#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "karnoctl/command_line.h"

int main(int argc, char** argv) {
  using karno::karnoctl::Context;
  try {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    Context context{std::cout, std::cerr, [argc, argv]() -> karno::platform::Platform& {
                      return karno::platform::nativePlatform(argc, argv);
                    }};
    return karno::karnoctl::run(arguments, KARNO_VERSION, context);
  } catch (const std::exception& error) {
    std::cerr << "karnoctl: " << error.what() << '\n';
    return karno::karnoctl::kExitFailed;
  }
}
