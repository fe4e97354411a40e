#include <array>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include <rasterkit/bands/adjust_pixels.h>
#include <rasterkit/bands/change_works.h>
#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/colors/color_reader.h>
#include <rasterkit/bands/colors/few_colors.h>
#include <rasterkit/bands/colors/gray_counts.h>
#include <rasterkit/bands/colors/index_work.h>
#include <rasterkit/bands/colors/looking_work.h>
#include <rasterkit/bands/colors/row_rule.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/gray/gray_bits.h>
#include <rasterkit/kernels/gray/recolor.h>
#include <rasterkit/kernels/gray/whiten.h>
#include <rasterkit/kernels/mix/swap_alpha.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/raster/format_of_bits.h>

namespace rasterkit::detail {
namespace {

using Reader = std::shared_ptr<const ColorReader>;
/// Changes a row of pixels B G R in place.
using RowChange = std::function<void(uint8_t* bgr, size_t width)>;

constexpr size_t kColorBytes = 3, kPixelBytes = 4;

Raster Changed(const ColorChange& change, Raster raster) {
  auto bitmap = std::make_unique<TBitmap>(std::move(raster));
  std::visit([&](const auto& plain) { Change(plain, bitmap); }, change);
  Raster made = bitmap->TakeContent();
  made.ClearPadding();
  return made;
}

uint32_t NumberOf(TColor color, int alpha) {
  uint8_t red = 0, green = 0, blue = 0;
  GetRGB(color, red, green, blue);
  return static_cast<uint32_t>(alpha) << 24 | static_cast<uint32_t>(red) << 16 |
         static_cast<uint32_t>(green) << 8 | blue;
}

/// Each pixel by its own color; opacities stay, and pixels that got the color `cleared` become
/// transparent. 24-bit without transparency, else 32-bit.
RowRule RuleOfColors(Reader reader, RowChange change, std::optional<TColor> cleared = {}) {
  if (!reader->HasOpacity()) {
    return [reader = std::move(reader), change = std::move(change)](const uint8_t* source,
                                                                    uint8_t* target, uint8_t*) {
      reader->To24(source, target);
      change(target, reader->Width());
    };
  }
  return [reader = std::move(reader), change = std::move(change), cleared](
             const uint8_t* source, uint8_t* target, uint8_t* scratch) {
    const size_t width = reader->Width();
    uint8_t* const opacities = scratch + kColorBytes * width;
    reader->To24(source, scratch);
    reader->Opacities(source, scratch, opacities);
    change(scratch, width);
    kernels::Row24To32(scratch, width, target);
    PutOpacities(opacities, width, target);
    if (cleared) ClearColor(*cleared, width, target);
  };
}

/// Pixels of three or four bytes as they are, others as three.
template <class Of24, class Of32>
RowRule RuleOfBytes(Reader reader, Of24 of24, Of32 of32) {
  if (reader->Format() == pf32bit) {
    return [width = reader->Width(), of32](const uint8_t* source, uint8_t* target, uint8_t*) {
      of32(source, width, target);
    };
  }
  return
      [reader = std::move(reader), of24](const uint8_t* source, uint8_t* target, uint8_t* scratch) {
        of24(reader->Colors(source, scratch), reader->Width(), target);
      };
}

RowRule RuleOfGrays(Reader reader) {
  return RuleOfBytes(std::move(reader), kernels::GrayOfRow24, kernels::GrayOfRow32);
}

/// Grays of `level` and more become ones.
RowRule RuleOfBits(Reader reader, int level) {
  return RuleOfBytes(
      std::move(reader),
      [level](const uint8_t* bgr, size_t width, uint8_t* target) {
        kernels::GrayBits24(bgr, width, level, target);
      },
      [level](const uint8_t* bgra, size_t width, uint8_t* target) {
        kernels::GrayBits32(bgra, width, level, target);
      });
}

/// The same, painted onto white first.
RowRule RuleOfPaintedBits(Reader reader, int level) {
  return [reader = std::move(reader), level](const uint8_t* source, uint8_t* target,
                                             uint8_t* scratch) {
    reader->Painted(source, clWhite, scratch);
    kernels::GrayBits24(scratch, reader->Width(), level, target);
  };
}

RowRule RuleOfPaint(Reader reader, TColor background) {
  const bool whitens = background == clWhite && reader->Format() == pf32bit && !reader->HasAlpha();
  return [reader = std::move(reader), background, whitens](const uint8_t* source, uint8_t* target,
                                                           uint8_t* scratch) {
    if (!whitens) return reader->Painted(source, background, target);
    // The fourth byte has no meaning, but 0 means white nevertheless.
    std::memcpy(scratch, source, kPixelBytes * reader->Width());
    kernels::WhitenTransparentPixels(scratch, reader->Width());
    reader->To24(scratch, target);
  };
}

/// To 32 bits with opacities, and then `change(bgra, width)`.
template <class Edit>
RowRule RuleOfPixels(Reader reader, Edit change) {
  return [reader = std::move(reader), change](const uint8_t* source, uint8_t* target,
                                              uint8_t* scratch) {
    reader->To32(source, target, scratch);
    change(target, reader->Width());
  };
}

RowRule RuleOfCopy(const Raster& like, int width) {
  const size_t bytes =
      static_cast<size_t>(width) * static_cast<size_t>(StoredBitsPerPixel(like.Format())) / 8;
  return [bytes](const uint8_t* source, uint8_t* target, uint8_t*) {
    std::memcpy(target, source, bytes);
  };
}

/// To 15 bits or more; alpha is drawn onto white where the new format has none.
RowRule RuleOfFormat(Reader reader, TPixelFormat format) {
  const bool isPainted = reader->HasAlpha();
  return [reader = std::move(reader), format, isPainted](const uint8_t* source, uint8_t* target,
                                                         uint8_t* scratch) {
    const auto width = static_cast<int>(reader->Width());
    if (format == pf24bit) {
      return isPainted ? reader->Painted(source, clWhite, target) : reader->To24(source, target);
    }
    const PixelTable unused{};
    TPixelFormat from = reader->Format();
    uint8_t* const painted = scratch + kPixelBytes * reader->Width();
    if (isPainted) {
      reader->Painted(source, clWhite, painted);
      source = painted;
      from = pf24bit;
    }
    auto* const pixels = reinterpret_cast<RGBArec*>(format == pf32bit ? target : scratch);
    RowTo32(source, from, width, unused, pixels);
    if (format != pf32bit) RowFrom32(pixels, format, width, target);
  };
}

/// Counts gray values of a picture that is painted onto white.
class OtsuFinding : public Finding {
 public:
  using Then = std::function<std::unique_ptr<BandWork>(int threshold)>;

