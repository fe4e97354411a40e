// Every kind of pixels in every form: what was written is what the header says and what is decoded.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/codecs/tiff/pages/page_plan.h>

#include "tests/codecs/tiff/pages/page_pixels.h"

namespace rasterkit::test {
namespace {

constexpr unsigned kSeed = 20;

std::vector<TiffForm> AllForms() {
  std::vector<TiffForm> forms;
  for (const int compression :
       {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS,
        COMPRESSION_CCITTRLE, COMPRESSION_CCITTRLEW, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4,
        COMPRESSION_ZSTD, COMPRESSION_LZMA, COMPRESSION_WEBP}) {
    forms.push_back(StripForm(compression));
  }
  for (const int predictor : {2, 3}) {
    forms.push_back(StripForm(COMPRESSION_LZW, predictor));
    forms.push_back(StripForm(COMPRESSION_ADOBE_DEFLATE, predictor));
    forms.push_back(StripForm(COMPRESSION_ZSTD, predictor));
  }
  return forms;
}

/// The same form in other arrangements of blocks, bytes and bits.
std::vector<TiffForm> Arrangements(const TiffForm& form) {
  std::vector<TiffForm> forms(7, form);
  forms[1].isBigEndian = true;
  forms[2].isBigTiff = true;
  forms[3].isPlanar = true;
  forms[4].fillOrder = 2;
  forms[5].rowsPerStrip = 0;
  forms[5].tileWidth = 32;
  forms[5].tileHeight = 16;
  forms[6] = forms[5];
  forms[6].isPlanar = forms[6].isBigEndian = forms[6].isBigTiff = true;
  forms[6].fillOrder = 2;
  return forms;
}

void ExpectHeader(const std::vector<uint8_t>& bytes, const WrittenPicture& written,
                  const PageKind& kind, const Pixels& pixels) {
  const PictureHeader header = HeaderOf(bytes);
  EXPECT_EQ(header.width, WidthOf(pixels));
  EXPECT_EQ(header.height, HeightOf(pixels));
  EXPECT_EQ(Describe(std::get<TiffForm>(header.form)), Describe(std::get<TiffForm>(written.form)));
  EXPECT_EQ(header.layout.bits, kind.bits);
  EXPECT_EQ(header.layout.bands, kind.bands);
  EXPECT_EQ(header.layout.model, kind.model);
  EXPECT_EQ(header.layout.type, written.layout.type);
  EXPECT_EQ(header.layout.alpha, written.layout.alpha);
  EXPECT_EQ(header.layout.extraBands, written.layout.extraBands);
  EXPECT_EQ(header.pages, 1);
  EXPECT_EQ(header.warnings, std::vector<std::string>());
}

/// A raster of white and black comes back as black and white with the same colors.
bool IsReversed(const PageKind& kind) {
  return kind.name == "1-bit reversed";
}

void ExpectSamePixels(const PageKind& kind, const Pixels& pixels, const Pixels& back) {
  if (!IsReversed(kind)) {
    EXPECT_TRUE(SameNumbers(pixels, back));
    return;
  }
  const Raster &one = std::get<Raster>(pixels), &two = std::get<Raster>(back);
  for (int y = 0; y < one.Height(); y++) {
    for (int x = 0; x < one.Width(); x++) {
      ASSERT_EQ(one.PixelColor(x, y), two.PixelColor(x, y)) << x << ", " << y;
    }
  }
}

TEST(TiffFormRoundTrip, Should_GiveBackEveryNumber_When_FormIsLossless) {
  std::mt19937 random(kSeed);
  int count = 0;
  for (const PageKind& kind : AllPageKinds()) {
    const Pixels pixels = kind.make(45, 23, random);
    for (const TiffForm& base : AllForms()) {
      for (const TiffForm& form : Arrangements(base)) {
        SCOPED_TRACE(kind.name + ": " + Describe(form));
        PictureWriting writing;
        writing.form = form;
        WrittenPicture written;
        const std::vector<uint8_t> bytes = Written(pixels, writing, &written);
        ExpectHeader(bytes, written, kind, pixels);
        CodecReport report;
        ExpectSamePixels(kind, pixels, PixelsOf(bytes, &report));
        EXPECT_EQ(report.warnings, std::vector<std::string>());
        count++;
        if (HasFailure()) return;
      }
    }
  }
  EXPECT_GT(count, 4000);
}

TEST(TiffFormRoundTrip, Should_KeepTheForm_When_PixelsAllowIt) {
  std::mt19937 random(kSeed);
  const std::vector<PageKind> kinds = AllPageKinds();
  for (const PageKind& kind : kinds) {
    const Pixels pixels = kind.make(40, 20, random);
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                                  COMPRESSION_PACKBITS, COMPRESSION_ZSTD, COMPRESSION_LZMA}) {
      for (const TiffForm& wanted : Arrangements(StripForm(compression))) {
        SCOPED_TRACE(kind.name + ": " + Describe(wanted));
        PictureWriting writing;
        writing.form = wanted;
        WrittenPicture written;
        Written(pixels, writing, &written);
        TiffForm form = std::get<TiffForm>(written.form);
        EXPECT_EQ(form.isPlanar, wanted.isPlanar && kind.bands > 1);
        form.isPlanar = wanted.isPlanar;
        form.photometric = wanted.photometric;
        EXPECT_EQ(Describe(form), Describe(wanted));
        EXPECT_THAT(written.changes.notes, testing::IsEmpty());
      }
    }
  }
}

