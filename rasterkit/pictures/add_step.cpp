#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/bands/corner_fill.h>
#include <rasterkit/bands/layouts.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/pictures/align_pictures.h>
#include <rasterkit/pictures/north_up.h>
#include <rasterkit/pictures/own_stages.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/sample_rows.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// Sides of the small picture that shows what numbers look like.
constexpr int kSampleSide = 16;
/// Pixels with one side this much longer than the other are no pixels: the file is wrong.
constexpr double kMostStretched = 10;
/// A smaller difference of the resolutions comes from rounding to the units of a file.
constexpr double kRounding = 1.001;

/// What one step does to pixels.
struct StepEffect {
  /// The columns of one picture are columns or rows of the other, each whole pixel by pixel.
  bool onlyMoves = false;
  /// All pixels are kept besides.
  bool keepsValues = false;
};

StepEffect EffectOf(const Affine& toOld, Sides from, Sides to) {
  const auto isUnit = [](double a, double b) {
    return (std::abs(a) == 1 && b == 0) || (a == 0 && std::abs(b) == 1);
  };
  const auto isWhole = [](double place) { return place == std::floor(place); };
  const bool isUnitMove =
      isUnit(toOld.xPerColumn, toOld.xPerRow) && isUnit(toOld.yPerColumn, toOld.yPerRow);
  return {isUnitMove && isWhole(toOld.x) && isWhole(toOld.y),
          isUnitMove && int64_t{from.width} * from.height == int64_t{to.width} * to.height};
}

/// True for numbers of one meaning: gray without alpha that has more than 8 bits or a number for
/// missing data. Bytes whose lowest number is white are turned round by the decoder.
bool IsGrid(const PictureState& state, const PictureSource& source) {
  const PixelLayout& layout = state.layout;
  const bool isGray =
      layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  if (!isGray || layout.alpha != AlphaKind::none) return false;
  if (!state.isRaster)
    return layout.type != NumberType::uint8 || layout.bits > 8 || NoDataOf(source);
  constexpr int kByte = 8;
  return layout.bits == kByte && NoDataOf(source) &&
         source.Header().layout.model != ColorModel::grayWhiteIsZero;
}

/// The layout of the same pixels as samples, without a palette.
PixelLayout NumbersOf(PixelLayout layout) {
  if (layout.model == ColorModel::gray) layout.palette = {};
  return layout;
}

void RequireStretch(const NumberStretch& stretch) {
  constexpr double kMostPercent = 50;
  if (stretch.kind == NumberStretch::Kind::percent &&
      !(stretch.percent >= 0 && stretch.percent < kMostPercent)) {
    throw RangeError(fmt::format(
        "a stretch leaves out 0 to less than 50 percent at each end, not {}", stretch.percent));
  }
  const bool isRange = std::isfinite(stretch.least) && std::isfinite(stretch.greatest) &&
                       stretch.least != stretch.greatest;
  if (stretch.kind == NumberStretch::Kind::fixed && !isRange) {
    throw RangeError("a fixed stretch needs two different finite numbers");
  }
}

/// A mask has no mixed pixels, and nothing lies outside of the picture.
const Resampling kMaskResampling{Filter::nearest, {Fill::Kind::color, clBlack}, std::nullopt};

/// Adds the parts of one step after another.
class StepAdder {
 public:
  StepAdder(PictureState& state, const PictureSource& source) : state_(state), source_(source) {
    // Stages get pixels as they are decoded: 2-bit indexes as 4-bit ones, for example.
    if (state_.stages.empty()) SetLayout(source.Kind().layout);
  }

  void operator()(const TurnStep& step) {
    const int quarters = step.quarters & 3;
    if (quarters == 0) return;
    const Sides sides = Now();
    if (quarters % 2 == 1) ExchangeAxes();
    Add(TurnStage(sides, quarters), FrameOfRotation(sides, 90.0 * quarters).toOld,
        quarters % 2 == 1 ? Sides{sides.height, sides.width} : sides);
  }

  void operator()(const MirrorStep& step) {
    Affine toOld;
    if (step.axis == MirrorAxis::leftRight) {
      toOld.xPerColumn = -1;
      toOld.x = state_.width - 1;
    } else {
      toOld.yPerRow = -1;
      toOld.y = state_.height - 1;
    }
    Add(MirrorStage(Now(), step.axis), toOld, Now());
  }

  void operator()(const RotateStep& step) {
    if (FrameOfRotation(Now(), step.degrees).rest != 0) MakeSquare();
    const RotationFrame frame = FrameOfRotation(Now(), step.degrees);
    if (frame.rest == 0 && frame.quarters == 0) return;
    Resampling how = HowFor(step.options);
    if (frame.rest != 0) FillGrid(how);
    if (frame.rest != 0) SetLayout(LayoutAfterRotate(state_.layout, state_.isRaster, how));
    if (frame.quarters % 2 != 0) ExchangeAxes();
    Add(RotateStage(Now(), step.degrees, how), frame.toOld, frame.sides,
        RotateStage(Now(), step.degrees, kMaskResampling));
  }

