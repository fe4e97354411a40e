// The files of the corpus as gdal_translate reads them: the same numbers, to the bit; inks with a
// profile as ImageMagick shows them. A development test, skipped where the programs or the corpus
// are absent.

#include <cstdlib>
#include <cstring>
#include <regex>

#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/half.h>

#include "tests/reference/tiff_reference.h"
#include "tests/support/corpus.h"
#include "tests/support/profiles.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using reference::TiffMeaning;

/// Bands of numbers, one behind the other, as gdal_translate writes them.
struct Bands {
  int type = 0, count = 0;
  uint32_t width = 0, height = 0;
  std::string bytes;
  /// The program calls signed bytes bytes.
  bool hasSignedBytes = false;

  long double Number(uint32_t x, uint32_t y, uint32_t band) const {
    const size_t index = (size_t{band} * height + y) * width + x;
    switch (type) {
      case 1:
        return hasSignedBytes ? As<int8_t>(index) : As<uint8_t>(index);
      case 2:
        return As<int16_t>(index);
      case 3:
        return As<int32_t>(index);
      case 4:
        return As<float>(index);
      case 5:
        return As<double>(index);
      case 12:
        return As<uint16_t>(index);
      case 13:
        return As<uint32_t>(index);
      default:
        ADD_FAILURE() << "type " << type;
        return 0;
    }
  }
  template <typename T>
  T As(size_t index) const {
    T value{};
    std::memcpy(&value, bytes.data() + index * sizeof value, sizeof value);
    return value;
  }
};

std::string Quoted(const std::string& text) {
  return "'" + text + "'";
}

/// Nothing when the program refuses the file.
std::optional<Bands> ReadByPeer(const std::string& fileName, const TempFolder& folder) {
  TFileStream stream(fileName);
  // Inks as they are: the peer's way to red, green and blue truncates.
  const TiffFacts facts = ReadTiffFacts(stream);
  const bool hasInks = facts.photometric == PHOTOMETRIC_SEPARATED;
  const std::string raw = folder / "bands.raw";
  const std::string command = "gdal_translate -q -of ENVI -co INTERLEAVE=BSQ " +
                              Quoted((hasInks ? "GTIFF_RAW:" : "") + fileName) + " " + Quoted(raw) +
                              " >/dev/null 2>&1";
  if (std::system(command.c_str()) != 0) return std::nullopt;
  const std::string header = ReadFile(folder / "bands.hdr");
  const auto field = [&](const std::string& name) {
    std::smatch match;
    std::regex_search(header, match, std::regex(name + " *= *([0-9]+)"));
    return match.empty() ? 0 : std::stoi(match[1]);
  };
  Bands bands;
  bands.hasSignedBytes = facts.sampleFormat == SAMPLEFORMAT_INT;
  bands.type = field("data type");
  bands.count = field("bands");
  bands.width = static_cast<uint32_t>(field("samples"));
  bands.height = static_cast<uint32_t>(field("lines"));
  bands.bytes = ReadFile(raw);
  return bands;
}

TiffMeaning MeaningOfFile(const std::string& fileName) {
  TFileStream stream(fileName);
  const TiffFacts facts = ReadTiffFacts(stream);
  TiffMeaning meaning;
  meaning.bits = static_cast<uint16_t>(facts.bitsPerSample);
  meaning.sampleFormat = static_cast<uint16_t>(facts.sampleFormat);
  meaning.photometric = static_cast<uint16_t>(facts.photometric);
  // Such files are read as RGB by everybody.
  if (meaning.photometric == PHOTOMETRIC_YCBCR) meaning.photometric = PHOTOMETRIC_RGB;
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  const auto silence = [](TIFF*, void*, const char*, const char*, va_list) { return 1; };
  TIFFOpenOptionsSetWarningHandlerExtR(options, silence, nullptr);
  TIFFOpenOptionsSetErrorHandlerExtR(options, silence, nullptr);
  TIFF* tiff = TIFFOpenExt(fileName.c_str(), "r", options);
  TIFFOpenOptionsFree(options);
  uint16_t count = 0;
  uint16_t* kinds = nullptr;
  if (tiff && TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds))
    meaning.extraSamples.assign(kinds, kinds + count);
  if (tiff) TIFFClose(tiff);
  return meaning;
}