  OtsuFinding(const Raster& like, Sides size, Then then)
      : reader_(like, size.width), size_(size), then_(std::move(then)) {}

  RowRange Looks() const override { return {0, size_.height}; }
  void Look(const Band& rows, const StageRun& run) override {
    const auto& raster = std::get<Raster>(rows.pixels);
    const size_t bytes = raster.Stride() + kPixelBytes * reader_.Width();
    ForRows(raster.Height(), PieceOf(raster.Height(), bytes), run, {},
            [&](int first, int last) { Count(raster, first, last); });
  }
  std::unique_ptr<BandWork> Begin() override { return then_(OtsuThreshold(counts_)); }

 private:
  void Count(const Raster& raster, int first, int last) {
    const GrayCounts counts = CountGrays(reader_, raster, first, last);
    const std::lock_guard lock(mutex_);
    for (size_t i = 0; i < counts_.size(); ++i) counts_[i] += counts[i];
  }

  const ColorReader reader_;
  const Sides size_;
  const Then then_;
  std::mutex mutex_;
  GrayCounts counts_{};
};

/// Sees the color of the bottom left pixel.
class KeyFinding : public Finding {
 public:
  using Then = std::function<std::unique_ptr<BandWork>(uint32_t key)>;

  KeyFinding(Reader reader, Sides size, Then then)
      : reader_(std::move(reader)), size_(size), then_(std::move(then)) {}

  RowRange Looks() const override { return {size_.height - 1, 1}; }
  void Look(const Band& rows, const StageRun&) override {
    const auto& raster = std::get<Raster>(rows.pixels);
    std::vector<uint8_t> colors(kColorBytes * reader_->Width());
    const uint8_t* const bgr = reader_->Colors(raster.Row(raster.Height() - 1), colors.data());
    key_ = static_cast<uint32_t>(bgr[2]) << 16 | static_cast<uint32_t>(bgr[1]) << 8 | bgr[0];
  }
  std::unique_ptr<BandWork> Begin() override { return then_(key_); }

