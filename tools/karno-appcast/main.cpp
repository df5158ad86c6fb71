#include <iostream>
#include <string>
#include <vector>

#include "karno-appcast/command_line.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return karno::appcast::run(arguments, KARNO_VERSION, std::cout, std::cerr);
}
