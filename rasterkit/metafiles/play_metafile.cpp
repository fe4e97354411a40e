#include <algorithm>
#include <cmath>
#include <new>

#include <rasterkit/metafiles/emf/emf_player.h>
#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/metafiles/records/play_records.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using namespace detail;

/// Returns the map from `source` to the place.
PlaneAffine Fit(const RectD& source, const PixelRect& place) {
  const double x = (static_cast<double>(place.right) - place.left) / source.Width();
  const double y = (static_cast<double>(place.bottom) - place.top) / source.Height();
  return {x, 0, 0, y, place.left - source.left * x, place.top - source.top * y};
}

PixelRect Ordered(const PixelRect& place) {
  return {std::min(place.left, place.right), std::min(place.top, place.bottom),
          std::max(place.left, place.right), std::max(place.top, place.bottom)};
}

struct Stage {
  ReferenceDevice device;
  PlaneAffine toTarget;
};

/// Maps the frame, in pixels of the reference device, to the place.
Stage EmfStage(const MetafileFacts& facts, const PixelRect& place) {
  Stage stage;
  stage.device = {static_cast<double>(facts.deviceWidth), static_cast<double>(facts.deviceHeight),
                  facts.deviceWidthMm, facts.deviceHeightMm};
  const double x = stage.device.widthPx / (stage.device.widthMm * 100);
  const double y = stage.device.heightPx / (stage.device.heightMm * 100);
  const MetafileFacts::Box& frame = facts.frame;
  const RectD pixels{static_cast<double>(frame.left) * x, static_cast<double>(frame.top) * y,
                     static_cast<double>(frame.right) * x, static_cast<double>(frame.bottom) * y};
  const bool isEmpty = !(pixels.Width() > 0 && pixels.Height() > 0);
  stage.toTarget = Fit(isEmpty ? RectD{0, 0, 1, 1} : pixels, place);
  return stage;
}

/// Returns the extra work budget: for large files, and for pictures drawn larger than the file
/// states.
double ExtraWork(const MetafileFacts& facts, const PixelRect& place, size_t bytes) {
  const PixelRect whole = Ordered(place);
  const double wanted =
      (double{1} * whole.right - whole.left) * (double{1} * whole.bottom - whole.top);
  const double larger = std::max(1.0, wanted / (double{1} * facts.width * facts.height));
  return DrawingWork::kLeastBudget * (larger - 1) +
         DrawingWork::kPerByte * static_cast<double>(bytes);
}

}  // namespace

PlayReport PlayMetafile(std::span<const uint8_t> bytes, Raster& target, const PixelRect& place,
                        const std::function<bool()>& keepGoing) {
  return PlayMetafile(bytes, ReadMetafileFacts(bytes), target, place, keepGoing);
}

PlayReport PlayMetafile(std::span<const uint8_t> bytes, const MetafileFacts& facts, Raster& target,
                        const PixelRect& place, const std::function<bool()>& keepGoing) {
  const LimitsScope limits;
  if (facts.isEmfPlusOnly) {
    throw UnsupportedError("EMF: the drawing consists of EMF+ records only, which are unsupported");
  }
  PlayReport report;
  const PixelRect clip = ClipRect(Ordered(place), target.Width(), target.Height());
  if (clip.right <= clip.left || clip.bottom <= clip.top) return report;
  if (facts.kind == MetafileKind::emf) {
    const Stage stage = EmfStage(facts, place);
    DeviceContext context(target, clip, stage.device, stage.toTarget);
    context.RaiseWorkBudget(ExtraWork(facts, place, bytes.size()));
    EmfPlayer player(context, bytes.size());
    EmfRecords records(bytes);
    PlayRecords(
        records, [&](const EmfRecord& record) { return player.Play(record); }, keepGoing, report);
  } else {
    const WmfPicture picture = PictureOfWmf(facts);
    const PlaneAffine toTarget = Fit({0, 0, picture.pixels.x, picture.pixels.y}, place);
    DeviceContext context(target, clip, picture.device, toTarget);
    context.RaiseWorkBudget(ExtraWork(facts, place, bytes.size()));
    WmfPlayer player(context, picture, bytes.size());
    WmfRecords records(bytes);
    PlayRecords(
        records, [&](const WmfRecord& record) { return player.Play(record); }, keepGoing, report);
  }
  return report;
}

}  // namespace rasterkit