uint64_t FramePixel(const Raster& raster, uint32_t x, uint32_t y) {
  const auto bits = static_cast<size_t>(StoredBitsPerPixel(raster.Format()));
  const uint8_t* row = raster.Row(static_cast<int>(y));
  if (bits < 8) return row[x * bits / 8] >> (8 - bits - x * bits % 8) & ((1u << bits) - 1);
  uint64_t value = 0;
  for (size_t i = bits / 8; i-- > 0;) value = value << 8 | row[x * bits / 8 + i];
  return value;
}

uint64_t Together(const std::array<uint8_t, 4>& bgra, size_t count) {
  uint64_t value = 0;
  for (size_t i = count; i-- > 0;) value = value << 8 | bgra[i];
  return value;
}

/// The frame's pixel as it follows from the peer's numbers.
uint64_t PixelOf(const Bands& bands, const TiffMeaning& meaning, WICPixelFormat format, uint32_t x,
                 uint32_t y) {
  const auto number = [&](uint32_t band) { return bands.Number(x, y, band); };
  switch (format) {
    case GUID_WICPixelFormat24bppBGR:
      return Together(reference::TiffPixel(meaning, number), 3);
    case GUID_WICPixelFormat32bppBGRA:
      return Together(reference::TiffPixel(meaning, number), 4);
    case GUID_WICPixelFormat32bppGrayFloat:
      return std::bit_cast<uint32_t>(bands.As<float>(size_t{y} * bands.width + x));
    case GUID_WICPixelFormat16bppGrayFixedPoint:
      return static_cast<uint16_t>(static_cast<int16_t>(number(0)));
    default: {
      const auto value = static_cast<uint64_t>(number(0));
      const bool isInverted = meaning.photometric == PHOTOMETRIC_MINISWHITE;
      return isInverted ? ~value & ((uint64_t{1} << meaning.bits) - 1) : value;
    }
  }
}

/// Files whose inks have a profile that is followed here, while gdal_translate keeps the inks.
bool HasInkProfile(const std::string& path) {
  return path == "tiff/serenity__cmyk-small.tif" ||
         path == "tiff/tm__cmyk-with-non-alpha-extra-channel.tiff";
}

/// Inks through their profile, as ImageMagick shows them on a common screen.
bool ExpectAsMagick(const std::string& fileName, const ImagingFrame& frame,
                    const TempFolder& folder) {
  const std::string screen = folder.Write("screen.icc", *RgbProfile());
  const std::string raw = folder / "magick.raw";
  const std::string command = "convert " + Quoted(fileName + "[0]") + " -alpha off -profile " +
                              Quoted(screen) + " -depth 8 " + Quoted("bgr:" + raw) +
                              " >/dev/null 2>&1";
  if (std::system(command.c_str()) != 0) return false;
  const std::string bytes = ReadFile(raw);
  const auto width = static_cast<size_t>(frame.rows.Width());
  EXPECT_EQ(bytes.size(), width * static_cast<size_t>(frame.rows.Height()) * 3);
  size_t at = 0;
  for (int y = 0; y < frame.rows.Height(); y++) {
    for (size_t i = 0; i < width * 4 && at < bytes.size(); i++) {
      if (i % 4 == 3) continue;
      EXPECT_NEAR(frame.rows.Row(y)[i], static_cast<uint8_t>(bytes[at++]), 1);
    }
  }
  return true;
}

bool IsStretched(const CodecReport& report) {
  for (const std::string& warning : report.warnings)
    if (warning.find("black to white") != std::string::npos) return true;
  return false;
}

