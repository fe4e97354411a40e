#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include <rasterkit/bitmaptools/engine/color_source.h>
#include <rasterkit/bitmaptools/engine/mixing.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/row_transfer.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/mix/mix_rows.h>
#include <rasterkit/kernels/rows/color_rows32.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/transfer/brighten.h>
#include <rasterkit/kernels/transfer/pixel_masks.h>

namespace rasterkit::detail {
namespace {

/// Rows are processed in parts that stay in the first-level cache.
constexpr size_t kPart = 1024;
using PartBuffer = std::array<uint8_t, 3 * kPart>;

kernels::MixWeights TransparentWeights(float weight) {
  kernels::ByteTable kept, added;
  for (int i = 0; i < 256; ++i) {
    kept[static_cast<size_t>(i)] = TransparentKept(static_cast<uint8_t>(i), weight);
    added[static_cast<size_t>(i)] = TransparentAdded(static_cast<uint8_t>(i), weight);
  }
  return kernels::MakeMixWeights(kept, 1.0 - static_cast<double>(weight), added, weight);
}

/// Shade of the source for each gray value of the target.
kernels::ByteTable GrayShades(float factor, float weight) {
  kernels::ByteTable shades;
  for (int i = 0; i < 256; ++i) {
    const auto gray = static_cast<uint8_t>(i);
    shades[static_cast<size_t>(i)] = Brightened(gray, factor, BrightnessGain(gray, weight));
  }
  return shades;
}

/// Transfer into a target of 24 or 32 bits, from any source.
class ColorPartTransfer : public RowTransfer {
 public:
  ColorPartTransfer(const TPixelThread& worker, const ColumnRun& run)
      : targetBytes_(static_cast<size_t>(worker.nTarBytes)),
        first_(static_cast<size_t>(run.first)),
        count_(run.columns.size()),
        takes_(worker.PixTakeOver || (worker.nSrcBytes == 0 && worker.nSrcBit != 4)),
        mode_(worker.FPixelMode),
        useGray_(worker.UseGray),
        source_(worker, run.columns, true) {
    if (takes_) return;
    if (mode_ == pmTransparent) weights_ = TransparentWeights(worker.f);
    if (mode_ != pmShadow) return;
    if (useGray_) {
      shades_ = GrayShades(worker.fproz, worker.f);
    } else {
      brightening_ = kernels::MakeBrightening(worker.Prozent, worker.fproz, worker.f);
    }
  }

  void TransferRow(uint8_t* target, const uint8_t* source) override {
    source_.Read(source);
    target += first_ * targetBytes_;
    for (size_t x = 0; x < count_; x += kPart) {
      const size_t width = std::min(kPart, count_ - x);
      const uint8_t* colors = source_.Colors() + 3 * x;
      const uint8_t* keep = source_.White() + 3 * x;
      if (targetBytes_ == 3) {
        Combine(target + 3 * x, colors, keep, width);
        continue;
      }
      kernels::Row32To24(target + 4 * x, width, part_.data());
      Combine(part_.data(), colors, keep, width);
      kernels::ReplaceColors32(target + 4 * x, part_.data(), width);
    }
  }

 private:
  void Combine(uint8_t* target, const uint8_t* colors, const uint8_t* keep, size_t width) {
    if (takes_) return kernels::TakeRow(target, colors, keep, 3 * width);
    const uint8_t* ground = Ground(target, width);
    if (mode_ == pmTransparent) {
      kernels::MixRow(weights_, target, ground, colors, keep, 3 * width);
    } else {
      kernels::ShadeRow(target, ground, colors, keep, 3 * width);
    }
  }

