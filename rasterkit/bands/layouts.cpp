#include <algorithm>
#include <string>
#include <vector>

#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/layouts.h>

namespace rasterkit {
namespace {

using detail::AveragedForm;

bool HasIndexes(const PixelLayout& layout) {
  return layout.bands == 1 && layout.bits <= 8;
}

bool IsGray8(const PixelLayout& layout) {
  return HasIndexes(layout) && layout.bits == 8 && layout.model == ColorModel::gray;
}

int EntriesOf(const PixelLayout& layout) {
  return layout.model == ColorModel::palette ? layout.palette.Count() : 1 << layout.bits;
}

bool HasWhite(const PixelLayout& layout) {
  if (layout.model != ColorModel::palette) return true;
  const auto entries = layout.palette.Entries();
  return std::any_of(entries.begin(), entries.end(),
                     [](const tagPALETTEENTRY& entry) { return EntryColor(entry) == clWhite; });
}

bool IsGray(TColor color) {
  return (color & 255) == (color >> 8 & 255) && (color & 255) == (color >> 16 & 255);
}

PixelLayout TrueColor(const PixelLayout& layout, AlphaKind alpha) {
  PixelLayout result;
  result.profile = layout.profile;
  result.alpha = alpha;
  if (alpha == AlphaKind::straight) result.bands = 4;
  return result;
}

PixelLayout Indexed(const PixelLayout& layout, int bits, AlphaKind alpha) {
  PixelLayout result;
  result.profile = layout.profile;
  result.bits = bits;
  result.bands = 1;
  result.model = ColorModel::palette;
  result.palette = layout.palette;
  result.alpha = alpha;
  return result;
}

PixelLayout Gray8(const PixelLayout& layout) {
  PixelLayout result = Indexed(layout, 8, AlphaKind::none);
  result.model = ColorModel::gray;
  result.palette = {};
  return result;
}

void LoseTransparency(const PixelLayout& layout, const char* why, Changes* losses) {
  if (losses == nullptr || layout.alpha == AlphaKind::none) return;
  if (layout.alpha == AlphaKind::transparentColor) {
    losses->Lose(LossKind::transparentColor, "transparent color", why);
  } else {
    losses->Lose(LossKind::alpha, "alpha channel", why);
  }
}

void LoseProfile(PixelLayout& layout, const char* why, Changes* losses) {
  if (losses != nullptr && layout.profile) losses->Lose(LossKind::profile, "ICC profile", why);
  layout.profile = nullptr;
}

/// Pixels whose colors change each on its own; see ChangeColors.
PixelLayout AfterEachColor(const PixelLayout& layout, bool keepsGrays) {
  if (!HasIndexes(layout)) {
    return TrueColor(layout,
                     layout.alpha == AlphaKind::none ? AlphaKind::none : AlphaKind::straight);
  }
  if (IsGray8(layout) && keepsGrays && layout.alpha == AlphaKind::none) return layout;
  return Indexed(layout, layout.bits, layout.alpha);
}

/// A color that becomes transparent.
PixelLayout AfterMark(PixelLayout layout) {
  if (layout.alpha != AlphaKind::none) return TrueColor(layout, AlphaKind::straight);
  layout.alpha = AlphaKind::transparentColor;
  return layout;
}

struct AfterChange {
  const PixelLayout& layout;
  Changes* losses;

  PixelLayout operator()(const MakeGray& change) const {
    const bool isEach = change.trueColor || HasIndexes(layout) || layout.alpha != AlphaKind::none;
    if (isEach) return AfterEachColor(layout, true);
    PixelLayout gray = Gray8(layout);
    LoseProfile(gray, "a profile of colors does not apply to grays", losses);
    return gray;
  }

  PixelLayout operator()(const MakeMono& change) const {
    LoseTransparency(layout, "a black and white picture is opaque", losses);
    PixelLayout mono = Indexed(layout, 1, AlphaKind::none);
    mono.palette = {};
    LoseProfile(mono, "a profile of colors does not apply to black and white", losses);
    const bool isPlain = change.dark == clBlack && change.light == clWhite;
    const bool isReversed = change.dark == clWhite && change.light == clBlack;
    if (isPlain) mono.model = ColorModel::gray;
    if (isReversed) mono.model = ColorModel::grayWhiteIsZero;
    return mono;
  }

  PixelLayout operator()(const AdjustColors& change) const {
    const bool isNeutral = change.red == change.green && change.red == change.blue;
    if (change.sharpen == 0) return AfterEachColor(layout, isNeutral);
    return TrueColor(layout,
                     layout.alpha == AlphaKind::none ? AlphaKind::none : AlphaKind::straight);
  }

  PixelLayout operator()(const WhitenLight& change) const {
    const PixelLayout after = AfterEachColor(layout, true);
    return change.makesTransparent ? AfterMark(after) : after;
  }

  PixelLayout operator()(const RecolorByGray& change) const {
    if (change.alpha) return TrueColor(layout, AlphaKind::straight);
    return AfterEachColor(layout, IsGray(change.color));
  }

  PixelLayout operator()(const ReplaceKeyColor& change) const {
    const PixelLayout after = AfterEachColor(layout, IsGray(change.color));
    return change.makesTransparent ? AfterMark(after) : after;
  }

  PixelLayout operator()(const WhiteForPdf&) const {
    if (HasIndexes(layout)) {
      if (!HasWhite(layout)) return TrueColor(layout, layout.alpha);
      return IsGray8(layout) ? layout : Indexed(layout, layout.bits, layout.alpha);
    }
    return layout.bits == 5 ? TrueColor(layout, layout.alpha) : layout;
  }