 private:
  const Reader reader_;
  const Sides size_;
  const Then then_;
  uint32_t key_ = 0;
};

/// A rule, and white in the bottom left pixel.
class WhiteCorner : public RuleWork {
 public:
  using RuleWork::RuleWork;

 protected:
  void Mend(int y, uint8_t* row) const override {
    if (y != Size().height - 1) return;
    const bool isWord = std::get<Raster>(Like()).Format() == pf16bit;
    std::memset(row, 255, isWord ? 2 : kColorBytes);
  }
};

bool HasWhite(const HPALETTE& palette) {
  for (const tagPALETTEENTRY& entry : palette.Entries()) {
    if (EntryColor(entry) == clWhite) return true;
  }
  return false;
}

/// Begins each change.
class Beginner {
 public:
  Beginner(const Raster& like, Sides size) : like_(like), size_(size) {}

  std::unique_ptr<BandWork> operator()(const MakeGray& change) const {
    if (IsIndexed(like_.Format())) return OfIndexes(change);
    const Reader reader = NewReader();
    if (!change.trueColor && !reader->HasOpacity()) return OfRows(change, RuleOfGrays(reader));
    return OfRows(change, RuleOfColors(reader, kernels::GrayInPlace24));
  }

  std::unique_ptr<BandWork> operator()(const MakeMono& change) const {
    if (change.threshold) return Mono(change);
    // The finding outlives this object.
    auto like = std::make_shared<const Raster>(SmallLike(like_, 1, 1));
    auto then = [like, size = size_, change](int threshold) {
      MakeMono settled = change;
      settled.threshold = threshold;
      return Beginner(*like, size).Mono(settled);
    };
    return MakeLookingWork(std::make_unique<OtsuFinding>(*like, size_, std::move(then)));
  }

  std::unique_ptr<BandWork> operator()(const AdjustColors& change) const {
    // Sharpening depends on neighboring pixels, so it cannot change the palette alone.
    if (change.sharpen != 0) return MakeSharpening(like_, size_, Made(change), change);
    if (IsIndexed(like_.Format())) return OfIndexes(change);
    const RowAdjuster adjuster(change);
    return OfRows(change, RuleOfColors(NewReader(), [adjuster](uint8_t* bgr, size_t width) {
                    adjuster.Brighten(bgr, width);
                    adjuster.Shift(bgr, width);
                  }));
  }

  std::unique_ptr<BandWork> operator()(const WhitenLight& change) const {
    if (IsIndexed(like_.Format())) return OfIndexes(change);
    const auto side = kernels::GraysAbove(static_cast<uint8_t>(change.threshold));
    std::optional<TColor> cleared;
    if (change.makesTransparent) cleared = clWhite;
    return OfRows(change, RuleOfColors(NewReader(), Recoloring(side, clWhite), cleared));
  }

  std::unique_ptr<BandWork> operator()(const RecolorByGray& change) const {
    if (IsIndexed(like_.Format())) return OfIndexes(change);
    const auto threshold = static_cast<uint8_t>(change.threshold);
    const kernels::GraySide side =
        change.darker ? kernels::GraysBelow(threshold) : kernels::GraysAbove(threshold);
    if (!change.alpha)
      return OfRows(change, RuleOfColors(NewReader(), Recoloring(side, change.color)));
    const uint32_t color = PlainNumberOf(change.color, *change.alpha);
    return OfRows(change, RuleOfPixels(NewReader(), [side, color](uint8_t* bgra, size_t width) {
                    kernels::RecolorByGray32(bgra, width, side, color);
                  }));
  }

  std::unique_ptr<BandWork> operator()(const ReplaceKeyColor& change) const {
    if (IsIndexed(like_.Format())) return OfIndexes(change, IndexLook::corner);
    const Reader reader = NewReader();
    auto made = std::make_shared<const Raster>(Made(change));
    auto then = [made, reader, size = size_, change](uint32_t key) {
      const uint32_t color = NumberOf(change.color, 0);
      std::optional<TColor> cleared;
      if (change.makesTransparent) cleared = change.color;
      RowRule rule = RuleOfColors(
          reader,
          [key, color](uint8_t* bgr, size_t width) {
            kernels::ReplaceColor24(bgr, width, key, color);
          },
          cleared);
      return std::make_unique<RuleWork>(made->Clone(), size, std::move(rule));
    };
    return MakeLookingWork(std::make_unique<KeyFinding>(reader, size_, std::move(then)));
  }

