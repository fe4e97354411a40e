#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/turn/gather_pixels.h>
#include <rasterkit/kernels/turn/rotate_pixels.h>
#include <rasterkit/kernels/turn/turn_samples.h>

#include "tests/reference/exact_turn.h"

namespace rasterkit {
namespace {

using kernels::AxisTurn;
using kernels::ConstPixelRows;
using kernels::PixelRows;

/// Pixels of any number of bytes in a block of exactly their size, or with padding.
struct Block {
  Block(int width, int height, size_t bytes, size_t padding)
      : width(width),
        height(height),
        bytes(bytes),
        stride(static_cast<size_t>(width) * bytes + padding),
        data(stride * static_cast<size_t>(height), 0xCD) {}

  void FillRandomly(std::mt19937& random) {
    for (uint8_t& byte : data) byte = static_cast<uint8_t>(random());
  }
  PixelRows Rows() { return {data.data(), stride, width, height}; }
  std::vector<uint8_t> Pixel(int x, int y) const {
    const auto first = data.begin() + static_cast<ptrdiff_t>(static_cast<size_t>(y) * stride +
                                                             static_cast<size_t>(x) * bytes);
    return {first, first + static_cast<ptrdiff_t>(bytes)};
  }
  bool HasClearPadding() const {
    for (int y = 0; y < height; ++y) {
      for (size_t i = static_cast<size_t>(width) * bytes; i < stride; ++i) {
        if (data[static_cast<size_t>(y) * stride + i] != 0) return false;
      }
    }
    return true;
  }

  int width, height;
  size_t bytes, stride;
  std::vector<uint8_t> data;
};

constexpr size_t kPixelBytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 10, 12, 16, 20, 24, 40};

TEST(TurnSamplesTest, MovesPixelsOfAnyNumberOfBytes) {
  std::mt19937 random(1);
  for (const size_t bytes : kPixelBytes) {
    for (const int width : {1, 2, 3, 15, 16, 17, 33}) {
      for (const int height : {1, 2, 16, 19}) {
        Block source(width, height, bytes, bytes % 3);
        source.FillRandomly(random);
        for (int number = 0; number < 8; ++number) {
          const AxisTurn turn{(number & 1) != 0, (number & 2) != 0, (number & 4) != 0};
          Block target(turn.transpose ? height : width, turn.transpose ? width : height, bytes,
                       width % 3);
          kernels::TurnSamples(source.Rows(), target.Rows(), static_cast<int>(8 * bytes), turn);
          for (int y = 0; y < target.height; ++y) {
            for (int x = 0; x < target.width; ++x) {
              const int u = turn.mirrorX ? target.width - 1 - x : x;
              const int v = turn.mirrorY ? target.height - 1 - y : y;
              ASSERT_EQ(target.Pixel(x, y),
                        turn.transpose ? source.Pixel(v, u) : source.Pixel(u, v))
                  << bytes << " bytes, turn " << number;
            }
          }
          ASSERT_TRUE(target.HasClearPadding());
        }
      }
    }
  }
}

kernels::SineCosine TurnBy(float degrees) {
  const reference::Turn turn = reference::ExactTurn(degrees);
  return {turn.sine, turn.cosine};
}

/// Gathers numbered pixels of 4 bytes by RotatePixels and pixels of `bytes` by GatherPixels.
void ExpectSamePlaces(int width, int height, float degrees, size_t bytes, std::mt19937& random) {
  const kernels::SineCosine turn = TurnBy(degrees);
  const kernels::Size size = kernels::RotatedSize(width, height, turn);
  const int targetWidth = static_cast<int>(size.width),
            targetHeight = static_cast<int>(size.height);
  const kernels::RotationMapping mapping(turn, width, height, targetWidth, targetHeight);
  Block numbers(width, height, 4, 0), numbersTurned(targetWidth, targetHeight, 4, 0);
  for (uint32_t i = 0; i < static_cast<uint32_t>(width * height); ++i) {
    const uint32_t number = i + 1;
    std::memcpy(&numbers.data[4 * i], &number, 4);
  }
  Block source(width, height, bytes, 0), target(targetWidth, targetHeight, bytes, 2);
  source.FillRandomly(random);
  std::vector<uint8_t> background(bytes);
  for (uint8_t& byte : background) byte = static_cast<uint8_t>(random());
  kernels::RotatePixels(mapping, numbers.Rows(), numbersTurned.Rows(), 32, 0, 0, targetHeight);
  kernels::GatherPixels(mapping, source.Rows(), target.Rows(), bytes, background.data(), 0,
                        targetHeight);
  for (int y = 0; y < targetHeight; ++y) {
    for (int x = 0; x < targetWidth; ++x) {
      uint32_t number = 0;
      std::memcpy(&number, numbersTurned.Pixel(x, y).data(), 4);
      const int index = static_cast<int>(number) - 1;
      ASSERT_EQ(target.Pixel(x, y),
                number == 0 ? background : source.Pixel(index % width, index / width))
          << x << ", " << y << " of " << width << " x " << height << " at " << degrees;
    }
  }
}

TEST(GatherPixelsTest, TakesThePixelsOfTheRotation) {
  std::mt19937 random(2);
  for (const float degrees : {0.02f, 10.0f, 30.0f, 44.99f, 45.0f, 60.0f, 90.0f, 123.4f, 180.0f,
                              200.7f, 270.0f, 300.0f, 359.9f}) {
    for (const auto& [width, height] :
         {std::pair(1, 1), std::pair(17, 9), std::pair(64, 200), std::pair(301, 77)}) {
      for (const size_t bytes : {size_t{3}, size_t{6}, size_t{8}, size_t{9}, size_t{16}}) {
        ExpectSamePlaces(width, height, degrees, bytes, random);
      }
    }
  }
}

TEST(GatherPixelsTest, TakesTheExactPixelsOfPicturesThatAreTooLargeForSteps) {
  std::mt19937 random(3);
  ExpectSamePlaces(140001, 2, 0.05f, 6, random);
}

TEST(GatherPixelsTest, WritesTheRowsThatAreWantedAlone) {
  std::mt19937 random(4);
  const kernels::SineCosine turn = TurnBy(20);
  const kernels::RotationMapping mapping(turn, 20, 10, 22, 16);
  Block source(20, 10, 6, 0), target(22, 16, 6, 0);
  source.FillRandomly(random);
  const uint8_t background[6] = {};
  kernels::GatherPixels(mapping, source.Rows(), target.Rows(), 6, background, 3, 9);
  for (int y = 0; y < 16; ++y) {
    const bool isUntouched = target.Pixel(0, y) == std::vector<uint8_t>(6, 0xCD) &&
                             target.Pixel(21, y) == std::vector<uint8_t>(6, 0xCD);
    EXPECT_EQ(isUntouched, y < 3 || y >= 9) << y;
  }
}

}  // namespace
}  // namespace rasterkit
