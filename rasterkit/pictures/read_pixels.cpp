#include <algorithm>
#include <cstring>
#include <utility>

#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// Part of the work that reading is, as long as there are stages.
constexpr double kReading = 0.5;

StageRun PartOf(const StageRun& run, double from, double to) {
  if (!run.progress) return {run.threads, {}};
  return {run.threads, [&run, from, to](double done) { run.progress(from + (to - from) * done); }};
}

void UnpackRow(const Raster& rows, int y, uint8_t* target) {
  const int bits = StoredBitsPerPixel(rows.Format());
  const int perByte = 8 / bits;
  const unsigned mask = (1u << bits) - 1;
  for (int x = 0; x < rows.Width(); ++x) {
    const int shift = 8 - bits * (x % perByte + 1);
    target[x] =
        static_cast<uint8_t>(static_cast<unsigned>(rows.Row(y)[x / perByte]) >> shift & mask);
  }
}

/// B G R of each pixel become R G B; a fourth byte stays where it is.
void ExchangeRow(const uint8_t* row, int width, int bands, uint8_t* target) {
  for (int x = 0; x < width; ++x, row += bands, target += bands) {
    target[0] = row[2];
    target[1] = row[1];
    target[2] = row[0];
    if (bands == 4) target[3] = row[3];
  }
}

Pixels ReadSource(const PictureSource& source, const PictureState& state, int threads,
                  CodecReport& report) {
  if (!state.smaller) return source.ReadPixels(threads, report);
  return source.ReadSmaller(state.smaller->form, threads, report);
}

/// The stages for the pixels that are read.
Stages StagesOf(const PictureState& state) {
  Stages stages = state.stages;
  if (state.smaller) std::ranges::copy(state.smaller->stages, stages.begin());
  return stages;
}

/// A change that refuses the pixels does not fit the picture: the file is not damaged. Other errors
/// are none of the source and get no name here.
Pixels Changed(Pixels pixels, const PictureSource& source, const PictureState& state,
               const StageRun& run, Changes& changes) {
  try {
    return RunStages(std::move(pixels), StagesOf(state), run, changes);
  } catch (const FormatError& error) {
    throw RangeError(error.Reason(), source.File());
  }
}

}  // namespace

DecodedPicture ReadPixels(const PictureSource& source, const PictureState& state,
                          const StageRun& run, Changes& changes) {
  DecodedPicture read;
  const double border = state.stages.empty() ? 1 : kReading;
  try {
    RequireTime();
    read.pixels = ReadSource(source, state, run.threads, read.report);
  } catch (Error& error) {
    error.AttachFile(source.File());
    throw;
  }
  if (run.progress) run.progress(border);
  if (!state.stages.empty()) {
    read.pixels = Changed(std::move(read.pixels), source, state, PartOf(run, border, 1), changes);
  }
  std::visit([&](auto& rows) { rows.resolution = state.metadata.resolution; }, read.pixels);
  return read;
}

Raster VisibleRowsOf(const Picture& picture, const StageRun& run, Changes& changes) {
  const PictureState& state = PictureParts::State(picture);
  Pixels pixels = ReadPixels(*PictureParts::Source(picture), state, run, changes).pixels;
  if (auto* rows = std::get_if<Raster>(&pixels)) return std::move(*rows);
  return VisiblePixels(std::move(pixels), state.placement.noData, changes, state.stretch);
}

Samples SamplesOf(const Raster& rows) {
  Pixels like = Raster(rows.Format(), 1, 1);
  std::get<Raster>(like).CopyProperties(rows);
  const PixelLayout layout = LayoutOf(like);
  if (layout.bits == 5 || layout.bits == 6) {
    throw UnsupportedError("15- and 16-bit pixels are no whole bytes per sample");
  }
  Samples samples(layout, rows.Width(), rows.Height());
  samples.resolution = rows.resolution;
  for (int y = 0; y < rows.Height(); ++y) {
    RequireTime();
    if (IsIndexed(rows.Format())) {
      UnpackRow(rows, y, samples.Row(y));
    } else {
      ExchangeRow(rows.Row(y), rows.Width(), layout.bands, samples.Row(y));
    }
  }
  return samples;
}

}  // namespace rasterkit::detail
