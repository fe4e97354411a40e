#include <cstring>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

/// Lines of letters and signs, small and large, in fonts from the same few files.
Raster PageOfText() {
  DrawingPaper paper(300, 200);
  DeviceContext& dc = paper.Dc();
  dc.SetBkMode(BackgroundMode::transparent);
  double y = 0;
  for (const char* name : {"DejaVu Sans", "Arial", "Symbol", "Times New Roman", "Wingdings"}) {
    for (const double height : {-9.0, -17.5, -260.0}) {
      LogicalFont font;
      font.height = height;
      font.faceName = name;
      font.charset = std::strcmp(name, "Symbol") == 0 ? 2 : 1;
      dc.SelectFont(std::make_shared<LogicalFont>(font));
      TextRun run;
      run.origin = {2, y += 12};
      run.text = u"Quick zephyrs \u00E4\u00DF\u03B1\u03C9\u2192 blow, 0123456789";
      dc.ExtTextOut(run);
    }
  }
  paper.context.reset();
  return std::move(paper.raster);
}

bool AreSame(const Raster& a, const Raster& b) {
  for (int y = 0; y < a.Height(); ++y) {
    if (std::memcmp(a.Row(y), b.Row(y), a.RowBytes()) != 0) return false;
  }
  return true;
}

/// Contexts of all threads share the font files, which are read while other threads draw letters.
TEST(DeviceThreads, Texts_Should_BeTheSame_When_SeveralThreadsDrawAtOnce) {
  const Raster alone = PageOfText();
  constexpr int kThreads = 8, kPages = 12;
  std::vector<int> different(kThreads, 0);
  std::vector<std::thread> running;
  for (int i = 0; i < kThreads; ++i) {
    running.emplace_back([&, i] {
      for (int page = 0; page < kPages; ++page) {
        if (!AreSame(alone, PageOfText())) ++different[static_cast<size_t>(i)];
      }
    });
  }
  for (std::thread& thread : running) thread.join();
  EXPECT_EQ(different, std::vector<int>(kThreads, 0));
}

}  // namespace
}  // namespace rasterkit
