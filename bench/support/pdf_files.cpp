#include "bench/support/pdf_files.h"

#include <random>

#include <fmt/format.h>

#include "tests/support/pdf_file.h"

namespace rasterkit::bench {
namespace {

/// Places on an even grid of hundredths, the same on every machine.
class Places {
 public:
  double Below(int most) { return static_cast<double>(random_() % (most * 100u)) / 100; }
  double Step() { return static_cast<double>(random_() % 4000u) / 100 - 20; }

 private:
  std::mt19937 random_{20};
};

}  // namespace

std::string VectorPlan() {
  constexpr int width = 2384, height = 3370, lines = 100000, steps = 5;
  Places places;
  std::string content;
  for (int i = 0; i < lines; ++i) {
    double x = places.Below(width), y = places.Below(height);
    content += fmt::format("{:.2f} {:.2f} {:.2f} RG {} w {:.2f} {:.2f} m\n", i % 7 / 7.0,
                           i % 5 / 5.0, i % 3 / 3.0, i % 4 * 0.25 + 0.1, x, y);
    for (int step = 0; step < steps; ++step) {
      x += places.Step(), y += places.Step();
      content += fmt::format("{:.2f} {:.2f} l\n", x, y);
    }
    content += "S\n";
  }
  return test::PdfText({{"0 0 2383.94 3370.39", content}});
}

std::string TextPages() {
  constexpr int rows = 90;
  std::string content = "BT /F1 8 Tf 9 TL 30 810 Td\n";
  for (int row = 0; row < rows; ++row) {
    content += fmt::format(
        "(Row {} of the page: the quick brown fox jumps over the lazy dog, and "
        "the five boxing wizards jump as quickly as it does.) Tj T*\n",
        row);
  }
  return test::PdfText({{"0 0 595.276 841.89", content + "ET"}});
}

std::string ScannedPage() {
  constexpr int width = 2480, height = 3508;
  std::mt19937 random(3);
  std::string content =
      fmt::format("q 595.2 0 0 841.92 0 0 cm\nBI /W {} /H {} /CS /G /BPC 8 ID ", width, height);
  for (int i = 0; i < width * height; ++i)
    content += static_cast<char>(200 + random() % 56 - (i / 40 % 5 == 0 ? 150 : 0));
  return test::PdfText({{"0 0 595.2 841.92", content + "\nEI Q"}});
}

}  // namespace rasterkit::bench
