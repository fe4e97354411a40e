// Writes the seeds of the fuzzer of steps in bands.
// usage: make_bands_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

int main(int count, char** arguments) {
  if (count != 2) return 2;
  constexpr int kSeeds = 40, kBytes = 60;
  std::mt19937 random(1);
  for (int i = 0; i < kSeeds; ++i) {
    const std::string name = std::string(arguments[1]) + "/" + std::to_string(i + 1);
    std::ofstream out(name, std::ios::binary);
    for (int k = 0; k < kBytes; ++k) out.put(static_cast<char>(random() & 0xFF));
    if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
  }
  return 0;
}
