#pragma once

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/pictures/reading/picture_size.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/pictures/recipes/recipe_words.h>

/// The keys of each step of a recipe with their ranges. `Fields` reads them, writes them, or lists
/// them: Must for values that are always stated, May for those that are omitted where they are as
/// in a new struct.
namespace rasterkit::detail {

struct NumberRange {
  double least, most;
};

/// Of pixels, millimeters and map units.
inline constexpr NumberRange kCoordinates{-1e12, 1e12};
inline constexpr NumberRange kLengths{0, 1e9};
inline constexpr NumberRange kDegrees{-1e9, 1e9};
inline constexpr NumberRange kPercents{0, 100};
inline constexpr NumberRange kAdjustments{-100, 100};
inline constexpr NumberRange kBytes{0, 255};
inline constexpr NumberRange kDots{0, 1e5};
/// Each end of a stretch leaves out less than half.
inline constexpr NumberRange kStretchPercents{0, 49.99999999999999};
inline constexpr NumberRange kStretchNumbers{std::numeric_limits<double>::lowest(),
                                             std::numeric_limits<double>::max()};
inline constexpr int kDepths[] = {1, 4, 8, 15, 16, 24, 32};

template <class Fields>
void Describe(Fields& fields, TurnStep& step) {
  constexpr NumberRange kQuarters{-3, 3};
  fields.Must("quarters", step.quarters, kQuarters);
}

template <class Fields>
void Describe(Fields& fields, MirrorStep& step) {
  fields.Must("axis", step.axis, kAxisWords);
}

template <class Fields>
void Describe(Fields& fields, RotateOptions& options) {
  fields.May("fill", options.fill.kind, kFillWords);
  fields.May("fill_color", options.fill.color);
  fields.May("filter", options.filter, kFilterWords);
}

template <class Fields>
void Describe(Fields& fields, RotateStep& step) {
  fields.Must("degrees", step.degrees, kDegrees);
  Describe(fields, step.options);
}

template <class Fields>
void Describe(Fields& fields, NorthUpStep& step) {
  Describe(fields, step.options);
}

template <class Fields>
void Describe(Fields& fields, RecipeCrop& step) {
  fields.Must("unit", step.unit, kUnitWords);
  fields.Must("left", step.left, kCoordinates);
  fields.Must("top", step.top, kCoordinates);
  fields.Must("right", step.right, kCoordinates);
  fields.Must("bottom", step.bottom, kCoordinates);
  fields.May("outside", step.outside, kOutsideWords);
  const bool rises = step.unit == LengthUnit::map ? step.bottom < step.top : step.top < step.bottom;
  fields.Check("right", step.left < step.right, "it must be greater than left");
  if (step.unit == LengthUnit::map) {
    fields.Check("top", rises, "in map units it must be greater than bottom");
  } else {
    fields.Check("bottom", rises, "it must be greater than top");
  }
}

template <class Fields>
void Describe(Fields& fields, RecipeResize& step) {
  fields.Must("unit", step.unit, kSizeUnitWords);
  fields.May("width", step.width, kLengths);
  fields.May("height", step.height, kLengths);
  fields.May("dpi", step.dpi, kDots);
  fields.May("filter", step.options.filter, kFilterWords);
  fields.Check("", step.width > 0 || step.height > 0, "width or height must be stated");
  const double mostPixels = step.unit == LengthUnit::pixels ? kLargestSide : kLengths.most;
  fields.Check("width", step.width <= mostPixels, "a side has at most 1000000 pixels");
  fields.Check("height", step.height <= mostPixels, "a side has at most 1000000 pixels");
}

template <class Fields>
void Describe(Fields& fields, MakeGray& step) {
  fields.May("true_color", step.trueColor);
}

template <class Fields>
void Describe(Fields& fields, MakeMono& step) {
  constexpr NumberRange kThresholds{0, 256};
  fields.MayOrWord("threshold", step.threshold, kThresholds, "otsu");
  fields.May("dark", step.dark);
  fields.May("light", step.light);
}

template <class Fields>
void Describe(Fields& fields, AdjustColors& step) {
  fields.May("brightness", step.brightness, kAdjustments);
  fields.May("contrast", step.contrast, kAdjustments);
  fields.May("sharpen", step.sharpen, kAdjustments);
  fields.May("red", step.red, kAdjustments);
  fields.May("green", step.green, kAdjustments);
  fields.May("blue", step.blue, kAdjustments);
}

template <class Fields>
void Describe(Fields& fields, WhitenLight& step) {
  fields.Must("threshold", step.threshold, kBytes);
  fields.May("transparent", step.makesTransparent);
}

template <class Fields>
void Describe(Fields& fields, RecolorByGray& step) {
  fields.Must("threshold", step.threshold, kBytes);
  fields.May("darker", step.darker);
  fields.May("color", step.color);
  fields.May("opacity", step.alpha, kBytes);
}

template <class Fields>
void Describe(Fields& fields, ReplaceKeyColor& step) {
  fields.May("color", step.color);
  fields.May("transparent", step.makesTransparent);
}

template <class Fields>
void Describe(Fields&, WhiteForPdf&) {}

template <class Fields>
void Describe(Fields& fields, PaintTransparency& step) {
  fields.May("background", step.background);
}

template <class Fields>
void Describe(Fields&, SwapOpacity&) {}

template <class Fields>
void Describe(Fields& fields, std::pair<int, TColor>& entry) {
  fields.Must("index", entry.first, kBytes);
  fields.Must("color", entry.second);
}

template <class Fields>
void Describe(Fields& fields, SetPaletteEntries& step) {
  fields.May("entries", step.entries);
  fields.May("first", step.first);
}

template <class Fields>
void Describe(Fields& fields, SetBits& step) {
  fields.Must("bits", step.bits, kDepths);
}

template <class Fields>
void Describe(Fields& fields, NumberStretch& stretch) {
  fields.Must("kind", stretch.kind, kStretchWords);
  fields.May("percent", stretch.percent, kStretchPercents);
  fields.May("least", stretch.least, kStretchNumbers);
  fields.May("greatest", stretch.greatest, kStretchNumbers);
  const bool isRange =
      stretch.kind != NumberStretch::Kind::fixed || stretch.least != stretch.greatest;
  fields.Check("greatest", isRange, "a fixed stretch needs another number than least");
}

template <class Fields>
void Describe(Fields& fields, StretchStep& step) {
  Describe(fields, step.stretch);
}

template <class Fields>
void Describe(Fields& fields, RecipeCombine& step) {
  fields.Slot("slot", step.slot);
  fields.May("mode", step.options.mode, kCombineWords);
  fields.May("percent", step.options.percent, kPercents);
  fields.May("gray", step.options.gray);
  fields.May("align", step.options.align, kAlignWords);
  fields.May("filter", step.options.filter, kFilterWords);
  fields.May("stretch", step.stretch);
}

template <class Fields>
void Describe(Fields& fields, RecipePalette& step) {
  fields.Slot("slot", step.slot);
}

template <class Fields>
void Describe(Fields& fields, PlaceStep& step) {
  fields.Must("x_per_column", step.affine.xPerColumn, kCoordinates);
  fields.Must("y_per_column", step.affine.yPerColumn, kCoordinates);
  fields.Must("x_per_row", step.affine.xPerRow, kCoordinates);
  fields.Must("y_per_row", step.affine.yPerRow, kCoordinates);
  fields.Must("x", step.affine.x, kCoordinates);
  fields.Must("y", step.affine.y, kCoordinates);
}

template <class Fields>
void Describe(Fields& fields, Resolution& resolution) {
  fields.Must("x", resolution.x, kDots);
  fields.Must("y", resolution.y, kDots);
}

template <class Fields>
void Describe(Fields& fields, TagSetting& setting) {
  fields.Must("tag", setting.tag);
  fields.Must("value", setting.value);
}

template <class Fields>
void Describe(Fields& fields, GpsPosition& gps) {
  constexpr NumberRange kLatitudes{-90, 90}, kLongitudes{-180, 180}, kAltitudes{-4e6, 4e6};
  fields.Must("latitude", gps.latitude, kLatitudes);
  fields.Must("longitude", gps.longitude, kLongitudes);
  fields.May("altitude", gps.altitude, kAltitudes);
}

template <class Fields>
void Describe(Fields& fields, EditStep& step) {
  MetadataEdit& edit = step.edit;
  fields.May("strip_all", edit.stripAll);
  fields.May("strip_profile", edit.stripProfile);
  fields.May("strip_gps", edit.stripGps);
  fields.May("strip_thumbnail", edit.stripThumbnail);
  fields.May("strip_maker_note", edit.stripMakerNote);
  fields.May("resolution", edit.resolution);
  fields.May("remove", edit.remove);
  fields.May("set", edit.set);
  fields.May("gps", edit.gps);
  fields.May("date", edit.date);
  fields.Check("", !edit.copy, "metadata of another picture are a step of their own");
}

template <class Fields>
void Describe(Fields& fields, RecipeCopy& step) {
  fields.Slot("slot", step.slot);
  fields.May("exif", step.takesExif);
  fields.May("xmp", step.takesXmp);
  fields.May("iptc", step.takesIptc);
  fields.May("comments", step.takesComments);
  fields.May("profile", step.takesProfile);
  fields.May("keep_orientation", step.keepsOrientation);
}

template <class Fields>
void Describe(Fields& fields, RecipeSave& save) {
  constexpr NumberRange kQualities{1, 100}, kPngLevels{0, 12};
  fields.May("type", save.type, kTypeWords);
  fields.May("depth", save.bits, kDepths);
  fields.May("compression", save.compression, kCompressionWords);
  fields.May("quality", save.quality, kQualities);
  std::optional<Sampling> sampling;
  if (save.chromaX != 0 || save.chromaY != 0) sampling = Sampling{save.chromaX, save.chromaY};
  fields.May("sampling", sampling, kSamplingWords);
  if (sampling) save.chromaX = sampling->x, save.chromaY = sampling->y;
  fields.May("png_level", save.pngLevel, kPngLevels);
  fields.May("lossless", save.lossless, kLosslessWords);
  fields.May("background", save.background);
  fields.May("metadata", save.metadata, kKeepWords);
}

}  // namespace rasterkit::detail
