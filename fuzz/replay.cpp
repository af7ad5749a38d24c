// Plays inputs once, without a fuzzer: replay FILE|FOLDER... A sanitizer ends the program when it
// finds a fault.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "input.h"

namespace {

namespace fs = std::filesystem;

void Play(const fs::path& path) {
  std::fprintf(stderr, "%s\n", path.c_str());
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    if (fs::is_regular_file(argv[i])) {
      Play(argv[i]);
      ++count;
      continue;
    }
    if (!fs::is_directory(argv[i])) continue;
    for (const fs::directory_entry& entry : fs::directory_iterator(argv[i])) {
      Play(entry.path());
      ++count;
    }
  }
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 1;
}
