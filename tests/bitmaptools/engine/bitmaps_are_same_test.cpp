#include <functional>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/kernels/rows/equal_colors.h>

#include "tests/reference/composition_reference.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

/// A change of a bitmap, and whether its file differs then.
struct Change {
  const char* name;
  std::function<void(TBitmap&)> make;
};

void FlipBit(TBitmap& bitmap, int y, size_t byte, int bit) {
  if (byte < bitmap.Stride()) bitmap.ScanLine(y)[byte] ^= static_cast<uint8_t>(1 << bit);
}

void SetEntries(TBitmap& bitmap, int count, const std::function<void(tagPALETTEENTRY&)>& change) {
  std::vector<tagPALETTEENTRY> entries(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) entries[static_cast<size_t>(i)] = bitmap.Palette().Entry(i);
  if (count > 0) change(entries.back());
  bitmap.SetPalette(HPALETTE(entries));
}

size_t RowBytes(const TBitmap& bitmap) {
  return bitmap.Content().RowBytes();
}

const Change kChanges[] = {
    {"nothing", [](TBitmap&) {}},
    {"first byte", [](TBitmap& b) { FlipBit(b, 0, 0, 7); }},
    {"second byte", [](TBitmap& b) { FlipBit(b, 0, 1, 0); }},
    {"third byte", [](TBitmap& b) { FlipBit(b, 0, 2, 0); }},
    {"fourth byte", [](TBitmap& b) { FlipBit(b, 0, 3, 0); }},
    {"last byte of a row, lowest bit",
     [](TBitmap& b) { FlipBit(b, b.Height() - 1, RowBytes(b) - 1, 0); }},
    {"last byte of a row, highest bit",
     [](TBitmap& b) { FlipBit(b, b.Height() - 1, RowBytes(b) - 1, 7); }},
    {"last byte but one", [](TBitmap& b) { FlipBit(b, b.Height() - 1, RowBytes(b) - 2, 3); }},
    {"padding", [](TBitmap& b) { FlipBit(b, b.Height() / 2, RowBytes(b), 2); }},
    {"resolution",
     [](TBitmap& b) {
       b.SetDpi({300, 300});
     }},
    {"resolution upright",
     [](TBitmap& b) {
       b.SetDpi({72, 96});
     }},
    {"resolution by less than a pixel per meter",
     [](TBitmap& b) {
       b.SetDpi({72.001, 72});
     }},
    {"profile",
     [](TBitmap& b) { b.SetProfile(std::make_shared<std::vector<uint8_t>>(3, uint8_t{1})); }},
    {"alpha mark", [](TBitmap& b) { b.SetAlphaFormat(afDefined); }},
    {"transparency", [](TBitmap& b) { b.SetTransparentColor(RGB(1, 2, 3)); }},
    {"no palette", [](TBitmap& b) { b.SetPalette(HPALETTE()); }},
    {"one entry", [](TBitmap& b) { SetEntries(b, 1, [](tagPALETTEENTRY&) {}); }},
    {"one black entry", [](TBitmap& b) { SetEntries(b, 1, [](tagPALETTEENTRY& e) { e = {}; }); }},
    {"two entries", [](TBitmap& b) { SetEntries(b, 2, [](tagPALETTEENTRY&) {}); }},
    {"an entry's red", [](TBitmap& b) { SetEntries(b, 2, [](auto& e) { e.peRed ^= 1; }); }},
    {"an entry's green", [](TBitmap& b) { SetEntries(b, 2, [](auto& e) { e.peGreen ^= 1; }); }},
    {"an entry's blue", [](TBitmap& b) { SetEntries(b, 2, [](auto& e) { e.peBlue ^= 1; }); }},
    {"an entry's flags", [](TBitmap& b) { SetEntries(b, 2, [](auto& e) { e.peFlags = 4; }); }},
    {"16 entries", [](TBitmap& b) { SetEntries(b, 16, [](tagPALETTEENTRY&) {}); }},
    {"pfDevice", [](TBitmap& b) { b.StoredBits() == 32 ? b.SetPixelFormat(pfDevice) : void(); }},
    {"24 bits", [](TBitmap& b) { b.SetPixelFormat(pf24bit); }},
    {"32 bits", [](TBitmap& b) { b.SetPixelFormat(pf32bit); }},
    {"16 bits", [](TBitmap& b) { b.SetPixelFormat(pf16bit); }},
    {"15 bits", [](TBitmap& b) { b.SetPixelFormat(pf15bit); }},
};

