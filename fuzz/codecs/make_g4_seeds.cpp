// Makes the seeds of the G4 fuzz target: make_g4_seeds FOLDER.

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <rasterkit/codecs/g4/g4_encoder.h>

#include "tests/codecs/g4/g4_rows.h"

namespace {

using namespace rasterkit;

void WriteSeed(const std::string& folder, const std::string& name, int kind, int width,
               const std::vector<uint8_t>& bytes) {
  std::ofstream file(folder + "/" + name, std::ios::binary);
  const unsigned stored = static_cast<unsigned>(width - 1);
  file.put(static_cast<char>(kind)).put(static_cast<char>(stored >> 8));
  file.put(static_cast<char>(stored & 255));
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: make_g4_seeds FOLDER\n");
    return 2;
  }
  const std::string folder = arguments[1];
  std::mt19937 random(7);
  for (const int width : {1, 9, 33, 200, 2700, 5900}) {
    for (const int run : {3, 40, 900}) {
      const tests::PackedRows rows = tests::RandomRows(random, width, 6, run, 4);
      const std::string name = std::to_string(width) + "_" + std::to_string(run);
      for (const bool isLowBitFirst : {false, true}) {
        detail::G4Encoder encoder(width, {isLowBitFirst, false});
        encoder.Encode(rows.bytes.data(), rows.RowBytes(), rows.height);
        WriteSeed(folder, (isLowBitFirst ? "low_" : "strip_") + name, isLowBitFirst ? 1 : 0, width,
                  encoder.EndStrip());
      }
      if (rows.bytes.size() < 600) WriteSeed(folder, "rows_" + name, 2, width, rows.bytes);
    }
  }
}