  PixelLayout operator()(const PaintTransparency&) const {
    if (layout.alpha == AlphaKind::none) return layout;
    if (HasIndexes(layout)) return Indexed(layout, layout.bits, AlphaKind::none);
    return TrueColor(layout, AlphaKind::none);
  }

  PixelLayout operator()(const SwapOpacity&) const {
    return TrueColor(layout, AlphaKind::straight);
  }

  PixelLayout operator()(const SetPaletteEntries&) const {
    return Indexed(layout, layout.bits, layout.alpha);
  }

  PixelLayout operator()(const SetBits& change) const {
    const int bits = change.bits;
    const bool isTrueColor32 = layout.bands == 4;
    if (bits == 32 && isTrueColor32) return layout;
    AlphaKind alpha = layout.alpha;
    if (alpha == AlphaKind::straight) {
      LoseTransparency(layout, "pixels of this depth have no alpha", losses);
      alpha = AlphaKind::none;
    }
    if (bits <= 8) {
      if (HasIndexes(layout) && bits == layout.bits) return layout;
      return Indexed(layout, bits, alpha);
    }
    PixelLayout result = TrueColor(layout, alpha);
    if (bits == 15) result.bits = 5;
    if (bits == 16) result.bits = 6;
    if (bits == 32) result.bands = 4, result.extraBands = 1;
    return result;
  }

  PixelLayout operator()(const UsePalette& change) const {
    LoseTransparency(layout, "the palette has no transparent entry", losses);
    if (IsGrayRamp(change.palette)) return Gray8(layout);
    PixelLayout result = Indexed(layout, 8, AlphaKind::none);
    result.palette = change.palette;
    return result;
  }
};

/// A palette that gets one more color, which is transparent.
PixelLayout WithEntry(const PixelLayout& layout) {
  int bits = layout.bits;
  if (EntriesOf(layout) >= 1 << bits) bits = bits == 1 ? 4 : 8;
  return Indexed(layout, bits, AlphaKind::transparentColor);
}

PixelLayout AfterTransparentFill(const PixelLayout& layout) {
  constexpr int kMostEntries = 256;
  if (HasIndexes(layout)) {
    if (layout.alpha == AlphaKind::transparentColor) return layout;
    if (EntriesOf(layout) < kMostEntries) return WithEntry(layout);
  }
  return TrueColor(layout, AlphaKind::straight);
}

PixelLayout AfterAutomaticFill(PixelLayout layout) {
  if (layout.alpha != AlphaKind::none) return layout;
  if (HasIndexes(layout) && (layout.bits == 1 || EntriesOf(layout) < 1 << layout.bits)) {
    return Indexed(layout, layout.bits == 1 ? 4 : layout.bits, AlphaKind::transparentColor);
  }
  layout.alpha = AlphaKind::transparentColor;
  // Pixels of 15 and 16 bits become 24-bit.
  if (layout.bands == 3) layout.bits = 8;
  return layout;
}

bool HasAlphaBand(const PixelLayout& layout) {
  return layout.alpha == AlphaKind::straight || layout.alpha == AlphaKind::associated;
}

}  // namespace

bool IsRasterLayout(const PixelLayout& layout) {
  if (layout.type != NumberType::uint8) return false;
  switch (layout.model) {
    case ColorModel::gray:
    case ColorModel::grayWhiteIsZero:
    case ColorModel::palette:
      return layout.bands == 1 && layout.alpha != AlphaKind::associated;
    case ColorModel::rgb:
      return layout.bands == 3 ||
             (layout.bands == 4 && (layout.alpha == AlphaKind::straight || layout.extraBands == 1));
    default:
      return false;
  }
}

PixelLayout LayoutAfter(const ColorChange& change, const PixelLayout& layout, Changes* losses) {
  return std::visit(AfterChange{layout, losses}, change);
}

PixelLayout LayoutAfterResize(const PixelLayout& layout, bool isRaster, Sides from, Sides to,
                              Filter filter) {
  return detail::LayoutOfForm(layout, detail::FormForResize(layout, isRaster, from, to, filter));
}

PixelLayout LayoutAfterRotate(const PixelLayout& layout, bool isRaster, const Resampling& how) {
  const AveragedForm form = detail::FormForTurn(layout, isRaster, how.filter);
  PixelLayout result = detail::LayoutOfForm(layout, form);
  const Fill::Kind kind = how.fill.kind;
  if (!isRaster) {
    if (kind == Fill::Kind::transparent && !HasAlphaBand(layout)) {
      ++result.bands;
      result.alpha = AlphaKind::straight;
    }
    return result;
  }
  const bool isAutomatic = kind == Fill::Kind::automatic;
  if (kind == Fill::Kind::transparent || (isAutomatic && form != AveragedForm::none)) {
    return AfterTransparentFill(result);
  }
  return isAutomatic ? AfterAutomaticFill(result) : result;
}

PixelLayout LayoutAfterCombine(const PixelLayout& layout, CombineMode mode, Changes* losses) {
  if (mode != CombineMode::watermark) {
    LoseTransparency(layout, "the pictures are combined into an opaque one", losses);
    return TrueColor(layout, AlphaKind::none);
  }
  return TrueColor(layout, layout.alpha == AlphaKind::none ? AlphaKind::none : AlphaKind::straight);
}

}  // namespace rasterkit