TEST(TiffFormRoundTrip, Should_ReckonWithTheWorstCase_When_FileMayExceedFourGiB) {
  detail::PagePlan plan;
  plan.width = plan.height = 60000;
  plan.form = StripForm(COMPRESSION_NONE);
  EXPECT_LT(plan.MostBytes(), uint64_t{1} << 32);
  plan.form.compression = COMPRESSION_LZW;
  EXPECT_GT(plan.MostBytes(), uint64_t{1} << 32);
  plan.form.compression = COMPRESSION_NONE;
  plan.samples = 2;
  EXPECT_GE(plan.MostBytes(), uint64_t{2} * 60000 * 60000);
  plan.form.isPlanar = true;
  EXPECT_GE(plan.MostBytes(), uint64_t{2} * 60000 * 60000);
  // Sides whose product does not fit 64 bits.
  plan.width = plan.height = 0x7FFFFFFF;
  plan.samples = 65535;
  plan.bits = 64;
  plan.form.rowsPerStrip = plan.height;
  EXPECT_GT(plan.MostBytes(), uint64_t{1} << 63);
}

TEST(TiffFormRoundTrip, Should_GiveTheUsualForm_When_OnlyACompressionIsNamed) {
  std::mt19937 random(kSeed);
  const Pixels colors = RandomRaster(pf24bit, 30, 20, random);
  const Pixels plan = RandomRaster(pf1bit, 30, 20, random);
  const auto written = [](const Pixels& pixels, TiffCompression compression) {
    PictureWriting writing;
    writing.form = FormFor(compression, LayoutOf(pixels));
    WrittenPicture result;
    Written(pixels, writing, &result);
    return std::get<TiffForm>(result.form);
  };
  EXPECT_EQ(written(colors, TiffCompression::standard).compression, COMPRESSION_LZW);
  EXPECT_EQ(written(colors, TiffCompression::standard).predictor, 2);
  EXPECT_EQ(written(plan, TiffCompression::standard).compression, COMPRESSION_CCITTFAX4);
  EXPECT_EQ(written(plan, TiffCompression::lzw).predictor, 1);
  EXPECT_EQ(written(colors, TiffCompression::none).compression, COMPRESSION_NONE);
  EXPECT_EQ(written(colors, TiffCompression::packBits).compression, COMPRESSION_PACKBITS);
  EXPECT_EQ(written(colors, TiffCompression::deflate).compression, COMPRESSION_ADOBE_DEFLATE);
  EXPECT_EQ(written(colors, TiffCompression::group4).compression, COMPRESSION_ADOBE_DEFLATE);
  EXPECT_EQ(written(plan, TiffCompression::group4).compression, COMPRESSION_CCITTFAX4);
}

struct Misfit {
  const char* name;
  TPixelFormat format;
  int compression;
  const char* note;
};

TEST(TiffFormRoundTrip, Should_SayDeflate_When_CompressionDoesNotFit) {
  std::mt19937 random(kSeed);
  for (const Misfit& row : {
           Misfit{"gray in G4", pf8bit, COMPRESSION_CCITTFAX4, "CCITT G4"},
           Misfit{"color in G3", pf24bit, COMPRESSION_CCITTFAX3, "CCITT G3"},
           Misfit{"old-style JPEG", pf24bit, COMPRESSION_OJPEG, "old JPEG"},
           Misfit{"bits in JPEG", pf1bit, COMPRESSION_JPEG, "JPEG"},
           Misfit{"JBIG", pf1bit, COMPRESSION_JBIG, "JBIG"},
           Misfit{"unknown", pf24bit, 12345, "compression 12345"},
           Misfit{"LERC", pf8bit, COMPRESSION_LERC, "LERC"},
       }) {
    SCOPED_TRACE(row.name);
    Pixels pixels = RandomRaster(row.format, 20, 10, random);
    PictureWriting writing;
    writing.form = StripForm(row.compression);
    WrittenPicture written;
    const std::vector<uint8_t> bytes = Written(pixels, writing, &written);
    EXPECT_EQ(std::get<TiffForm>(written.form).compression, COMPRESSION_ADOBE_DEFLATE);
    ASSERT_EQ(written.changes.notes.size(), 1u);
    EXPECT_THAT(written.changes.notes[0], testing::HasSubstr(row.note));
    EXPECT_TRUE(SameNumbers(pixels, PixelsOf(bytes)));
  }
}

