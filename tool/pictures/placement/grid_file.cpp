#include "tool/pictures/placement/grid_file.h"

#include <new>

#include <fmt/core.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/command/printable.h"
#include "tool/pictures/placement/world_file.h"

namespace rasterkit::tool {
namespace {

// Values of the tag sample format.
constexpr int kFloatingPoint = 3;

/// Only TIFF files have tags; the codec reads other types as well.
TiffFacts FactsOf(TStream& stream) {
  TiffFacts facts;
  try {
    facts = ReadTiffFacts(stream);
  } catch (const FormatError&) {
  }
  stream.SetPosition(0);
  return facts;
}

/// Reads the same values as the library's ReadGeoTiffIntoBitmap, which cannot report damage.
void LoadStream(GridFile& result, TStream& stream) {
  result.facts = FactsOf(stream);
  CodecReport report;
  ImagingFrame frame = DecodeFrame(stream, {}, &report);
  const auto type = GridTypeOf(frame.format);
  if (!type) return;
  result.warnings = std::move(report.warnings);
  result.grid.emplace(std::move(frame.rows), *type);
  result.noData = NoData(result.facts.noData, *type);
  if (result.noData.IsUnreadable()) {
    result.warnings.push_back("the value for no data is not a number: '" +
                              Printable(result.facts.noData) + "'");
  }
}

/// A pipe has no size and cannot be read twice.
void Load(GridFile& result, const std::string& file) {
  const InterruptibleInput waiting(file);
  TFileStream stream(file);
  if (stream.Size() > 0) return LoadStream(result, stream);
  TMemoryStream memory(ReadUnsizedPicture(stream));
  LoadStream(result, memory);
}

/// A world file that cannot be read gives no position; the tags are used.
void AddPositions(GridFile& result, const std::string& file) {
  result.positions = PositionsOf(file, result.facts);
  const auto worldFile = FindWorldFile(file);
  if (worldFile && !PositionBeside(file)) {
    result.warnings.push_back(*worldFile + " does not begin with six numbers and is ignored");
  }
  if (const auto doubt = PositionDoubt(result.positions, static_cast<int>(result.facts.width),
                                       static_cast<int>(result.facts.height))) {
    result.warnings.push_back(*doubt);
  }
}

}  // namespace

GridFile LoadGridFile(const std::string& file) {
  GridFile result;
  try {
    Load(result, file);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
  if (result.grid) AddPositions(result, file);
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
