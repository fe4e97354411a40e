// Rows of a file do not depend on how they are divided, and neither do the bytes of a file that is
// written.

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/codecs/jpeg/jpeg_files.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using Bytes = std::span<const uint8_t>;

/// Rows without their properties, and everything that was said about them.
struct Decoding {
  std::vector<uint8_t> rows;
  std::vector<std::string> warnings, damage;
  std::string error;
  friend bool operator==(const Decoding&, const Decoding&) = default;
};

void Append(const Pixels& pixels, std::vector<uint8_t>& rows) {
  std::visit(
      [&](const auto& part) {
        for (int y = 0; y < part.Height(); ++y) {
          rows.insert(rows.end(), part.Row(y), part.Row(y) + part.Stride());
        }
      },
      pixels);
}

/// Decodes a file; with `next`, in bands of the heights that it gives.
Decoding Decode(Bytes file, const std::function<int()>& next = {}) {
  Decoding decoding;
  CodecReport report;
  try {
    if (!next) {
      Append(DecodeJpegPixels(file, &report), decoding.rows);
    } else {
      TSpanStream stream(file);
      const auto reader = OpenRows(stream, PictureType::jpeg);
      for (int top = 0; top < reader->Height();) {
        const int count = std::min(next(), reader->Height() - top);
        Pixels band = NewPixels(reader->Like(), reader->Width(), count);
        reader->Read(0, top, band);
        Append(band, decoding.rows);
        top += count;
      }
      reader->Finish(report);
    }
  } catch (const Error& error) {
    decoding.error = error.Reason();
    decoding.rows.clear();
    return decoding;
  }
  decoding.warnings = report.warnings;
  decoding.damage = report.damage;
  return decoding;
}

constexpr int kBandHeights[] = {1, 7, 16, 64, 10000};

void ExpectSameRows(Bytes file, const std::string& what) {
  const Decoding whole = Decode(file);
  for (const int height : kBandHeights) {
    EXPECT_EQ(Decode(file, [=] { return height; }), whole) << what << ", bands of " << height;
  }
}

struct Kind {
  std::string name;
  JpegRecipe recipe;
};

std::vector<Kind> AllKinds() {
  constexpr int kWidth = 161, kHeight = 203;
  const JpegRecipe colors{.width = kWidth, .height = kHeight, .file = JCS_YCbCr};
  std::vector<Kind> kinds{{"4:2:0", colors}};
  const auto add = [&](const char* name, const auto& change) {
    kinds.push_back({name, colors});
    change(kinds.back().recipe);
  };
  add("progressive", [](JpegRecipe& recipe) { recipe.progressive = true; });
  add("arithmetic", [](JpegRecipe& recipe) { recipe.arithmetic = true; });
  add("restart", [](JpegRecipe& recipe) { recipe.restartRows = 1; });
  add("plain RGB", [](JpegRecipe& recipe) { recipe.file = JCS_RGB; });
  add("gray", [](JpegRecipe& recipe) {
    recipe.components = 1;
    recipe.pixels = recipe.file = JCS_GRAYSCALE;
  });
  add("CMYK", [](JpegRecipe& recipe) {
    recipe.components = 4;
    recipe.pixels = recipe.file = JCS_CMYK;
  });
  add("YCCK", [](JpegRecipe& recipe) {
    recipe.components = 4;
    recipe.pixels = JCS_CMYK;
    recipe.file = JCS_YCCK;
  });
  add("CMYK without Adobe", [](JpegRecipe& recipe) {
    recipe.components = 4;
    recipe.pixels = recipe.file = JCS_CMYK;
    recipe.adobeMarker = false;
  });
  add("progressive arithmetic", [](JpegRecipe& recipe) {
    recipe.progressive = recipe.arithmetic = true;
    recipe.restartRows = 2;
  });
  return kinds;
}

