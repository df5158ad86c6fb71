#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "karno-appcast/command_line.h"
#include "karno-appcast/verb.h"

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const int status = karno::appcast::run(arguments, KARNO_VERSION, std::cout, std::cerr);
    if (std::cout.flush()) return status;
    std::cerr << "karno-appcast: cannot write the output\n";
    return karno::appcast::kExitFailed;
  } catch (const std::exception& error) {
    std::cerr << "karno-appcast: " << error.what() << '\n';
    return karno::appcast::kExitFailed;
  }
}
