#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz_target.h"

// Shows the target every file of the folders that are named, in the order of their names. Fails when there
// are none.
int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  for (const std::string& folder : std::vector<std::string>(argv + 1, argv + argc)) {
    for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& path : files) {
    std::cout << path.filename().string() << std::endl;
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::cout << files.size() << " inputs\n";
  return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