std::unique_ptr<TBitmap> Changed(const TBitmap& bitmap, const Change& change) {
  std::unique_ptr<TBitmap> copy = bitmap.Clone();
  copy->SetDpi({72, 72});
  if (!copy->Empty()) change.make(*copy);
  return copy;
}

void ExpectAnswerOfTheStreams(const TBitmap& bitmap, const Change& one, const Change& other) {
  const std::unique_ptr<TBitmap> a = Changed(bitmap, one), b = Changed(bitmap, other);
  ASSERT_EQ(BitmapsAreSame(*a, *b), reference::BitmapsAreSame(*a, *b))
      << "format " << bitmap.PixelFormat() << ", width " << bitmap.Width() << ": " << one.name
      << " against " << other.name;
}

TEST(BitmapsAreSameTest, EveryPairOfChangesInEveryFormat_Should_AnswerAsTheStreamsDo) {
  std::mt19937 random(6);
  for (const TPixelFormat format : test::kEveryFormat) {
    for (const int width : {1, 5, 8, 33}) {
      const TBitmap bitmap = test::RandomBitmap(format, width, 3, random);
      for (const Change& one : kChanges)
        for (const Change& other : kChanges)
          ASSERT_NO_FATAL_FAILURE(ExpectAnswerOfTheStreams(bitmap, one, other));
    }
  }
}

TEST(BitmapsAreSameTest, EveryWidthAndTarget_Should_FindEveryChangedByteAsTheStreamsDo) {
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    std::mt19937 random(5);
    for (const TPixelFormat format : {pf1bit, pf24bit, pf32bit}) {
      for (int width = 1; width <= 70; ++width) {
        TBitmap bitmap = test::RandomBitmap(format, width, 2, random);
        const std::unique_ptr<TBitmap> other = bitmap.Clone();
        ASSERT_TRUE(BitmapsAreSame(bitmap, *other));
        for (size_t byte = 0; byte < bitmap.Stride(); ++byte) {
          FlipBit(bitmap, 1, byte, 0);
          const bool isColor = byte < RowBytes(bitmap) && !(format == pf32bit && byte % 4 == 3);
          ASSERT_EQ(BitmapsAreSame(bitmap, *other), !isColor) << "byte " << byte << " of " << width;
          FlipBit(bitmap, 1, byte, 0);
        }
      }
    }
  });
}

TEST(BitmapsAreSameTest, KernelOfEveryLength_Should_SeeColorsAndNoAlpha) {
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    for (const size_t count : {size_t{0}, size_t{1}, size_t{15}, size_t{64}, size_t{131}}) {
      const std::vector<uint8_t> row(4 * count, 0x33);
      ASSERT_TRUE(kernels::EqualColors32(row.data(), row.data(), count));
      for (size_t i = 0; i < row.size(); ++i) {
        std::vector<uint8_t> other = row;
        other[i] ^= 0x80;
        ASSERT_EQ(kernels::EqualColors32(row.data(), other.data(), count), i % 4 == 3)
            << "byte " << i << " of " << count << " pixels";
      }
    }
  });
}

TEST(BitmapsAreSameTest, EqualLooking24And32Bit_Should_Differ) {
  const TBitmap a = test::GradientBitmap(pf24bit, 6, 4);
  const std::unique_ptr<TBitmap> b = a.Clone();
  b->SetPixelFormat(pf32bit);
  EXPECT_EQ(a.PixelColor(5, 3), b->PixelColor(5, 3));
  EXPECT_FALSE(BitmapsAreSame(a, *b));
}

TEST(BitmapsAreSameTest, OtherSizes_Should_Differ) {
  const TBitmap a = test::GradientBitmap(pf24bit, 6, 4);
  EXPECT_TRUE(BitmapsAreSame(a, a));
  EXPECT_FALSE(BitmapsAreSame(a, test::GradientBitmap(pf24bit, 6, 5)));
  EXPECT_FALSE(BitmapsAreSame(a, test::GradientBitmap(pf24bit, 7, 4)));
  EXPECT_FALSE(BitmapsAreSame(a, test::GradientBitmap(pf24bit, 4, 6)));
}

TEST(BitmapsAreSameTest, EmptyBitmaps_Should_CompareByTheirHeads) {
  TBitmap a, b;
  EXPECT_TRUE(BitmapsAreSame(a, b));
  b.SetPixelFormat(pf8bit);
  EXPECT_FALSE(BitmapsAreSame(a, b));
  EXPECT_FALSE(BitmapsAreSame(a, test::GradientBitmap(pf32bit, 1, 1)));
}

}  // namespace
}  // namespace rasterkit