/// Every number by its place between the least and the greatest.
void ExpectStretched(const Bands& bands, const Raster& raster) {
  long double least = INFINITY, greatest = -INFINITY;
  const size_t count = size_t{bands.width} * bands.height;
  const auto number = [&](size_t i) {
    return bands.Number(static_cast<uint32_t>(i % bands.width),
                        static_cast<uint32_t>(i / bands.width), 0);
  };
  for (size_t i = 0; i < count; i++) {
    if (!std::isfinite(number(i))) continue;
    least = std::min(least, number(i));
    greatest = std::max(greatest, number(i));
  }
  const long double range = greatest > least ? greatest - least : 1;
  for (size_t i = 0; i < count; i++) {
    const uint8_t* pixel = raster.Row(static_cast<int>(i / bands.width)) + i % bands.width * 4;
    ASSERT_EQ(pixel[3], 255) << i;
    if (!std::isfinite(number(i))) continue;
    ASSERT_EQ(pixel[0], reference::TiffByte((number(i) - least) / range)) << i;
  }
}

/// True when the file was compared to the end.
bool ExpectAsPeer(const std::string& path, const TempFolder& folder) {
  SCOPED_TRACE(path);
  const std::string fileName = (CorpusFolder() / path).string();
  ImagingFrame frame;
  CodecReport report;
  try {
    TFileStream stream(fileName);
    frame = DecodeTiff(stream, {}, &report);
  } catch (const Error&) {
    return false;
  }
  const auto bands = ReadByPeer(fileName, folder);
  if (HasInkProfile(path)) return ExpectAsMagick(fileName, frame, folder);
  if (!bands) return false;
  EXPECT_EQ(static_cast<uint32_t>(frame.rows.Width()), bands->width);
  EXPECT_EQ(static_cast<uint32_t>(frame.rows.Height()), bands->height);
  if (bands->width != static_cast<uint32_t>(frame.rows.Width())) return false;
  if (IsStretched(report)) {
    ExpectStretched(*bands, frame.rows);
    return true;
  }
  const TiffMeaning meaning = MeaningOfFile(fileName);
  size_t different = 0;
  // Of large pictures some hundred thousand pixels, in ever other columns.
  const uint32_t step = 1 + bands->width * bands->height / 200000;
  for (uint32_t y = 0; y < bands->height; y++) {
    for (uint32_t x = y % step; x < bands->width; x += step) {
      const uint64_t pixel = FramePixel(frame.rows, x, y);
      bool isSame = false;
      if (frame.format == GUID_WICPixelFormat16bppGrayHalf) {
        const double value = HalfToDouble(static_cast<uint16_t>(pixel));
        isSame = value == bands->Number(x, y, 0) || std::isnan(value);
      } else {
        isSame = pixel == PixelOf(*bands, meaning, frame.format, x, y);
      }
      if (!isSame && different++ == 0) {
        ADD_FAILURE() << "x " << x << ", y " << y << ": " << std::hex << pixel << " instead of "
                      << PixelOf(*bands, meaning, frame.format, x, y);
      }
    }
  }
  EXPECT_EQ(different, 0u) << "of " << bands->width * bands->height;
  return true;
}

TEST(TiffPeer, Pixels_Should_BeThoseOfAnotherReader_When_FromTheCorpus) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (std::system("gdal_translate --version >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "gdal_translate is not installed";
  const TempFolder folder;
  int compared = 0;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const std::string& path = entry.at("path");
    const bool isTiff = path.ends_with(".tif") || path.ends_with(".tiff");
    if (isTiff && entry.at("expected") != "must-be-refused" && ExpectAsPeer(path, folder))
      compared++;
  }
  EXPECT_GE(compared, 80);
  std::printf("%d files compared\n", compared);
}

}  // namespace
}  // namespace rasterkit::test
