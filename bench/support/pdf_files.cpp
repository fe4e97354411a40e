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
  constexpr int kWidth = 2384, kHeight = 3370, kLines = 100000, kSteps = 5;
  Places places;
  std::string content;
  for (int i = 0; i < kLines; ++i) {
    double x = places.Below(kWidth), y = places.Below(kHeight);
    content += fmt::format("{:.2f} {:.2f} {:.2f} RG {} w {:.2f} {:.2f} m\n", i % 7 / 7.0,
                           i % 5 / 5.0, i % 3 / 3.0, i % 4 * 0.25 + 0.1, x, y);
    for (int step = 0; step < kSteps; ++step) {
      x += places.Step(), y += places.Step();
      content += fmt::format("{:.2f} {:.2f} l\n", x, y);
    }
    content += "S\n";
  }
  return test::PdfText({{"0 0 2383.94 3370.39", content}});
}

std::string TextPages() {
  constexpr int kRows = 90;
  std::string content = "BT /F1 8 Tf 9 TL 30 810 Td\n";
  for (int row = 0; row < kRows; ++row) {
    content += fmt::format(
        "(Row {} of the page: the quick brown fox jumps over the lazy dog, and "
        "the five boxing wizards jump as quickly as it does.) Tj T*\n",
        row);
  }
  return test::PdfText({{"0 0 595.276 841.89", content + "ET"}});
}

std::string ScannedPage() {
  constexpr int kWidth = 2480, kHeight = 3508;
  std::mt19937 random(3);
  std::string content =
      fmt::format("q 595.2 0 0 841.92 0 0 cm\nBI /W {} /H {} /CS /G /BPC 8 ID ", kWidth, kHeight);
  for (int i = 0; i < kWidth * kHeight; ++i)
    content += static_cast<char>(200 + random() % 56 - (i / 40 % 5 == 0 ? 150 : 0));
  return test::PdfText({{"0 0 595.2 841.92", content + "\nEI Q"}});
}

}  // namespace rasterkit::bench
