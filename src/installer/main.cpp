#include <string>
#include <vector>

#include "installer/command_line.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return karno::installer::run(arguments, KARNO_VERSION);
}