  void operator()(const NorthUpStep& step) {
    const std::optional<Affine> position = PositionOf(state_, source_);
    if (!position) throw RangeError("the picture has no position on a map");
    const WayNorth way = WayNorthOf(*position, Now());
    for (const Step& turn : way.turns) std::visit(*this, turn);
    if (!way.frame) return;
    const NorthUpFrame& frame = *way.frame;
    Resampling how = HowFor(step.options);
    FillGrid(how);
    SetLayout(LayoutAfterRotate(state_.layout, state_.isRaster, how));
    Add(AffineStage(Now(), frame.toOld, frame.sides, how), frame.toOld, frame.sides,
        AffineStage(Now(), frame.toOld, frame.sides, kMaskResampling));
  }

  void operator()(const CropStep& step) {
    const Sides sides = Now();
    const bool isInside = step.left >= 0 && step.top >= 0 && step.width > 0 && step.height > 0 &&
                          step.left < sides.width && step.width <= sides.width - step.left &&
                          step.top < sides.height && step.height <= sides.height - step.top;
    if (!isInside) {
      throw RangeError(fmt::format(
          "the rectangle {},{},{},{} is not inside the picture, which has {} x {} pixels",
          step.left, step.top, step.width, step.height, sides.width, sides.height));
    }
    if (step.width == sides.width && step.height == sides.height) return;
    Affine toOld;
    toOld.x = step.left;
    toOld.y = step.top;
    Add(CropStage(sides, step.left, step.top, step.width, step.height), toOld,
        {step.width, step.height});
  }

  void operator()(const ResizeStep& step) {
    if (step.width < 1 || step.height < 1) {
      throw RangeError(
          fmt::format("a picture cannot have {} x {} pixels", step.width, step.height));
    }
    const Sides sides = Now();
    if (step.width == sides.width && step.height == sides.height) return;
    Resize({step.width, step.height}, step.options.filter);
  }

  void operator()(const ChangeStep& step) {
    if (IsDepthOfSource(step.change)) return;
    MakeVisible();
    std::unique_ptr<Stage> stage = ChangeStage(Now(), step.change);
    const PixelLayout before = state_.layout;
    SetLayout(LayoutAfter(step.change, before, &state_.changes));
    TakePaletteOf(step.change, before);
    AddStage(std::move(stage));
  }

  void operator()(const CombineStep& step) {
    if (!step.other) throw RangeError("there is no second picture");
    if (step.options.percent < 0 || step.options.percent > 100) {
      throw RangeError(fmt::format("{} is not a percentage from 0 to 100", step.options.percent));
    }
    const PictureState& other = PictureParts::State(*step.other);
    Placement mine = source_.Position();
    mine.affine = PositionOf(state_, source_);
    const std::optional<Affine> toOver =
        Alignment(mine, other.placement, step.options.align, state_.changes);
    if (toOver && !Overlap(Now(), {other.width, other.height}, *toOver)) {
      state_.warnings.emplace_back(
          "the second picture lies wholly outside of this one on the map: nothing of it is seen");
    }
    CombineOptions options = step.options;
    if (IsOfGrids(options, *step.other, toOver)) return CombineGrids(step, toOver);
    if (options.mode == CombineMode::automatic) options.mode = CombineMode::key;
    MakeVisible();
    SetLayout(LayoutAfterCombine(state_.layout, options.mode, &state_.changes));
    AddStage(PictureOverStage(Now(), step.other, options, toOver));
  }

  void operator()(const PixelsStep& step) {
    const bool isSameSize = step.pixels && step.pixels->Width() == state_.width &&
                            step.pixels->Height() == state_.height;
    if (!isSameSize) throw RangeError("other pixels must have the size of the picture");
    MakeVisible();
    std::unique_ptr<Stage> stage = ShownStage(step.pixels);
    Changes unused;
    PixelLayout layout = LayoutOf(stage->Make({}, {}, unused));
    layout.profile = state_.layout.profile;
    SetLayout(std::move(layout));
    AddStage(std::move(stage));
  }

  void operator()(const PlaceStep& step) {
    const std::optional<Affine> toNew = state_.toOld.Inverse();
    if (!step.affine.IsFinite() || !toNew) {
      throw RangeError("the six numbers of a position must be finite");
    }
    state_.given = step.affine.After(*toNew);
  }

  void operator()(const EditStep& step) {
    if (step.edit.resolution) state_.resolution = *step.edit.resolution;
    state_.edits.push_back(step.edit);
  }

  void operator()(const StretchStep& step) {
    RequireStretch(step.stretch);
    state_.stretch = step.stretch;
  }

