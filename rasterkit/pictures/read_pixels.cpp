#include <algorithm>
#include <atomic>
#include <utility>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/own_stages.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// Part of the work that comes before the first row, at most.
constexpr double kBegun = 0.5;

}  // namespace

/// Which part of a flow failed, as the threads saw it.
struct PictureFlow::Faults {
  std::atomic<bool> ofSource = false, ofTaker = false;
};

namespace {

/// Calls `work`; its errors get the name of the source.
template <class Work>
void Named(const PictureSource& source, std::atomic<bool>& hasFailed, const Work& work) {
  try {
    work();
  } catch (Error& error) {
    hasFailed = true;
    error.AttachFile(source.File());
    throw;
  }
}

class NamedRows : public RowReader {
 public:
  NamedRows(const PictureSource& source, std::unique_ptr<RowReader> reader,
            std::atomic<bool>& hasFailed)
      : source_(source), reader_(std::move(reader)), hasFailed_(hasFailed) {}

  int Width() const override { return reader_->Width(); }
  int Height() const override { return reader_->Height(); }
  RowAccess Access() const override { return reader_->Access(); }
  int BlockRows() const override { return reader_->BlockRows(); }
  const Pixels& Like() const override { return reader_->Like(); }
  void Read(int left, int top, Pixels& target) override {
    Named(source_, hasFailed_, [&] { reader_->Read(left, top, target); });
  }
  void Finish(CodecReport& report) override {
    Named(source_, hasFailed_, [&] { reader_->Finish(report); });
  }

 private:
  const PictureSource& source_;
  const std::unique_ptr<RowReader> reader_;
  std::atomic<bool>& hasFailed_;
};

/// Reads all rows; returns the last band.
Pixels ReadInBands(RowReader& reader, int rowsOfBand) {
  const int height = reader.Height(), step = std::max(1, rowsOfBand);
  Pixels rows;
  for (int top = 0; top < height; top += step) {
    RequireTime();
    const int count = std::min(step, height - top);
    if (top == 0 || count < step) rows = NewPixels(reader.Like(), reader.Width(), count);
    reader.Read(0, top, rows);
  }
  return rows;
}

/// Throws what reading the whole source throws.
void RequireReadable(const PictureSource& source, int threads) {
  if (source.IsInMemory()) return;
  std::atomic<bool> unused;
  Named(source, unused, [&] {
    constexpr int kLeastRows = 64;
    CodecReport report;
    const std::unique_ptr<RowReader> reader = source.OpenRows(threads);
    if (!reader) {
      source.ReadPixels(threads, report);
      return;
    }
    ReadInBands(*reader, std::max(kLeastRows, reader->BlockRows()));
    reader->Finish(report);
  });
}

}  // namespace

Stages StagesOf(const PictureState& state) {
  Stages stages = state.stages;
  if (state.smaller) std::ranges::copy(state.smaller->stages, stages.begin());
  return stages;
}

PictureFlow::PictureFlow(const PictureSource& source, Stages stages, const FlowSettings& settings)
    : source_(source),
      stages_(std::move(stages)),
      settings_(settings),
      faults_(std::make_shared<Faults>()) {}

PictureFlow::PictureFlow(const PictureSource& source, const PictureState& state,
                         const FlowSettings& settings)
    : PictureFlow(source, StagesOf(state), settings) {
  if (!state.smaller) return;
  smaller_ = state.smaller->form;
  const auto count = static_cast<ptrdiff_t>(state.smaller->stages.size());
  own_.assign(state.stages.begin(), state.stages.begin() + count);
}

PictureFlow::~PictureFlow() = default;

const Pixels& PictureFlow::Stored() {
  if (!reader_) OpenReader();
  return reader_->Like();
}

void PictureFlow::OpenReader() {
  Named(source_, faults_->ofSource, [&] {
    RequireTime();
    if (smaller_ && smaller_->extraPage && !OpenCopy()) {
      smaller_.reset();
      std::ranges::copy(own_, stages_.begin());
    }
    if (reader_) return;
    reader_ = smaller_ ? source_.OpenSmaller(*smaller_, settings_.threads)
                       : source_.OpenRows(settings_.threads);
    // Rows in memory have no errors; the flow takes them where they are.
    if (!reader_) {
      reader_ = RowsInMemory(ReadWhole());
    } else if (!source_.IsInMemory()) {
      reader_ = std::make_unique<NamedRows>(source_, std::move(reader_), faults_->ofSource);
    }
  });
}

