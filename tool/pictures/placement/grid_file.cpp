#include "tool/pictures/placement/grid_file.h"

#include <charconv>
#include <cmath>
#include <new>

#include <fmt/core.h>

#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/isolated_pixels.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/half.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/printable.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/placement/position_tags.h"
#include "tool/reports/layout_facts.h"

namespace rasterkit::tool {
namespace {

// Values of the tag sample format.
constexpr int kFloatingPoint = 3;

/// Only TIFF files have tags; the codec reads other types as well.
template <class Source>
TiffFacts FactsOf(Source& source) {
  PictureReading reading;
  reading.withPixels = false;
  reading.isolation = ReadingIsolation();
  LoadedFrame picture;
  ReadPicture(picture, source, reading);
  return picture.tiff.value_or(TiffFacts());
}

bool IsComplex(const TiffFacts& facts) {
  constexpr int kComplexInteger = 5, kComplexFloat = 6;
  return facts.sampleFormat == kComplexInteger || facts.sampleFormat == kComplexFloat;
}

void Rewind(TStream& stream) {
  stream.SetPosition(0);
}
void Rewind(const std::string&) {}

/// Numbers that are read as the file stores them. Rows of a bitmap have no place for some types and
/// turn those over whose least number is white.
bool HasNumbers(const TiffFacts& facts) {
  constexpr int kBlackIsZero = 1, kUnsigned = 1, kSigned = 2, kByte = 8;
  const bool isFloat = facts.sampleFormat == kFloatingPoint;
  const bool isInteger = facts.sampleFormat == kUnsigned || facts.sampleFormat == kSigned;
  if (facts.width == 0 || facts.photometric > kBlackIsZero) return false;
  const int bits = facts.bitsPerSample;
  constexpr int kHalf = 16, kThreeBytes = 24;
  if (isFloat) return bits >= kHalf && bits != kThreeBytes;
  if (!isInteger || bits < kByte) return false;
  // Bytes without a number for missing data are grays.
  return bits > kByte || facts.sampleFormat == kSigned || !facts.noData.empty();
}

Pixels DecodeNumbers(TStream& stream, CodecReport& report) {
  return DecodePixels(stream, SniffPictureType(stream), {}, &report);
}
Pixels DecodeNumbers(const std::string& file, CodecReport& report) {
  return detail::DecodePixelsIsolated(detail::OpenForWorker(file), 1, &report,
                                      ContinueUnlessInterrupted);
}

/// Bytes as the file stores them: those whose least number is white were turned round.
Samples BytesOfGrays(const Raster& rows, const TiffFacts& facts) {
  constexpr uint8_t kWhite = 255;
  PixelLayout layout;
  layout.model = ColorModel::gray;
  layout.bands = 1;
  Samples bytes(layout, rows.Width(), rows.Height());
  const uint8_t mask = facts.photometric == 0 ? kWhite : uint8_t{0};
  for (int y = 0; y < rows.Height(); ++y) {
    for (int x = 0; x < rows.Width(); ++x) {
      bytes.Row(y)[x] = static_cast<uint8_t>(rows.Row(y)[x] ^ mask);
    }
  }
  return bytes;
}

bool Occurs(const Grid& grid, const NoData& noData) {
  for (int y = 0; y < grid.Height(); ++y) {
    for (int x = 0; x < grid.Width(); ++x) {
      if (noData.Is(grid.At(x, y))) return true;
    }
  }
  return false;
}

/// Halves are so coarse that the number of the file is often none of them: the one that its writer
/// rounded or cut it to is in the grid.
void FitToHalves(GridFile& result) {
  double number = 0;
  const std::string& text = result.facts.noData;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return;
  const uint16_t cut = detail::HalfTowardZero(number).bits, nearest = detail::HalfOf(number);
  if (HalfToDouble(cut) == number) return;
  for (const uint16_t half : {cut, nearest}) {
    result.noData = NoData(fmt::format("{}", HalfToDouble(half)), GridType::float16);
    if (Occurs(*result.grid, result.noData)) break;
  }
}

void TakeNoData(GridFile& result) {
  result.noData = NoData(result.facts.noData, result.grid->Type());
  if (result.grid->Type() == GridType::float16) FitToHalves(result);
  if (!result.noData.IsUnreadable()) return;
  result.warnings.push_back("the value for no data is not a number: '" +
                            Printable(result.facts.noData) + "'");
}

/// Reads the same values as the library's ReadGeoTiffIntoBitmap, which cannot report damage, and
/// those of other number types. `source` is a stream or the name of a file.
template <class Source>
void LoadSource(GridFile& result, Source& source) {
  result.facts = FactsOf(source);
  if (IsComplex(result.facts)) {
    throw UnsupportedError("TIFF: grids of complex numbers are not supported");
  }
  Rewind(source);
  if (HasNumbers(result.facts)) {
    CodecReport damage;
    Pixels pixels = DecodeNumbers(source, damage);
    // Grays with opacity are a picture.
    if (LayoutOf(pixels).alpha != AlphaKind::none) return;
    result.warnings = std::move(damage.warnings);
    auto* const numbers = std::get_if<Samples>(&pixels);
    result.grid.emplace(numbers != nullptr ? std::move(*numbers)
                                           : BytesOfGrays(std::get<Raster>(pixels), result.facts));
    return TakeNoData(result);
  }
  FrameOptions options;
  options.isolation = ReadingIsolation();
  CodecReport report;
  ImagingFrame frame = DecodeFrame(source, options, &report);
  const auto type = GridTypeOf(frame.format);
  if (!type) return;
  result.warnings = std::move(report.warnings);
  result.grid.emplace(std::move(frame.rows), *type);
  TakeNoData(result);
}

TiffFacts FactsOf(const Picture& picture) {
  constexpr uint16_t kUnsigned = 1, kSigned = 2;
  const PixelLayout& layout = picture.Layout();
  TiffFacts facts;
  facts.width = static_cast<uint32_t>(picture.Width());
  facts.height = static_cast<uint32_t>(picture.Height());
  facts.samples = static_cast<uint16_t>(layout.bands);
  facts.bitsPerSample = static_cast<uint16_t>(layout.bits);
  facts.sampleFormat = layout.type == NumberType::int16 || layout.type == NumberType::int32 ||
                               layout.type == NumberType::int8
                           ? kSigned
                           : kUnsigned;
  facts.pages = picture.Pages();
  facts.noData = picture.GetPlacement().noData;
  return facts;
}

/// Reads a file of a type that pictures alone know. `source` is a stream, the bytes or the name of
/// a file.
template <class Opened, class Source>
void LoadPictureSource(GridFile& result, const Opened& opened, Source& source) {
  OpenOptions options;
  options.isolation = ReadingIsolation();
  const Picture picture = Picture::Open(opened, options);
  result.facts = FactsOf(picture);
  result.positions = picture.GetPlacement().stated;
  result.warnings = picture.GetPlacement().warnings;
  if (GridName(picture.Layout(), picture.SourceType()) == "none") return;
  CodecReport damage;
  Pixels pixels = DecodeNumbers(source, damage);
  result.warnings.insert(result.warnings.end(), damage.warnings.begin(), damage.warnings.end());
  result.warnings.insert(result.warnings.end(), damage.damage.begin(), damage.damage.end());
  auto* const numbers = std::get_if<Samples>(&pixels);
  if (numbers == nullptr) return;
  result.grid.emplace(std::move(*numbers));
  TakeNoData(result);
}

bool IsForPicturesOnly(TStream& stream) {
  const Codec* const codec = FindCodec(SniffPictureType(stream));
  return codec != nullptr && codec->IsForPicturesOnly();
}

/// A pipe has no size and cannot be read twice.
void Load(GridFile& result, const std::string& file) {
  const InterruptibleInput waiting(file);
  TFileStream stream(file);
  const bool isFile = stream.Size() > 0;
  const bool isIsolated = ReadingIsolation() == Isolation::process;
  if (isFile && IsForPicturesOnly(stream)) {
    return isIsolated ? LoadPictureSource(result, file, file)
                      : LoadPictureSource(result, file, stream);
  }
  if (isFile && isIsolated) return LoadSource(result, file);
  if (isFile) return LoadSource(result, stream);
  std::vector<uint8_t> bytes = ReadUnsizedPicture(stream);
  TMemoryStream memory(bytes);
  if (IsForPicturesOnly(memory)) return LoadPictureSource(result, bytes, memory);
  LoadSource(result, memory);
}

/// A world file that cannot be read gives no position; the tags are used.
void AddPositions(GridFile& result, const std::string& file) {
  if (!result.positions.empty()) return;
  Placement placement =
      ReadPlacement(file, PositionTagsOf(result.facts), static_cast<int>(result.facts.width),
                    static_cast<int>(result.facts.height));
  result.positions = std::move(placement.stated);
  result.warnings.insert(result.warnings.end(), placement.warnings.begin(),
                         placement.warnings.end());
}

}  // namespace

GridFile LoadGridFile(const std::string& file) {
  GridFile result;
  const std::string name = ReadableName(file);
  try {
    Load(result, name);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
  if (result.grid) AddPositions(result, name);
  return result;
}

std::string SamplesText(const TiffFacts& facts) {
  constexpr const char* kKinds[] = {"", ", unsigned", ", signed", ", floating-point"};
  const bool isNamed =
      facts.bitsPerSample > 8 && facts.sampleFormat >= 1 && facts.sampleFormat <= kFloatingPoint;
  return fmt::format("{} sample{}, {} bits per pixel{}", facts.samples,
                     facts.samples == 1 ? "" : "s", facts.bitsPerSample,
                     isNamed ? kKinds[facts.sampleFormat] : "");
}

}  // namespace rasterkit::tool