TEST(TiffFormRoundTrip, Should_KeepBits_When_PlanIsMinIsWhite) {
  std::mt19937 random(kSeed);
  for (const int photometric : {PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_MINISBLACK}) {
    TiffForm form = StripForm(COMPRESSION_NONE);
    form.photometric = photometric;
    PictureWriting writing;
    writing.form = form;
    const Pixels pixels = RandomRaster(pf1bit, 21, 9, random);
    const std::vector<uint8_t> once = Written(pixels, writing);
    EXPECT_EQ(std::get<TiffForm>(HeaderOf(once).form).photometric, photometric);
    const Pixels back = PixelsOf(once);
    EXPECT_TRUE(SameNumbers(pixels, back));
    EXPECT_EQ(Written(back, writing), once);
  }
}

TEST(TiffFormRoundTrip, Should_GiveTheSameBytes_When_ThreadsDiffer) {
  std::mt19937 random(kSeed);
  const Pixels pixels = RandomRaster(pf24bit, 300, 200, random);
  for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_JPEG}) {
    for (TiffForm form : Arrangements(StripForm(compression))) {
      form.photometric = compression == COMPRESSION_JPEG ? PHOTOMETRIC_YCBCR : -1;
      PictureWriting writing;
      writing.form = form;
      const std::vector<uint8_t> one = Written(pixels, writing);
      for (const int threads : {2, 7}) {
        writing.threads = threads;
        EXPECT_EQ(Written(pixels, writing), one) << Describe(form) << ", " << threads;
      }
    }
  }
}

/// Smooth, so that JPEG hardly changes it.
Raster SmoothRaster(TPixelFormat format, int width, int height) {
  Raster raster(format, width, height);
  const int bytes = StoredBitsPerPixel(format) / 8;
  for (int y = 0; y < height; y++) {
    for (int x = 0; x < width; x++) {
      for (int i = 0; i < bytes; i++) {
        raster.Row(y)[x * bytes + i] = static_cast<uint8_t>(40 + x + y / 2 + 20 * i);
      }
    }
  }
  if (format == pf8bit) raster.palette = GrayPalette(256);
  raster.ClearPadding();
  return raster;
}

double MeanError(const Raster& a, const Raster& b) {
  double sum = 0;
  for (int y = 0; y < a.Height(); y++) {
    for (size_t i = 0; i < a.RowBytes(); i++) sum += std::abs(a.Row(y)[i] - b.Row(y)[i]);
  }
  return sum / (static_cast<double>(a.RowBytes()) * a.Height());
}

TEST(TiffFormRoundTrip, Should_KeepQualityAndSampling_When_Jpeg) {
  for (const TPixelFormat format : {pf8bit, pf24bit}) {
    const Pixels pixels = SmoothRaster(format, 77, 51);
    for (const int quality : {1, 30, 75, 90, 100}) {
      for (const auto& [x, y] : {std::pair(1, 1), std::pair(2, 1), std::pair(2, 2)}) {
        for (TiffForm form : Arrangements(StripForm(COMPRESSION_JPEG))) {
          form.photometric = format == pf24bit ? PHOTOMETRIC_YCBCR : PHOTOMETRIC_MINISBLACK;
          form.jpegQuality = quality;
          form.subsamplingX = x;
          form.subsamplingY = y;
          SCOPED_TRACE(Describe(form) + " quality " + std::to_string(quality));
          PictureWriting writing;
          writing.form = form;
          WrittenPicture written;
          const std::vector<uint8_t> bytes = Written(pixels, writing, &written);
          const PictureHeader header = HeaderOf(bytes);
          const TiffForm& found = std::get<TiffForm>(header.form);
          EXPECT_EQ(found, std::get<TiffForm>(written.form));
          EXPECT_EQ(found.jpegQuality, quality);
          EXPECT_EQ(found.compression, COMPRESSION_JPEG);
          if (found.photometric == PHOTOMETRIC_YCBCR) {
            EXPECT_EQ(found.subsamplingX, x);
            EXPECT_EQ(found.subsamplingY, y);
          }
          const Pixels back = PixelsOf(bytes);
          ASSERT_EQ(back.index(), 0u);
          EXPECT_LT(MeanError(std::get<Raster>(pixels), std::get<Raster>(back)), quality >= 75 ? 2.5
                                                                                 : quality >= 30
                                                                                     ? 12
                                                                                     : 64);
        }
      }
    }
  }
}

TEST(TiffFormRoundTrip, Should_WriteAsTheEncoder_When_FormIsEmpty) {
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster raster = RandomRaster(format, 300, 400, random);
    TMemoryStream stream;
    EncodeTiff(raster, stream);
    const std::vector<uint8_t> encoded = stream.TakeBytes();
    const Pixels pixels = raster.Clone();
    EXPECT_EQ(Describe(std::get<TiffForm>(HeaderOf(Written(pixels, {})).form)),
              Describe(std::get<TiffForm>(HeaderOf(encoded).form)));
  }
}

}  // namespace
}  // namespace rasterkit::test