  /// Values that the source is mixed with: the target's colors, brightened colors or gray values.
  const uint8_t* Ground(const uint8_t* target, size_t width) {
    if (!useGray_) {
      if (mode_ == pmTransparent) return target;
      kernels::BrightenRow24(brightening_, target, width, ground_.data());
      return ground_.data();
    }
    kernels::GrayOfRow24(target, width, grays_.data());
    if (mode_ == pmShadow) {
      for (size_t x = 0; x < width; ++x) grays_[x] = shades_[grays_[x]];
    }
    kernels::ExpandGrays24(grays_.data(), width, ground_.data());
    return ground_.data();
  }

  const size_t targetBytes_, first_, count_;
  const bool takes_;
  const TPixelMode mode_;
  const bool useGray_;
  ColorSource source_;
  kernels::MixWeights weights_;
  kernels::Brightening brightening_;
  kernels::ByteTable shades_;
  PartBuffer part_, ground_;
  std::array<uint8_t, kPart> grays_;
};

/// Transfer of whole pixels between rows of the same format, chosen by the source (ptAssignPart) or
/// the target (ptAssignInWhite).
class PixelCopy : public RowTransfer {
 public:
  PixelCopy(const TPixelThread& worker, const ColumnRun& run)
      : bytes_(static_cast<size_t>(worker.nTarBytes)),
        first_(static_cast<size_t>(run.first)),
        firstColumn_(static_cast<size_t>(run.columns.front())),
        count_(run.columns.size()),
        isPart_(worker.FPixelTask == ptAssignPart),
        nearWhite_(worker.UseGray),
        color_(static_cast<uint32_t>(worker.transR) << 16 | worker.TransG << 8 | worker.transB),
        picker_(run.columns, worker.nTarBytes, worker.nTarBytes, worker.SrcBmp->Width()),
        pixels_(picker_.IsOneToOne() ? 0 : bytes_ * count_) {}

  void TransferRow(uint8_t* target, const uint8_t* source) override {
    const uint8_t* pixels = source + bytes_ * firstColumn_;
    if (!picker_.IsOneToOne()) {
      if (source != lastRow_) picker_.Pick(source, pixels_.data());
      lastRow_ = source;
      pixels = pixels_.data();
    }
    target += bytes_ * first_;
    for (size_t x = 0; x < count_; x += kPart) {
      CopyPart(target + bytes_ * x, pixels + bytes_ * x, std::min(kPart, count_ - x));
    }
  }

 private:
  void CopyPart(uint8_t* target, const uint8_t* source, size_t width) {
    FindKept(isPart_ ? source : target, width);
    if (bytes_ == 3) {
      kernels::TakeRow(target, source, keep_.data(), 3 * width);
    } else {
      kernels::TakePixels32(target, source, keep_.data(), width);
    }
  }

  void FindKept(const uint8_t* pixels, size_t width) {
    if (bytes_ == 4) {
      kernels::Row32To24(pixels, width, colors_.data());
      pixels = colors_.data();
    }
    if (isPart_ || nearWhite_) {
      kernels::NearWhite24(pixels, width, isPart_, keep_.data());
    } else {
      kernels::OtherColor24(pixels, width, color_, keep_.data());
    }
  }

  const size_t bytes_, first_, firstColumn_, count_;
  const bool isPart_, nearWhite_;
  const uint32_t color_;
  kernels::PixelPicker picker_;
  const uint8_t* lastRow_ = nullptr;
  std::vector<uint8_t> pixels_;
  PartBuffer colors_, keep_;
};

}  // namespace

std::unique_ptr<RowTransfer> MakeColorTransfer(const TPixelThread& worker, const ColumnRun& run) {
  if (worker.PixTakeOver) return std::make_unique<PixelCopy>(worker, run);
  if (worker.FPixelTask != ptAssignPart) return nullptr;
  // Between true-color formats this writes the source.
  const bool isMono = worker.nSrcBytes == 0 && worker.nSrcBit != 4;
  if (worker.FPixelMode == pmOverwrite && !isMono) return nullptr;
  return std::make_unique<ColorPartTransfer>(worker, run);
}

}  // namespace rasterkit::detail
