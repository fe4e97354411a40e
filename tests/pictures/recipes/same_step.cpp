#include <algorithm>

#include <rasterkit/pictures/recipes/step_kinds.h>

#include "tests/pictures/recipes/every_step.h"

namespace rasterkit::test {
namespace {

// A struct is taken apart into its members: their number must be right.

bool Same(const Fill& a, const Fill& b) {
  const auto& [kind, color] = a;
  return kind == b.kind && color == b.color;
}

bool Same(const RotateOptions& a, const RotateOptions& b) {
  const auto& [fill, filter] = a;
  return Same(fill, b.fill) && filter == b.filter;
}

bool Same(const TurnStep& a, const TurnStep& b) {
  const auto& [quarters] = a;
  return quarters == b.quarters;
}

bool Same(const MirrorStep& a, const MirrorStep& b) {
  const auto& [axis] = a;
  return axis == b.axis;
}

bool Same(const RotateStep& a, const RotateStep& b) {
  const auto& [degrees, options] = a;
  return degrees == b.degrees && Same(options, b.options);
}

bool Same(const NorthUpStep& a, const NorthUpStep& b) {
  const auto& [options] = a;
  return Same(options, b.options);
}

bool Same(const RecipeCrop& a, const RecipeCrop& b) {
  const auto& [unit, left, top, right, bottom, outside] = a;
  return unit == b.unit && left == b.left && top == b.top && right == b.right &&
         bottom == b.bottom && outside == b.outside;
}

bool Same(const RecipeResize& a, const RecipeResize& b) {
  const auto& [unit, width, height, dpi, options] = a;
  const auto& [filter] = options;
  return unit == b.unit && width == b.width && height == b.height && dpi == b.dpi &&
         filter == b.options.filter;
}

bool Same(const MakeGray& a, const MakeGray& b) {
  const auto& [trueColor] = a;
  return trueColor == b.trueColor;
}

bool Same(const MakeMono& a, const MakeMono& b) {
  const auto& [threshold, dark, light] = a;
  return threshold == b.threshold && dark == b.dark && light == b.light;
}

bool Same(const AdjustColors& a, const AdjustColors& b) {
  const auto& [brightness, contrast, sharpen, red, green, blue] = a;
  return brightness == b.brightness && contrast == b.contrast && sharpen == b.sharpen &&
         red == b.red && green == b.green && blue == b.blue;
}

bool Same(const WhitenLight& a, const WhitenLight& b) {
  const auto& [threshold, makesTransparent] = a;
  return threshold == b.threshold && makesTransparent == b.makesTransparent;
}

bool Same(const RecolorByGray& a, const RecolorByGray& b) {
  const auto& [threshold, darker, color, alpha] = a;
  return threshold == b.threshold && darker == b.darker && color == b.color && alpha == b.alpha;
}

bool Same(const ReplaceKeyColor& a, const ReplaceKeyColor& b) {
  const auto& [color, makesTransparent] = a;
  return color == b.color && makesTransparent == b.makesTransparent;
}

bool Same(const WhiteForPdf&, const WhiteForPdf&) {
  return true;
}

bool Same(const PaintTransparency& a, const PaintTransparency& b) {
  const auto& [background] = a;
  return background == b.background;
}

bool Same(const SwapOpacity&, const SwapOpacity&) {
  return true;
}

bool Same(const SetPaletteEntries& a, const SetPaletteEntries& b) {
  const auto& [entries, first] = a;
  return entries == b.entries && first == b.first;
}

bool Same(const SetBits& a, const SetBits& b) {
  const auto& [bits] = a;
  return bits == b.bits;
}

bool Same(const UsePalette& a, const UsePalette& b) {
  const auto& [palette] = a;
  return palette == b.palette;
}

bool Same(const ChangeStep& a, const ChangeStep& b) {
  const auto& [change] = a;
  return change.index() == b.change.index() && std::visit(
                                                   [&]<class Plain>(const Plain& plain) {
                                                     return Same(plain, std::get<Plain>(b.change));
                                                   },
                                                   change);
}

bool Same(const RecipeCombine& a, const RecipeCombine& b) {
  const auto& [slot, options, stretch] = a;
  const auto& [mode, percent, gray, align, filter] = options;
  return slot == b.slot && mode == b.options.mode && percent == b.options.percent &&
         gray == b.options.gray && align == b.options.align && filter == b.options.filter &&
         stretch == b.stretch;
}

bool Same(const RecipePalette& a, const RecipePalette& b) {
  const auto& [slot] = a;
  return slot == b.slot;
}

bool Same(const PlaceStep& a, const PlaceStep& b) {
  const auto& [affine] = a;
  return affine == b.affine;
}

bool Same(const std::vector<TagSetting>& a, const std::vector<TagSetting>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const TagSetting& x, const TagSetting& y) {
                      const auto& [tag, value] = x;
                      return tag == y.tag && value == y.value;
                    });
}

bool Same(const std::optional<GpsPosition>& a, const std::optional<GpsPosition>& b) {
  if (!a || !b) return !a && !b;
  const auto& [latitude, longitude, altitude] = *a;
  return latitude == b->latitude && longitude == b->longitude && altitude == b->altitude;
}

bool Same(const EditStep& a, const EditStep& b) {
  const auto& [all, profile, gps, thumbnail, note, resolution, copy, remove, set, position, date] =
      a.edit;
  const MetadataEdit& other = b.edit;
  return all == other.stripAll && profile == other.stripProfile && gps == other.stripGps &&
         thumbnail == other.stripThumbnail && note == other.stripMakerNote &&
         resolution == other.resolution && !copy && !other.copy && remove == other.remove &&
         Same(set, other.set) && Same(position, other.gps) && date == other.date;
}

bool Same(const RecipeCopy& a, const RecipeCopy& b) {
  const auto& [slot, exif, xmp, iptc, comments, profile, orientation] = a;
  return slot == b.slot && exif == b.takesExif && xmp == b.takesXmp && iptc == b.takesIptc &&
         comments == b.takesComments && profile == b.takesProfile &&
         orientation == b.keepsOrientation;
}

bool Same(const StretchStep& a, const StretchStep& b) {
  const auto& [stretch] = a;
  return stretch == b.stretch;
}

}  // namespace

bool IsSame(const RecipeStep& a, const RecipeStep& b) {
  return a.index() == b.index() &&
         std::visit(
             [&]<class Plain>(const Plain& plain) { return Same(plain, std::get<Plain>(b)); }, a);
}

bool IsSame(const RecipeSave& a, const RecipeSave& b) {
  const auto& [type, bits, compression, quality, x, y, pngLevel, lossless, background, metadata] =
      a;
  return type == b.type && bits == b.bits && compression == b.compression && quality == b.quality &&
         x == b.chromaX && y == b.chromaY && pngLevel == b.pngLevel && lossless == b.lossless &&
         background == b.background && metadata == b.metadata;
}

bool IsSame(const Recipe& a, const Recipe& b) {
  const auto& [madeWith, steps, save, isAsStored] = a;
  return madeWith == b.madeWith && isAsStored == b.isAsStored &&
         std::equal(steps.begin(), steps.end(), b.steps.begin(), b.steps.end(),
                    [](const RecipeStep& x, const RecipeStep& y) { return IsSame(x, y); }) &&
         IsSame(save, b.save);
}

}  // namespace rasterkit::test
