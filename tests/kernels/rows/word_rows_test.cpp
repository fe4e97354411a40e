#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/rows/word_rows.h>
#include <rasterkit/raster/pixel_words.h>

#include "tests/kernels/rows/row_cases.h"
#include "tests/reference/word_reference.h"

namespace rasterkit::kernels {
namespace {

struct Kernel {
  const char* name;
  void (*run)(const uint8_t*, size_t, uint8_t*);
  int greenBits;
  size_t pixelBytes;
};

constexpr Kernel kKernels[] = {{"555 to 32", Row555To32, 5, 4},
                               {"565 to 32", Row565To32, 6, 4},
                               {"555 to 24", Row555To24, 5, 3},
                               {"565 to 24", Row565To24, 6, 3}};

std::vector<uint8_t> Expected(const std::vector<uint8_t>& words, const Kernel& kernel) {
  std::vector<uint8_t> pixels;
  for (size_t i = 0; i < words.size(); i += 2) {
    const auto color = reference::ColorOfWord(words[i] + 256 * words[i + 1], kernel.greenBits);
    pixels.insert(pixels.end(), {color.blue, color.green, color.red});
    if (kernel.pixelBytes == 4) pixels.push_back(255);
  }
  return pixels;
}

std::vector<uint8_t> Widened(const std::vector<uint8_t>& words, const Kernel& kernel) {
  std::vector<uint8_t> pixels(words.size() / 2 * kernel.pixelBytes);
  kernel.run(words.data(), words.size() / 2, pixels.data());
  return pixels;
}

TEST(WordRows, EveryWord_Should_EqualTheReference) {
  std::vector<uint8_t> words;
  for (int word = 0; word <= 0xFFFF; word++) {
    words.push_back(static_cast<uint8_t>(word));
    words.push_back(static_cast<uint8_t>(word >> 8));
  }
  for (const Kernel& kernel : kKernels) {
    const std::vector<uint8_t> expected = Expected(words, kernel);
    test::ForEachSimdTarget([&](int64_t target) {
      EXPECT_TRUE(Widened(words, kernel) == expected)
          << kernel.name << ", " << hwy::TargetName(target);
    });
  }
}

TEST(WordRows, EveryWidth_Should_EqualTheReferenceAndLeaveWhatFollows) {
  test::ForEachTargetAndWidth(61, [](size_t width, std::mt19937& random) {
    const std::vector<uint8_t> words = test::RandomBytes(2 * width, random);
    for (const Kernel& kernel : kKernels) {
      // Bytes after the row must stay.
      std::vector<uint8_t> pixels(kernel.pixelBytes * width + 16, 0x88);
      kernel.run(words.data(), width, pixels.data());
      std::vector<uint8_t> expected = Expected(words, kernel);
      expected.resize(expected.size() + 16, 0x88);
      EXPECT_TRUE(pixels == expected) << kernel.name;
    }
  });
}

TEST(WordRows, SinglePixels_Should_HaveTheSameColors) {
  for (int word = 0; word <= 0xFFFF; word++) {
    for (const int greenBits : {5, 6}) {
      const auto color = reference::ColorOfWord(word, greenBits);
      const auto bits = static_cast<uint16_t>(word);
      ASSERT_EQ(greenBits == 5 ? ColorFromWord555(bits) : ColorFromWord565(bits),
                RGB(color.red, color.green, color.blue))
          << word;
    }
    ASSERT_EQ(Word565FromColor(ColorFromWord565(static_cast<uint16_t>(word))), word);
  }
}

}  // namespace
}  // namespace rasterkit::kernels
