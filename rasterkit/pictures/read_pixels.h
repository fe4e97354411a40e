#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// The stages for the pixels that are read.
Stages StagesOf(const PictureState& state);

/// The rows of a picture after its steps, band after band. Works under the limits of the calling
/// thread. Errors of the source have its name.
class PictureFlow {
 public:
  using Take = std::function<void(Pixels& rows, int top)>;

  /// Makes the rows of `stages` from those of the source.
  PictureFlow(const PictureSource& source, Stages stages, const FlowSettings& settings);
  /// Those of the picture, perhaps from a smaller form of the source.
  PictureFlow(const PictureSource& source, const PictureState& state, const FlowSettings& settings);
  ~PictureFlow();

  /// The kind of the pixels as stored. Opens the source.
  const Pixels& Stored();
  /// Adds stages behind the others, before Begin.
  void Add(const Stages& stages);
  /// Sees whatever must be seen before the first row; then kind and size of the result are known.
  /// `run` gets the progress of the whole flow.
  void Begin(const StageRun& run);
  const Pixels& Like() const { return flow_->Like(); }
  Sides Size() const { return flow_->Size(); }
  /// Hands out all rows from top to bottom, on one thread at a time, which need not be the calling
  /// one. The rows are valid during the call; `take` may change them.
  void Run(const StageRun& run, const Take& take);
  /// All rows together, instead of Run.
  Pixels Whole(const StageRun& run);
  /// What the decoder noticed and what the stages lost. Throws FileError if the source changed.
  void Finish(CodecReport& report, Changes& changes);

 private:
  struct Faults;
  void OpenReader();
  bool OpenCopy();
  Pixels ReadWhole();
  template <class Work>
  void Guard(const Work& work);
  StageRun Part(const StageRun& run, double end);

  const PictureSource& source_;
  Stages stages_;
  const FlowSettings settings_;
  std::optional<SmallerForm> smaller_;
  /// The stages for the picture itself, in place of the first ones for its smaller form.
  Stages own_;
  const std::shared_ptr<Faults> faults_;
  std::unique_ptr<RowReader> reader_;
  /// What was noticed in a source that was read as a whole.
  CodecReport whole_;
  std::unique_ptr<BandFlow> flow_;
  double done_ = 0;
};

/// How a picture flows that another one needs.
inline FlowSettings FlowOf(const StageRun& run) {
  FlowSettings settings;
  settings.threads = run.threads;
  return settings;
}

/// Pixels of a picture after its steps, with the resolution that follows.
Pixels ReadPixels(const PictureSource& source, const PictureState& state,
                  const FlowSettings& settings, const StageRun& run, Changes& changes);

/// The same, to look at.
Raster VisibleRowsOf(const Picture& picture, const FlowSettings& settings, const StageRun& run,
                     Changes& changes);

/// The same, from top to bottom; see PictureFlow::Run.
void TakeVisibleRows(const Picture& picture, const FlowSettings& settings, const StageRun& run,
                     Changes& changes, const std::function<void(Raster& rows, int top)>& take);

/// The numbers of a picture after its steps.
Samples NumbersOf(const PictureSource& source, const PictureState& state,
                  const FlowSettings& settings, const StageRun& run, Changes& changes);

/// Makes numbers of colors: a row of them has the samples of each pixel together, red before blue.
Samples SamplesOf(const Raster& rows);

}  // namespace rasterkit::detail
