// Runs a fuzz target once over every file of the given folders, without a fuzzing engine, so that a
// crash found once cannot come back.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  int files = 0;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) continue;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      std::ifstream in(entry.path(), std::ios::binary);
      const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++files;
    }
  }
  std::printf("%d files replayed\n", files);
  return files > 0 ? 0 : 1;
}