  std::unique_ptr<BandWork> operator()(const WhiteForPdf& change) const {
    if (IsIndexed(like_.Format())) {
      const IndexLook look = HasWhite(like_.palette) ? IndexLook::nothing : IndexLook::used;
      return MakeIndexWorkWithCorner(like_, size_, Small(change), look);
    }
    Raster made = Made(change);
    const bool isSame = made.Format() == like_.Format();
    RowRule rule =
        isSame ? RuleOfCopy(like_, size_.width) : RuleOfFormat(NewReader(), made.Format());
    return std::make_unique<WhiteCorner>(std::move(made), size_, std::move(rule));
  }

  std::unique_ptr<BandWork> operator()(const PaintTransparency& change) const {
    if (IsIndexed(like_.Format())) return OfIndexes(change);
    const Reader reader = NewReader();
    if (!reader->HasOpacity()) return OfRows(change, RuleOfCopy(like_, size_.width));
    return OfRows(change, RuleOfPaint(reader, change.background));
  }

  std::unique_ptr<BandWork> operator()(const SwapOpacity& change) const {
    if (IsIndexed(like_.Format())) return OfIndexes(change);
    return OfRows(change, RuleOfPixels(NewReader(), kernels::SwapAlpha32));
  }

  std::unique_ptr<BandWork> operator()(const SetPaletteEntries& change) const {
    // True color is refused.
    if (!IsIndexed(like_.Format())) Made(change);
    return OfIndexes(change, change.first ? IndexLook::first : IndexLook::nothing);
  }

  std::unique_ptr<BandWork> operator()(const SetBits& change) const {
    const TPixelFormat format = FormatOfBits(change.bits), from = like_.Format();
    if (IsIndexed(from)) {
      if (format < from) return MakeIndexConversion(like_, size_, format);
      return OfIndexes(change);
    }
    if (format == from) return OfRows(change, RuleOfCopy(like_, size_.width));
    const Reader reader = NewReader();
    constexpr int kLight = 128;
    if (format == pf1bit) {
      return OfRows(change, reader->HasAlpha() ? RuleOfPaintedBits(reader, kLight)
                                               : RuleOfBits(reader, kLight));
    }
    if (IsIndexed(format)) return MakeFewColors(like_, size_, Made(change));
    return OfRows(change, RuleOfFormat(reader, format));
  }

  std::unique_ptr<BandWork> operator()(const UsePalette& change) const {
    return OfRows(change, RuleOfPalette(NewReader(), change.palette));
  }

 private:
  Reader NewReader() const { return std::make_shared<const ColorReader>(like_, size_.width); }

  static SmallChange Small(const ColorChange& change) {
    return [change](Raster raster) { return Changed(change, std::move(raster)); };
  }

  Raster Made(const ColorChange& change) const { return Changed(change, SmallLike(like_, 1, 1)); }

  std::unique_ptr<BandWork> OfIndexes(const ColorChange& change,
                                      IndexLook look = IndexLook::nothing) const {
    return MakeIndexWork(like_, size_, Small(change), look);
  }

  std::unique_ptr<BandWork> OfRows(const ColorChange& change, RowRule rule) const {
    return std::make_unique<RuleWork>(Made(change), size_, std::move(rule));
  }

  std::unique_ptr<BandWork> Mono(const MakeMono& change) const {
    if (IsIndexed(like_.Format())) return OfIndexes(change);
    const Reader reader = NewReader();
    return OfRows(change, reader->HasOpacity() ? RuleOfPaintedBits(reader, *change.threshold)
                                               : RuleOfBits(reader, *change.threshold));
  }

  /// Of the low bytes, whatever the color names.
  static uint32_t PlainNumberOf(TColor color, int alpha) {
    return NumberOf(color & 0xFFFFFF, alpha);
  }

  static RowChange Recoloring(kernels::GraySide side, TColor color) {
    return [side, number = PlainNumberOf(color, 255)](uint8_t* bgr, size_t width) {
      kernels::RecolorByGray24(bgr, width, side, number);
    };
  }

  const Raster& like_;
  const Sides size_;
};

}  // namespace

std::unique_ptr<BandWork> BeginChange(const ColorChange& change, const Raster& like, Sides size) {
  return std::visit(Beginner(like, size), change);
}

}  // namespace rasterkit::detail