TEST(JpegRowReader, Should_GiveTheSameRows_When_Divided) {
  for (const Kind& kind : AllKinds()) ExpectSameRows(MakeJpeg(kind.recipe), kind.name);
}

TEST(JpegRowReader, Should_GiveTheSameRowsAndWords_When_Truncated) {
  for (const Kind& kind : AllKinds()) {
    const std::vector<uint8_t> file = MakeJpeg(kind.recipe);
    for (size_t part = 1; part < 24; ++part) {
      const size_t size = file.size() * part / 24;
      ExpectSameRows(Bytes(file).first(size), kind.name + " cut at " + std::to_string(size));
    }
  }
}

TEST(JpegRowReader, Should_GiveTheSameRowsAndWords_When_Damaged) {
  std::mt19937 random(21);
  int damaged = 0;
  for (const Kind& kind : AllKinds()) {
    const std::vector<uint8_t> file = MakeJpeg(kind.recipe);
    for (int round = 0; round < 24; ++round) {
      std::vector<uint8_t> bad = file;
      for (int i = 0; i < 3; ++i) {
        bad[file.size() / 4 + random() % (file.size() * 3 / 4)] = static_cast<uint8_t>(random());
      }
      const Decoding whole = Decode(bad);
      if (!whole.damage.empty()) ++damaged;
      const unsigned seed = random();
      std::mt19937 heights(seed);
      EXPECT_EQ(Decode(bad, [&] { return 1 + static_cast<int>(heights() % 40); }), whole)
          << kind.name << " round " << round << " seed " << seed;
    }
  }
  EXPECT_GT(damaged, 20);
}

TEST(JpegRowReader, Rows_Should_BeSkipped) {
  const std::vector<uint8_t> file = MakeJpeg(AllKinds()[0].recipe);
  const Pixels whole = DecodeJpegPixels(file);
  TSpanStream stream(file);
  const auto reader = OpenRows(stream, PictureType::jpeg);
  EXPECT_EQ(reader->Access(), RowAccess::rising);
  EXPECT_EQ(reader->BlockRows(), 16);
  for (const int top : {5, 90, 91, 200}) {
    Pixels row = NewPixels(reader->Like(), reader->Width(), 1);
    reader->Read(0, top, row);
    const auto& rows = std::get<Raster>(whole);
    EXPECT_TRUE(
        std::equal(rows.Row(top), rows.Row(top) + rows.Stride(), std::get<Raster>(row).Row(0)))
        << top;
    EXPECT_THROW(reader->Read(0, top, row), RangeError);
  }
}

TEST(JpegRowReader, OneScan_Should_BeReadWithoutHoldingTheRows) {
  const JpegRecipe recipe{.width = 900, .height = 900, .file = JCS_YCbCr};
  const std::vector<uint8_t> file = MakeJpeg(recipe);
  TSpanStream stream(file);
  const auto reader = OpenRows(stream, PictureType::jpeg);
  const uint64_t before = CurrentLimits().pictureBytes;
  Limits limits = CurrentLimits();
  limits.pictureBytes = 300000;
  ASSERT_LT(limits.pictureBytes, before);
  const LimitsScope scope(limits);
  EXPECT_THROW(DecodeJpegPixels(file), LimitError);
  TSpanStream again(file);
  EXPECT_NE(OpenRows(again, PictureType::jpeg), nullptr);
  const std::vector<uint8_t> progressive =
      MakeJpeg({.width = 900, .height = 900, .file = JCS_YCbCr, .progressive = true});
  TSpanStream many(progressive);
  EXPECT_THROW(OpenRows(many, PictureType::jpeg), LimitError);
}

/// A stream that fails at a place in the middle.
class BrokenStream : public TSpanStream {
 public:
  using TSpanStream::TSpanStream;
  size_t Read(std::span<uint8_t> target) override {
    if (Position() > 0) throw FileError("the disk is gone", "picture.jpg");
    return TSpanStream::Read(target.first(std::min<size_t>(target.size(), 32 << 10)));
  }
};