 private:
  /// True for the depth that the stored pixels have: they can then be copied or moved.
  bool IsDepthOfSource(const ColorChange& change) const {
    const PixelLayout& layout = state_.layout;
    const PixelLayout& stored = source_.Header().layout;
    const bool isAsStored = state_.isRaster && layout.model == stored.model &&
                            layout.bits == stored.bits && layout.bands == stored.bands &&
                            layout.alpha == stored.alpha;
    if (!isAsStored || !std::holds_alternative<SetBits>(change)) return false;
    ChangeStage(Now(), change);
    const PixelLayout after = LayoutAfter(change, layout, nullptr);
    return after.model == layout.model && after.bits == layout.bits &&
           after.bands == layout.bands && after.alpha == layout.alpha;
  }

  Sides Now() const { return {state_.width, state_.height}; }

  void SetLayout(PixelLayout layout) { state_.layout = std::move(layout); }

  uint64_t RowBytes() const { return BytesOfRows(state_.layout, state_.width, state_.height); }

  /// The layout is the new one already. Rows before and after a stage are held together.
  void AddStage(std::shared_ptr<const Stage> stage, const StepEffect& effect = {}) {
    state_.stages.push_back(std::move(stage));
    state_.pixelsChanged = true;
    state_.keepsValues = state_.keepsValues && effect.keepsValues;
    state_.onlyMoves = state_.onlyMoves && effect.onlyMoves;
    const uint64_t before = std::exchange(heldBytes_, RowBytes());
    state_.rowBytes = std::max(state_.rowBytes, before + heldBytes_);
  }

  /// `forMask` moves masks of the page; without one the stage itself does.
  void Add(std::shared_ptr<const Stage> stage, const Affine& toOld, Sides sides,
           std::shared_ptr<const Stage> forMask = nullptr) {
    RequirePictureSize(static_cast<uint64_t>(sides.width), static_cast<uint64_t>(sides.height),
                       fmt::format("a picture of {} x {} pixels", sides.width, sides.height));
    const StepEffect effect = EffectOf(toOld, Now(), sides);
    state_.toOld = state_.toOld.After(toOld);
    state_.width = sides.width;
    state_.height = sides.height;
    state_.placesChanged = true;
    state_.maskStages.push_back(forMask ? std::move(forMask) : stage);
    AddStage(std::move(stage), effect);
  }

  /// True if both pictures are taken as numbers.
  bool IsOfGrids(const CombineOptions& options, const Picture& other,
                 const std::optional<Affine>& toOver) const {
    if (options.mode != CombineMode::automatic) return options.mode == CombineMode::grid;
    return options.percent == 0 && !options.gray && toOver && IsGrid(state_, source_) &&
           IsGrid(PictureParts::State(other), *PictureParts::Source(other));
  }

  void CombineGrids(const CombineStep& step, const std::optional<Affine>& toOver) {
    const PictureState& other = PictureParts::State(*step.other);
    if (!IsGrid(state_, source_) || !IsGrid(other, *PictureParts::Source(*step.other))) {
      throw UnsupportedError(
          "only grids of numbers are combined as grids: gray of more than 8 bits, or with a number "
          "for missing data");
    }
    if (!toOver && !(Sides{other.width, other.height} == Now())) {
      throw RangeError("grids that no map aligns must have the same size");
    }
    const Filter filter = step.options.filter;
    PixelLayout layout = LayoutAfterGrid(NumbersOf(state_.layout), NumbersOf(other.layout), filter);
    if (layout.type != state_.layout.type) {
      state_.changes.Note("the numbers have a wider type, which holds those of both grids");
    }
    SetLayout(std::move(layout));
    state_.isRaster = false;
    AddStage(
        GridOverStage(Now(), step.other, NoDataOf(source_), filter, toOver.value_or(Affine())));
  }

  void ExchangeAxes() {
    std::swap(state_.resolution.x, state_.resolution.y);
    state_.exchangesAxes = !state_.exchangesAxes;
  }

  Resampling HowFor(const RotateOptions& options) const {
    return {options.filter, options.fill, NoDataOf(source_)};
  }

  /// True for numbers that are no shades: of a type that no picture to look at has, or with a place
  /// on a map or a mark of missing values.
  bool HoldsMeasurements() const {
    const PixelLayout& layout = state_.layout;
    const bool isGray =
        layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
    if (state_.isRaster) return IsGrid(state_, source_);
    if (!isGray || layout.alpha != AlphaKind::none) return false;
    const bool isUsual = layout.type == NumberType::uint8 || layout.type == NumberType::uint16;
    return !isUsual || PositionOf(state_, source_) || !source_.Position().noData.empty();
  }

