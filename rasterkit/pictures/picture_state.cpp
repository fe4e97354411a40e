#include <algorithm>
#include <charconv>
#include <cmath>

#include <fmt/format.h>

#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/metadata/edit/edit_metadata.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/pictures/fitting/make_thumbnail.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/half.h>

namespace rasterkit::detail {
namespace {

/// From corners of the source to those of the picture: pixel indexes lie half a pixel off.
std::array<double, 6> CornersToNew(const Affine& toOld) {
  constexpr double kHalf = 0.5;
  const Affine corners{toOld.xPerColumn,
                       toOld.yPerColumn,
                       toOld.xPerRow,
                       toOld.yPerRow,
                       toOld.At(-kHalf, -kHalf).x + kHalf,
                       toOld.At(-kHalf, -kHalf).y + kHalf};
  const Affine toNew = corners.Inverse().value_or(Affine());
  return {toNew.xPerColumn, toNew.xPerRow, toNew.x, toNew.yPerColumn, toNew.yPerRow, toNew.y};
}

PixelChange ChangeOf(const PictureState& state, const PictureSource& source) {
  PixelChange change;
  change.oldWidth = source.Header().width;
  change.oldHeight = source.Header().height;
  change.width = state.width;
  change.height = state.height;
  change.toNew = CornersToNew(state.toOld);
  change.pixelsChanged = state.pixelsChanged;
  change.placesChanged = state.placesChanged;
  change.keepsValues = state.keepsValues;
  const auto isGray = [](ColorModel model) {
    return model == ColorModel::gray || model == ColorModel::grayWhiteIsZero;
  };
  change.becameGray = isGray(state.layout.model) && !isGray(source.Header().layout.model);
  change.resolution = state.resolution;
  return change;
}

/// Places the picture anew. What else the source states of its position would contradict it.
void SetPosition(Placement& placement, const Affine& affine) {
  placement.affine = affine;
  placement.stated.insert(placement.stated.begin(), {PositionSource::given, {}, affine, 0});
  placement.controlPoints.clear();
  placement.rationalModel.clear();
}

/// What the file states after the edits. Throws Error with the name of the file.
Metadata EditedMetadata(const PictureState& state, const PictureSource& source,
                        Changes* changes = nullptr) {
  Metadata metadata = source.Header().metadata;
  EditedPicture picture;
  picture.width = source.Header().width;
  picture.height = source.Header().height;
  picture.isTurned = state.pixelsChanged;
  if (source.Type() == PictureType::jpeg) picture.format = EditedPicture::Format::jpeg;
  if (source.Type() == PictureType::tiff) picture.format = EditedPicture::Format::tiff;
  Changes unused;
  try {
    for (const MetadataEdit& edit : state.edits) {
      EditMetadata(metadata, edit, picture, changes != nullptr ? *changes : unused);
    }
  } catch (Error& error) {
    error.AttachFile(source.File());
    throw;
  }
  return metadata;
}

}  // namespace

namespace {

/// Halves are so coarse that the number for missing values is often none of them.
void DoubtNoData(PictureState& state, const PictureSource& source) {
  const std::optional<double> noData = NoDataOf(source);
  if (state.layout.type != NumberType::float16 || !noData || !std::isfinite(*noData)) return;
  const double cut = HalfToDouble(HalfTowardZero(*noData).bits),
               nearest = HalfToDouble(HalfOf(*noData));
  if (cut == *noData) return;
  const std::string meant =
      cut == nearest ? fmt::format("{} is", cut) : fmt::format("{} and {} are", cut, nearest);
  state.warnings.push_back(
      fmt::format("no pixel of 16 bits holds {}, the number for missing values: {} taken for it",
                  *noData, meant));
}

}  // namespace

PictureState StateOf(const PictureSource& source) {
  PictureState state;
  const PictureHeader& header = source.Header();
  state.width = header.width;
  state.height = header.height;
  state.layout = header.layout;
  state.isRaster = source.Kind().isRaster;
  state.resolution = header.metadata.resolution;
  state.metadata = header.metadata;
  state.placement = source.Position();
  DoubtNoData(state, source);
  return state;
}

std::vector<Step> StepsOfOrientation(int orientation) {
  constexpr int kClockwise = -1, kHalf = 2, kCounterClockwise = 1;
  const MirrorStep leftRight{MirrorAxis::leftRight}, topBottom{MirrorAxis::topBottom};
  switch (orientation) {
    case 2:
      return {leftRight};
    case 3:
      return {TurnStep{kHalf}};
    case 4:
      return {topBottom};
    case 5:
      return {TurnStep{kClockwise}, leftRight};
    case 6:
      return {TurnStep{kClockwise}};
    case 7:
      return {TurnStep{kClockwise}, topBottom};
    case 8:
      return {TurnStep{kCounterClockwise}};
    default:
      return {};
  }
}

std::optional<Affine> PositionOf(const PictureState& state, const PictureSource& source) {
  const std::optional<Affine>& affine = state.given ? state.given : source.Position().affine;
  if (!affine) return std::nullopt;
  return affine->After(state.toOld);
}

bool DropsHidden(const PictureState& state) {
  return std::any_of(state.edits.begin(), state.edits.end(), RemovesHidden);
}

bool NeedsThumbnail(const PictureState& state, const PictureSource& source) {
  if (!state.pixelsChanged || !HasThumbnail(source.Header().metadata)) return false;
  return state.edits.empty() || HasThumbnail(EditedMetadata(state, source));
}

/// A step whose pixels the profile does not describe has dropped it.
void FollowProfile(PictureState& state, const PictureSource& source) {
  if (!source.Header().layout.profile || state.layout.profile) return;
  const auto isProfile = [](const Loss& loss) { return loss.kind == LossKind::profile; };
  const bool isSaid =
      std::any_of(state.changes.losses.begin(), state.changes.losses.end(), isProfile);
  if (state.metadata.profile && !isSaid) {
    state.followed.Lose(LossKind::profile, "ICC profile", "it does not apply to the new pixels");
  }
  state.metadata.profile = nullptr;
}

namespace {

/// Grays that show numbers are none of them: one of them could be the number for missing values.
void LoseNoData(PictureState& state, const PictureSource& source) {
  const bool isShown = !source.Kind().isRaster && state.isRaster && state.layout.bands == 1;
  if (!isShown || state.placement.noData.empty()) return;
  state.followed.Lose(LossKind::noData,
                      "the number " + state.placement.noData + " for missing values",
                      "it is shown white");
  state.placement.noData.clear();
}

}  // namespace

void Follow(PictureState& state, const PictureSource& source, std::span<const uint8_t> thumbnail) {
  state.followed = {};
  state.metadata = EditedMetadata(state, source, &state.followed);
  FollowProfile(state, source);
  state.placement = source.Position();
  LoseNoData(state, source);
  if (state.given) SetPosition(state.placement, *state.given);
  // Without changed pixels another resolution is all that there can be.
  const bool hasOtherResolution =
      std::any_of(state.edits.begin(), state.edits.end(),
                  [](const MetadataEdit& edit) { return edit.resolution.has_value(); });
  if (!state.pixelsChanged && !hasOtherResolution) return;

  PixelChange change = ChangeOf(state, source);
  change.keepsOrientation = !state.pixelsChanged;
  change.thumbnail = thumbnail;
  FollowPixels(state.metadata, change, state.followed);
  // A thumbnail is made when the pixels are there.
  if (thumbnail.empty() && NeedsThumbnail(state, source)) {
    std::erase_if(state.followed.losses,
                  [](const Loss& loss) { return loss.kind == LossKind::thumbnail; });
  }
  if (!state.placesChanged) return;
  FollowPixels(state.placement,
               {state.toOld, change.oldWidth, change.oldHeight, state.width, state.height},
               state.followed);
}

PictureState StateForMove(const PictureState& state, const PictureSource& source) {
  PictureState followed = state;
  constexpr int kSide = 8;
  if (NeedsThumbnail(state, source)) {
    Follow(followed, source, MakeThumbnail(Raster(pf8bit, kSide, kSide), {}));
  }
  return followed;
}

std::optional<double> NoDataOf(const PictureSource& source) {
  const std::string& text = source.Position().noData;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  const PixelLayout& stored = source.Header().layout;
  // Decoders of rasters turn them round: 0 is black.
  const bool isTurned = stored.model == ColorModel::grayWhiteIsZero && source.Kind().isRaster;
  return isTurned ? (1 << stored.bits) - 1 - number : number;
}

std::vector<std::string> WarningsOf(const PictureSource& source, const PictureState& state) {
  std::vector<std::string> warnings = source.Header().warnings;
  for (const auto* more : {&state.placement.warnings, &state.warnings}) {
    warnings.insert(warnings.end(), more->begin(), more->end());
  }
  return warnings;
}

bool IsSameKind(const PixelLayout& a, const PixelLayout& b) {
  const auto isGray = [](const PixelLayout& layout) {
    return layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  };
  return a.type == b.type && a.bits == b.bits && a.bands == b.bands &&
         (a.model == b.model || (isGray(a) && isGray(b)));
}

uint64_t BytesOfRows(const PixelLayout& layout, int width, int height) {
  const bool isPacked = layout.type == NumberType::uint8 && layout.bands == 1;
  const uint64_t bits =
      isPacked ? static_cast<uint64_t>(layout.bits)
               : uint64_t{8} * BytesOf(layout.type) * static_cast<uint64_t>(layout.bands);
  // Rows of a raster are padded to four bytes.
  const uint64_t row = (static_cast<uint64_t>(width) * bits + 31) / 32 * 4;
  return row * static_cast<uint64_t>(height);
}

}  // namespace rasterkit::detail