/// Noise, which takes more bytes than the buffers of the reader have.
std::vector<uint8_t> NoiseFile() {
  std::mt19937 random(3);
  Raster noise(pf24bit, 800, 600);
  for (int y = 0; y < noise.Height(); ++y) {
    for (size_t i = 0; i < noise.RowBytes(); ++i) noise.Row(y)[i] = static_cast<uint8_t>(random());
  }
  TMemoryStream stream;
  WriteJpeg(std::move(noise), {}, stream);
  return stream.TakeBytes();
}

TEST(JpegRowReader, LargeFiles_Should_BeReadInPieces) {
  const std::vector<uint8_t> file = NoiseFile();
  ASSERT_GT(file.size(), size_t{200} << 10);
  ExpectSameRows(file, "noise");
  ExpectSameRows(Bytes(file).first(file.size() / 2), "half of the noise");
}

TEST(JpegRowReader, Should_ThrowWhatTheStreamThrows) {
  const std::vector<uint8_t> file = NoiseFile();
  BrokenStream stream(file);
  EXPECT_THROW(
      {
        const auto reader = OpenRows(stream, PictureType::jpeg);
        Pixels rows = NewPixels(reader->Like(), reader->Width(), reader->Height());
        reader->Read(0, 0, rows);
      },
      FileError);
}

TEST(JpegRowWriter, Bytes_Should_NotDependOnTheDivision) {
  for (const bool progressive : {false, true}) {
    for (const bool arithmetic : {false, true}) {
      for (const Kind& kind : AllKinds()) {
        const Pixels pixels = DecodeJpegPixels(MakeJpeg(kind.recipe));
        PictureWriting writing;
        JpegForm form = std::get<JpegForm>(ReadJpegHeader(MakeJpeg(kind.recipe)).form);
        form.progressive = progressive;
        form.arithmetic = arithmetic;
        writing.form = form;
        TMemoryStream whole;
        WriteJpeg(pixels, writing, whole);
        for (const int height : kBandHeights) {
          TMemoryStream stream;
          const auto writer = OpenWriter(PictureType::jpeg, pixels,
                                         {WidthOf(pixels), HeightOf(pixels)}, writing, stream);
          ASSERT_NE(writer, nullptr);
          TSpanStream source(whole.Bytes());
          for (int top = 0; top < HeightOf(pixels); top += height) {
            const int count = std::min(height, HeightOf(pixels) - top);
            Pixels band = NewPixels(pixels, WidthOf(pixels), count);
            std::visit(
                [&](auto& rows) {
                  const auto& from = std::get<std::decay_t<decltype(rows)>>(pixels);
                  std::copy_n(from.Row(top), rows.Stride() * static_cast<size_t>(count),
                              rows.Row(0));
                },
                band);
            writer->Write(band);
          }
          EXPECT_EQ(writer->Finish().layout.bands, LayoutOf(pixels).bands);
          EXPECT_TRUE(std::ranges::equal(stream.Bytes(), whole.Bytes()))
              << kind.name << ", bands of " << height;
        }
      }
    }
  }
}

TEST(JpegRowWriter, Should_RefuseMissingRowsAndTooMany) {
  const Raster colors = GradientRaster(pf24bit, 40, 30);
  TMemoryStream stream;
  const Pixels like = colors.Clone();
  const auto writer = OpenWriter(PictureType::jpeg, like, {40, 60}, {}, stream);
  Pixels band = colors.Clone();
  writer->Write(band);
  EXPECT_THROW(writer->Finish(), RangeError);
  writer->Write(band);
  EXPECT_THROW(writer->Write(band), RangeError);
  writer->Finish();
  EXPECT_EQ(ReadJpegHeader(stream.Bytes()).height, 60);
}

}  // namespace
}  // namespace rasterkit::test