  /// A color in the corners of a grid would look like measurements.
  void FillGrid(Resampling& how) {
    const NumberType type = state_.layout.type;
    if (how.fill.kind != Fill::Kind::usual || !HoldsMeasurements()) return;
    const bool isFloat =
        type == NumberType::float16 || type == NumberType::float32 || type == NumberType::float64;
    if (isFloat && !how.noData) {
      how.fill.kind = Fill::Kind::noData;
      how.noData = std::numeric_limits<double>::quiet_NaN();
      state_.changes.Note("the corners are NaN: the file states no number for missing values");
      return;
    }
    const std::string color = NumberOfCorners(state_.layout, how);
    if (color.empty()) return;
    state_.warnings.push_back(fmt::format(
        "the corners are {}, which looks like a measurement: the file states no number for missing "
        "values that its pixels can hold; a fill chooses another",
        color));
  }

  void Resize(Sides target, Filter filter) {
    const Sides sides = Now();
    SetLayout(LayoutAfterResize(state_.layout, state_.isRaster, sides, target, filter));
    const double columns = static_cast<double>(sides.width) / target.width;
    const double rows = static_cast<double>(sides.height) / target.height;
    constexpr double kHalf = 0.5;
    Affine toOld;
    toOld.xPerColumn = columns;
    toOld.x = kHalf * columns - kHalf;
    toOld.yPerRow = rows;
    toOld.y = kHalf * rows - kHalf;
    // The size on paper stays.
    if (state_.resolution.IsKnown()) {
      state_.resolution = {state_.resolution.x / columns, state_.resolution.y / rows};
    }
    Add(ResizeStage(sides, target, filter, NoDataOf(source_)), toOld, target,
        ResizeStage(sides, target, Filter::nearest));
  }

  /// A rotation by any angle mixes the two directions.
  void MakeSquare() {
    const Resolution dpi = state_.resolution;
    if (!dpi.IsKnown() || dpi.x == dpi.y) return;
    const double finer = std::max(dpi.x, dpi.y), coarser = std::min(dpi.x, dpi.y);
    if (finer > kMostStretched * coarser) {
      state_.changes.Note(
          fmt::format("the pixels were not made square before the rotation: {:g} x {:g} dots per "
                      "inch cannot be true",
                      dpi.x, dpi.y));
      return;
    }
    const bool isRounding = finer <= kRounding * coarser;
    const auto side = [&](int pixels, double factor) {
      if (isRounding) return pixels;
      const double exact = std::max(std::round(pixels * factor), 1.0);
      if (exact > std::numeric_limits<int>::max()) {
        throw RangeError(fmt::format(
            "a picture with square pixels cannot be {:.0f} pixels wide or high", exact));
      }
      return static_cast<int>(exact);
    };
    const Sides square{side(state_.width, finer / dpi.x), side(state_.height, finer / dpi.y)};
    if (!(square == Now())) Resize(square, Filter::automatic);
    state_.resolution = {finer, finer};
    if (isRounding) return;
    state_.changes.Note(fmt::format(
        "the pixels were made square at {:g} dots per inch before the rotation", finer));
  }

  /// A change of a palette is known without the pixels: a small picture with the same entries shows
  /// it.
  void TakePaletteOf(const ColorChange& change, const PixelLayout& before) {
    const bool isPalette = before.bands == 1 && state_.layout.model == ColorModel::palette &&
                           before.bits == state_.layout.bits;
    if (!isPalette) return;
    Changes unused;
    const PixelLayout after =
        LayoutOf(ChangeStage({kSampleSide, kSampleSide}, change)
                     ->Make(SampleRows(before, true, kSampleSide, kSampleSide), {}, unused));
    if (after.bits != before.bits) return;
    state_.layout.model = after.model;
    state_.layout.palette = after.palette;
  }

  /// Changes of color work on rasters.
  void MakeVisible() {
    if (state_.isRaster) return;
    const std::string noData = source_.Position().noData;
    Changes seen;
    const Pixels sample =
        VisibleStage({kSampleSide, kSampleSide}, noData, state_.stretch)
            ->Make(SampleRows(state_.layout, false, kSampleSide, kSampleSide), {}, seen);
    SetLayout(LayoutOf(sample));
    state_.isRaster = true;
    for (Loss& loss : seen.losses) state_.changes.losses.push_back(std::move(loss));
    AddStage(VisibleStage(Now(), noData, state_.stretch));
  }

  PictureState& state_;
  const PictureSource& source_;
  uint64_t heldBytes_ = RowBytes();
};

}  // namespace

void AddStep(PictureState& state, const PictureSource& source, const Step& step) {
  try {
    const LimitsScope limits;
    std::visit(StepAdder(state, source), step);
    state.hasSteps = true;
    if (state.stages.empty()) state.layout = source.Header().layout;
  } catch (Error& error) {
    error.AttachFile(source.File());
    throw;
  }
}

}  // namespace rasterkit::detail
