// Pictures that go through random steps in bands: the pixels, errors and losses of the same steps
// on whole pictures.

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"
#include "tests/bands/flow/random_steps.h"

using namespace rasterkit;

namespace {

constexpr int kMostSide = 70;

/// Numbers from the fuzzer's bytes, then zeros.
class Numbers {
 public:
  explicit Numbers(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  int Below(int below) {
    unsigned number = Byte();
    if (below > 256) number = number << 8 | Byte();
    return static_cast<int>(number % static_cast<unsigned>(below));
  }
  uint8_t Byte() {
    if (bytes_.empty()) return 0;
    const uint8_t byte = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return byte;
  }

 private:
  std::span<const uint8_t> bytes_;
};

/// A reader with as little access as it says.
class LimitedRows : public RowReader {
 public:
  LimitedRows(const Pixels& source, RowAccess access, int blockRows)
      : source_(source), access_(access), blockRows_(blockRows) {}

  int Width() const override { return WidthOf(source_); }
  int Height() const override { return HeightOf(source_); }
  RowAccess Access() const override { return access_; }
  int BlockRows() const override { return blockRows_; }
  const Pixels& Like() const override { return source_; }
  void Read(int left, int top, Pixels& target) override {
    Require(access_ != RowAccess::rising || top >= end_);
    Require(access_ == RowAccess::anyParts || (left == 0 && WidthOf(target) == Width()));
    end_ = top + HeightOf(target);
    CopyPart(source_, {left, top, WidthOf(target), HeightOf(target)}, target, 0, 0);
  }
  void Finish(CodecReport&) override {}

 private:
  const Pixels& source_;
  const RowAccess access_;
  const int blockRows_;
  int end_ = 0;
};

uint8_t* RowOf(Pixels& pixels, int y) {
  return std::visit([y](auto& rows) { return rows.Row(y); }, pixels);
}

size_t StrideOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Stride(); }, pixels);
}

Pixels PickPixels(Numbers& numbers) {
  const int width = 1 + numbers.Below(kMostSide), height = 1 + numbers.Below(kMostSide);
  constexpr TPixelFormat kFormats[] = {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit};
  const int kind = numbers.Below(10);
  Pixels pixels;
  if (kind < 7) {
    Raster raster(kFormats[kind], width, height);
    if (numbers.Below(2) == 0 && kind == 6) raster.alphaFormat = afDefined;
    if (numbers.Below(4) == 0) raster.transparentColor = clWhite;
    pixels = std::move(raster);
  } else {
    PixelLayout layout;
    layout.type = kind == 7 ? NumberType::uint8 : NumberType::uint16;
    layout.bits = kind == 7 ? 8 : 16;
    layout.bands = kind == 9 ? 3 : 1;
    layout.model = kind == 9 ? ColorModel::rgb : ColorModel::gray;
    pixels = Samples(layout, width, height);
  }
  unsigned state = numbers.Byte() * 2u + 1;
  for (int y = 0; y < height; ++y) {
    for (size_t i = 0; i < StrideOf(pixels); ++i) {
      state = state * 1664525u + 1013904223u;
      RowOf(pixels, y)[i] = static_cast<uint8_t>(state >> 24);
    }
  }
  if (auto* raster = std::get_if<Raster>(&pixels)) raster->ClearPadding();
  return pixels;
}

struct Outcome {
  Pixels pixels;
  std::string text;
};

std::string TextOf(const Changes& changes) {
  std::string text;
  for (const std::string& note : changes.notes) text += note + "\n";
  for (const Loss& loss : changes.losses) text += loss.what + ": " + loss.why + "\n";
  return text;
}

Outcome Whole(const Pixels& source, const Stages& stages) {
  Outcome outcome;
  try {
    Changes changes;
    Pixels copy = NewPixels(source, WidthOf(source), HeightOf(source));
    CopyPart(source, {0, 0, WidthOf(source), HeightOf(source)}, copy, 0, 0);
    outcome.pixels = RunStages(std::move(copy), stages, {}, changes);
    outcome.text = TextOf(changes);
  } catch (const Error& error) {
    outcome.text = std::string("error: ") + error.what();
  }
  return outcome;
}

Outcome InBands(std::unique_ptr<RowReader> reader, const Stages& stages,
                const FlowSettings& settings) {
  Outcome outcome;
  try {
    const StageRun run{settings.threads, {}};
    BandFlow flow(std::move(reader), stages, settings);
    flow.Begin(run);
    outcome.pixels = NewPixels(flow.Like(), flow.Size().width, flow.Size().height);
    flow.Run(run, [&](Pixels& rows, int top) {
      CopyPart(rows, {0, 0, WidthOf(rows), HeightOf(rows)}, outcome.pixels, 0, top);
    });
    CodecReport report;
    Changes changes;
    flow.Finish(report, changes);
    outcome.text = TextOf(changes);
  } catch (const Error& error) {
    outcome.text = std::string("error: ") + error.what();
  }
  return outcome;
}

void RequireSame(Pixels& expected, Pixels& made) {
  Require(WidthOf(expected) == WidthOf(made) && HeightOf(expected) == HeightOf(made));
  Require(expected.index() == made.index() && StrideOf(expected) == StrideOf(made));
  for (int y = 0; y < HeightOf(expected); ++y) {
    Require(std::memcmp(RowOf(expected, y), RowOf(made, y), StrideOf(expected)) == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Numbers numbers({data, size});
  const Pixels source = PickPixels(numbers);
  FlowSettings settings;
  settings.rows = numbers.Below(kMostSide);
  settings.threads = 1 + numbers.Below(3);
  const uint64_t held[] = {settings.heldBytes, 0, 5000};
  settings.heldBytes = held[numbers.Below(3)];
  const auto access = static_cast<RowAccess>(numbers.Below(3));
  const int blockRows = 1 + numbers.Below(9);
  const int count = 1 + numbers.Below(4);
  const test::RandomSteps steps = test::PickSteps([&](int below) { return numbers.Below(below); },
                                                  {WidthOf(source), HeightOf(source)},
                                                  std::holds_alternative<Raster>(source), count);
  Outcome expected = Whole(source, steps.stages);
  Outcome made =
      InBands(std::make_unique<LimitedRows>(source, access, blockRows), steps.stages, settings);
  Require(expected.text == made.text);
  if (expected.text.rfind("error: ", 0) != 0) RequireSame(expected.pixels, made.pixels);
  return 0;
}
