#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "installer/command_line.h"

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return karno::installer::run(arguments, KARNO_VERSION);
  } catch (const std::exception& error) {
    std::cerr << "karno-installer: " << error.what() << '\n';
    return karno::installer::kExitFailed;
  }
}