/// A smaller copy that is damaged says nothing about its page, from which the rows come then.
/// Returns false for one; opens a whole copy, which is decoded once unless it is large.
bool PictureFlow::OpenCopy() {
  constexpr uint64_t kMostHeld = uint64_t{64} << 20;
  try {
    const std::unique_ptr<RowReader> copy = source_.OpenSmaller(*smaller_, settings_.threads);
    CodecReport report;
    Pixels rows;
    bool isHeld = true;
    if (!copy) {
      rows = source_.ReadExtraPage(smaller_->extraPage.value(), settings_.threads, report);
    } else {
      const int height = copy->Height();
      isHeld = BytesOfPixels(copy->Like(), copy->Width(), height) <= kMostHeld;
      rows = ReadInBands(*copy, isHeld ? height : copy->BlockRows());
      copy->Finish(report);
    }
    // Words about a copy do not belong to the page.
    if (!report.warnings.empty()) return false;
    if (!isHeld) return true;
    reader_ = RowsInMemory(std::move(rows));
    return true;
  } catch (const FormatError&) {
    return false;
  } catch (const UnsupportedError&) {
    return false;
  }
}

Pixels PictureFlow::ReadWhole() {
  if (!smaller_) return source_.ReadPixels(settings_.threads, whole_);
  return source_.ReadExtraPage(smaller_->extraPage.value(), settings_.threads, whole_);
}

void PictureFlow::Add(const Stages& stages) {
  stages_.insert(stages_.end(), stages.begin(), stages.end());
}

/// A change that refuses the pixels does not fit the picture: the file is not damaged. Other errors
/// are none of the source and get no name here.
template <class Work>
void PictureFlow::Guard(const Work& work) {
  try {
    work();
  } catch (const FormatError& error) {
    if (faults_->ofSource || faults_->ofTaker) throw;
    // A change may refuse the kind of the pixels before they are read; a file that cannot be read
    // is the greater fault.
    RequireReadable(source_, settings_.threads);
    throw RangeError(error.Reason(), source_.File());
  } catch (const RangeError&) {
    if (!faults_->ofSource && !faults_->ofTaker) RequireReadable(source_, settings_.threads);
    throw;
  } catch (LimitError& error) {
    // The rows that the flow holds for a picture are decided by its file.
    if (!faults_->ofTaker) error.AttachFile(source_.File());
    throw;
  }
}

StageRun PictureFlow::Part(const StageRun& run, double end) {
  if (!run.progress) return {run.threads, {}};
  return {run.threads, [this, &run, from = done_, end](double done) {
            done_ = from + (end - from) * done;
            run.progress(done_);
          }};
}

void PictureFlow::Begin(const StageRun& run) {
  Stored();
  flow_ = std::make_unique<BandFlow>(std::move(reader_), std::move(stages_), settings_);
  Guard([&] { flow_->Begin(Part(run, kBegun)); });
}

void PictureFlow::Run(const StageRun& run, const Take& take) {
  const auto guarded = [&](Pixels& rows, int top) {
    try {
      take(rows, top);
    } catch (...) {
      faults_->ofTaker = true;
      throw;
    }
  };
  Guard([&] { flow_->Run(Part(run, 1), guarded); });
  if (run.progress) run.progress(1);
}

Pixels PictureFlow::Whole(const StageRun& run) {
  Pixels whole;
  Guard([&] { whole = flow_->Whole(Part(run, 1)); });
  if (run.progress) run.progress(1);
  return whole;
}

void PictureFlow::Finish(CodecReport& report, Changes& changes) {
  report.Append(std::exchange(whole_, {}));
  Guard([&] { flow_->Finish(report, changes); });
}

