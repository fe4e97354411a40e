#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/pictures/open_source.h>
#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/pictures/reading/embedded_thumbnail.h>
#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/save_pages.h>
#include <rasterkit/pictures/save_picture.h>
#include <rasterkit/pictures/side_file_losses.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/placement/map_window.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// Reading to look at, up to the last step of the work.
constexpr double kSeen = 0.9;

}  // namespace

Picture::Picture(std::shared_ptr<const detail::PictureSource> source, bool turnsUpright)
    : source_(std::move(source)),
      state_(std::make_shared<const detail::PictureState>(detail::StateOf(*source_))) {
  if (!turnsUpright) return;
  for (Step& step : detail::StepsOfOrientation(source_->Header().orientation.value_or(1))) {
    Apply(std::move(step));
  }
  orientationSteps_ = steps_.size();
}

Picture::Picture(const Picture&) = default;
Picture::Picture(Picture&&) noexcept = default;
Picture::~Picture() = default;

Picture& Picture::operator=(Picture other) noexcept {
  source_ = std::move(other.source_);
  steps_ = std::move(other.steps_);
  orientationSteps_ = other.orientationSteps_;
  state_ = std::move(other.state_);
  return *this;
}

Picture Picture::Open(const std::string& file, const OpenOptions& options) {
  return Picture(detail::OpenSource(file, options), options.turnsUpright);
}
Picture Picture::Open(std::vector<uint8_t> bytes, const OpenOptions& options) {
  return Picture(detail::OpenSource(std::move(bytes), options), options.turnsUpright);
}
Picture Picture::Of(std::unique_ptr<TBitmap> rows) {
  return Picture(detail::SourceOf(std::move(rows)));
}
Picture Picture::Of(Samples rows) {
  return Picture(detail::SourceOf(std::move(rows)));
}

int Picture::Width() const {
  return state_->width;
}
int Picture::Height() const {
  return state_->height;
}
const PixelLayout& Picture::Layout() const {
  return state_->layout;
}
const Metadata& Picture::GetMetadata() const {
  return state_->metadata;
}
const Placement& Picture::GetPlacement() const {
  return state_->placement;
}
PictureType Picture::SourceType() const {
  return source_->Type();
}
const Form& Picture::SourceForm() const {
  return source_->Header().form;
}
const std::string& Picture::SourceFile() const {
  return source_->File();
}
int Picture::Pages() const {
  return std::max(source_->Header().pages, source_->Header().frames);
}
const std::vector<Step>& Picture::Steps() const {
  return steps_;
}

size_t Picture::OrientationSteps() const {
  return orientationSteps_;
}

Picture& Picture::Apply(Step step) {
  auto state = std::make_shared<detail::PictureState>(*state_);
  detail::AddStep(*state, *source_, step);
  detail::Follow(*state, *source_);
  steps_.push_back(std::move(step));
  state_ = std::move(state);
  return *this;
}

Picture& Picture::CropToMap(const MapRect& rect) {
  try {
    const std::optional<Affine> position = detail::PositionOf(*state_, *source_);
    if (!position) throw RangeError("the picture has no position on a map");
    const PixelWindow window =
        WindowOfMap({rect.minX, rect.minY}, {rect.maxX, rect.maxY}, *position, Width(), Height());
    return Apply(CropStep{window.left, window.top, window.width, window.height});
  } catch (Error& error) {
    error.AttachFile(SourceFile());
    throw;
  }
}

Picture& Picture::Combine(const Picture& other, const CombineOptions& options) {
  return Apply(CombineStep{std::make_shared<const Picture>(other), options});
}

Report Picture::Plan(const std::string& file, const SaveOptions& options) const {
  return detail::PlanOfFile(detail::PartsOf(*this, detail::TargetType(file, options), options),
                            file, options);
}

Report Picture::PlanStream(const SaveOptions& options) const {
  SaveOptions typed = options;
  if (!typed.type) typed.type = SourceType();
  const PictureType type = detail::TargetType({}, typed);
  return detail::ForeseeParts(detail::PartsOf(*this, type, typed), typed, false);
}

Report Picture::Save(const std::string& file, const SaveOptions& options, const Run& run) const {
  PendingSave save(*this, file, options, run);
  save.Commit();
  return save.Report();
}

Report Picture::Save(TStream& stream, const SaveOptions& options, const Run& run) const {
  detail::RunScope scope(run);
  SaveOptions typed = options;
  if (!typed.type) typed.type = SourceType();
  const PictureType type = detail::TargetType({}, typed);
  return detail::WriteMovedOrAnew(typed, [&](const SaveOptions& how) {
    return detail::WriteParts(stream, detail::PartsOf(*this, type, how), how, false, scope);
  });
}

std::unique_ptr<TBitmap> Picture::Bitmap(const Run& run) const {
  detail::RunScope scope(run);
  scope.Begin(kSeen, source_->Header().height);
  Changes unused;
  Raster rows = detail::VisibleRowsOf(*this, scope.Flow(), scope.Stages(), unused);
  rows.profile = state_->metadata.profile;
  auto bitmap = std::make_unique<TBitmap>(std::move(rows));
  scope.Finish();
  return bitmap;
}

std::optional<Picture> Picture::EmbeddedThumbnail(const OpenOptions& options,
                                                  const Run& run) const {
  const detail::RunScope scope(run);
  const PictureHeader& header = source_->Header();
  std::vector<uint8_t> jpeg = rasterkit::EmbeddedThumbnail(header.metadata);
  if (jpeg.empty()) return std::nullopt;
  try {
    OpenOptions opening;
    opening.isolation = options.isolation;
    Picture thumbnail = Open(std::move(jpeg), opening);
    const bool isRgb = thumbnail.Layout().model == ColorModel::rgb;
    const ColorProfile& profile = header.metadata.profile;
    if (!thumbnail.GetMetadata().profile &&
        detail::ProfileFits(profile, detail::ProfileSpace::rgb) && isRgb) {
      std::unique_ptr<TBitmap> rows = thumbnail.Bitmap(run);
      rows->SetProfile(profile);
      thumbnail = Of(std::move(rows));
    }
    for (Step& step : detail::StepsOfOrientation(header.orientation.value_or(1))) {
      thumbnail.Apply(std::move(step));
    }
    thumbnail.orientationSteps_ = thumbnail.steps_.size();
    return thumbnail;
  } catch (const FormatError&) {
    return std::nullopt;
  } catch (const UnsupportedError&) {
    return std::nullopt;
  }
}

Samples Picture::Numbers(const Run& run) const {
  detail::RunScope scope(run);
  scope.Begin(kSeen, source_->Header().height);
  Changes unused;
  Samples samples = detail::NumbersOf(*source_, *state_, scope.Flow(), scope.Stages(), unused);
  scope.Finish();
  return samples;
}

void Picture::Rows(RowSink& sink, const Run& run) const {
  detail::RunScope scope(run);
  scope.Begin(kSeen, source_->Header().height);
  Changes unused;
  detail::TakeVisibleRows(*this, scope.Flow(), scope.Stages(), unused,
                          [&](Raster& rows, int top) { sink.Take(rows, top); });
  scope.Finish();
}

}  // namespace rasterkit
