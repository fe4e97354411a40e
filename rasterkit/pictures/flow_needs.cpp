#include <algorithm>
#include <thread>
#include <utility>

#include <rasterkit/codecs/png/rows/png_inflate.h>
#include <rasterkit/pictures/flow_needs.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/pictures/sources/sample_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr uint64_t kMebibyte = uint64_t{1} << 20;
/// As runs without a number of threads have them.
constexpr unsigned kMostThreads = 64;
/// What decoders and encoders hold beside rows.
constexpr uint64_t kBeside = 48 * kMebibyte;

uint64_t BytesOf(const KindOfRows& rows) {
  return BytesOfRows(rows.layout, rows.sides.width, rows.sides.height);
}

/// The facts of pixels that are decoded as a whole.
class WholeRows : public RowReader {
 public:
  WholeRows(const PictureSource& source, Sides sides)
      : like_(SampleRows(source.Kind().layout, source.Kind().isRaster, 1, 1)), sides_(sides) {}

  int Width() const override { return sides_.width; }
  int Height() const override { return sides_.height; }
  RowAccess Access() const override { return RowAccess::anyParts; }
  const Pixels& Like() const override { return like_; }
  void Read(int, int, Pixels&) override {}
  void Finish(CodecReport&) override {}

 private:
  const Pixels like_;
  const Sides sides_;
};

/// Opens the rows; null if that shows a fault, which the save will name.
std::unique_ptr<RowReader> Opened(const PictureSource& source, const PictureState& state) {
  try {
    return state.smaller ? source.OpenSmaller(state.smaller->form, 1) : source.OpenRows(1);
  } catch (const Error&) {
    return nullptr;
  }
}

/// Decoders keep a few blocks of rows, as long as these are no pictures.
uint64_t BlockBytes(const RowReader& reader) {
  constexpr uint64_t kBlocks = 4, kMost = 64 * kMebibyte;
  return std::min(kMost,
                  kBlocks * BytesOfPixels(reader.Like(), reader.Width(), reader.BlockRows()));
}

/// A small file is unpacked in one call, if the limit of the process allows that.
uint64_t PngReadBytes(uint64_t before, int height, uint64_t fileBytes) {
  const uint64_t filtered = before + static_cast<uint64_t>(height);
  const bool isInOneCall =
      before <= kMostPngAtOnce && filtered <= CurrentLimits().processBytes / kPngPartInOneCall;
  return isInOneCall ? filtered + std::min(fileBytes, 2 * filtered) : 0;
}

/// The most that a flow holds on one thread or on all processors.
FlowNeeds MostNeeds(const RowReader& reader, const Stages& stages) {
  FlowSettings settings = UsualFlow();
  FlowNeeds needs = ForetellFlow(reader, stages, settings);
  settings.threads = ProcessorThreads();
  const FlowNeeds ofAll = ForetellFlow(reader, stages, settings);
  return {std::max(needs.memory, ofAll.memory), std::max(needs.scratch, ofAll.scratch)};
}

/// What is laid over a picture is read as a whole: its source with what unpacks it, and at most
/// four bytes per pixel.
uint64_t BytesOfOthers(const PictureState& state) {
  uint64_t bytes = 0;
  for (const MadeRows& made : state.madeByStages) {
    if (!made.over) continue;
    const uint64_t pixels = static_cast<uint64_t>(made.over->sides.width) *
                            static_cast<uint64_t>(made.over->sides.height);
    bytes += 3 * BytesOf(*made.over) + 4 * pixels;
  }
  return bytes;
}

}  // namespace

int ProcessorThreads() {
  return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, kMostThreads));
}

uint64_t PngWriteBytes(uint64_t after, int height) {
  // The packer's room for bytes that do not shrink.
  constexpr uint64_t kMoreShare = 1024, kStripes = 3;
  const uint64_t filtered = after + static_cast<uint64_t>(height);
  if (after <= kMostPngAtOnce) return 2 * filtered + filtered / kMoreShare + kMebibyte;
  const uint64_t rows = 2 * filtered / static_cast<uint64_t>(std::max(1, height));
  return kStripes * (static_cast<uint64_t>(ProcessorThreads()) * (kMebibyte + rows));
}

FlowSettings UsualFlow() {
  // Bands and the file that is written need memory, too.
  constexpr uint64_t kPart = 4;
  FlowSettings settings;
  settings.heldBytes = std::min(settings.heldBytes, CurrentLimits().processBytes / kPart);
  return settings;
}

FlowNeeds NeedsOf(const PictureSource& source, const PictureState& state, bool isWhole) {
  Sides sides{source.Header().width, source.Header().height};
  if (state.smaller) sides = {state.smaller->form.width, state.smaller->form.height};
  const uint64_t before = BytesOf({sides, source.Kind().layout});
  uint64_t memory = kBeside + BytesOfOthers(state);
  std::unique_ptr<RowReader> reader = Opened(source, state);
  if (reader) {
    if (!source.IsInMemory()) memory += BlockBytes(*reader);
    if (source.Type() == PictureType::png) {
      memory += PngReadBytes(before, sides.height, source.ByteCount());
    }
  } else {
    // The file is decoded from memory.
    reader = std::make_unique<WholeRows>(source, sides);
    memory += source.ByteCount() + 2 * before;
  }
  FlowNeeds needs;
  try {
    needs = MostNeeds(*reader, StagesOf(state));
  } catch (const Error&) {
    // A stage that refuses such pixels will say so.
    needs.memory = before;
  }
  needs.memory += memory;
  if (isWhole) needs.memory += BytesOfRows(state.layout, state.width, state.height);
  return needs;
}

}  // namespace rasterkit::detail