Pixels ReadPixels(const PictureSource& source, const PictureState& state,
                  const FlowSettings& settings, const StageRun& run, Changes& changes) {
  PictureFlow flow(source, state, settings);
  flow.Begin(run);
  Pixels pixels = flow.Whole(run);
  CodecReport unused;
  flow.Finish(unused, changes);
  std::visit([&](auto& rows) { rows.resolution = state.metadata.resolution; }, pixels);
  return pixels;
}

namespace {

std::shared_ptr<const Stage> VisibleStageOf(const PictureState& state) {
  return VisibleStage({state.width, state.height}, state.placement.noData, state.stretch);
}

}  // namespace

void TakeVisibleRows(const Picture& picture, const FlowSettings& settings, const StageRun& run,
                     Changes& changes, const std::function<void(Raster& rows, int top)>& take) {
  const PictureState& state = PictureParts::State(picture);
  PictureFlow flow(*PictureParts::Source(picture), state, settings);
  if (!state.isRaster) flow.Add({VisibleStageOf(state)});
  flow.Begin(run);
  if (!std::holds_alternative<Raster>(flow.Like())) {
    // The header foretold other pixels.
    Raster rows = VisibleRowsOf(picture, settings, run, changes);
    return take(rows, 0);
  }
  flow.Run(run, [&](Pixels& rows, int top) {
    auto& raster = std::get<Raster>(rows);
    raster.resolution = state.metadata.resolution;
    take(raster, top);
  });
  CodecReport unused;
  flow.Finish(unused, changes);
}

Raster VisibleRowsOf(const Picture& picture, const FlowSettings& settings, const StageRun& run,
                     Changes& changes) {
  const PictureState& state = PictureParts::State(picture);
  PictureFlow flow(*PictureParts::Source(picture), state, settings);
  if (!state.isRaster) flow.Add({VisibleStageOf(state)});
  flow.Begin(run);
  Pixels pixels = flow.Whole(run);
  CodecReport unused;
  flow.Finish(unused, changes);
  std::visit([&](auto& rows) { rows.resolution = state.metadata.resolution; }, pixels);
  // A raster unless the header foretold other pixels.
  return VisiblePixels(std::move(pixels), state.placement.noData, changes, state.stretch);
}

namespace {

PixelLayout NumbersLayout(const Raster& rows) {
  Pixels like = Raster(rows.Format(), 1, 1);
  std::get<Raster>(like).CopyProperties(rows);
  const PixelLayout layout = LayoutOf(like);
  if (layout.bits == 5 || layout.bits == 6) {
    throw UnsupportedError("15- and 16-bit pixels are no whole bytes per sample");
  }
  return layout;
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

void FillNumbers(const Raster& rows, Samples& samples, int top) {
  const int bands = samples.Layout().bands;
  for (int y = 0; y < rows.Height(); ++y) {
    RequireTime();
    if (IsIndexed(rows.Format())) {
      UnpackRow(rows, y, samples.Row(top + y));
    } else {
      ExchangeRow(rows.Row(y), rows.Width(), bands, samples.Row(top + y));
    }
  }
}

}  // namespace

Samples SamplesOf(const Raster& rows) {
  Samples samples(NumbersLayout(rows), rows.Width(), rows.Height());
  samples.resolution = rows.resolution;
  FillNumbers(rows, samples, 0);
  return samples;
}

Samples NumbersOf(const PictureSource& source, const PictureState& state,
                  const FlowSettings& settings, const StageRun& run, Changes& changes) {
  PictureFlow flow(source, state, settings);
  flow.Begin(run);
  std::optional<Samples> samples;
  if (const auto* like = std::get_if<Raster>(&flow.Like())) {
    const Sides size = flow.Size();
    samples.emplace(NumbersLayout(*like), size.width, size.height);
    flow.Run(run,
             [&](Pixels& rows, int top) { FillNumbers(std::get<Raster>(rows), *samples, top); });
  } else {
    samples = std::get<Samples>(flow.Whole(run));
  }
  CodecReport unused;
  flow.Finish(unused, changes);
  samples->resolution = state.metadata.resolution;
  return std::move(*samples);
}

}  // namespace rasterkit::detail
