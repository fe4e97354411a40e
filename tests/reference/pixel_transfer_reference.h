#pragma once

#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

#include "tests/reference/pixel_mixing_reference.h"

/// Pixel transfer written straight from its rules, one worker after the other, each with the state
/// that a worker keeps: pixel by pixel, extended products, no tables.
namespace rasterkit::reference {

/// First row and last row + 1 of each worker, counted from 0.
using Bands = std::vector<std::pair<int64_t, int64_t>>;

/// How so many rows are divided among so many threads (which must suffice).
inline Bands BandsOf(int32_t threads, int32_t rows) {
  if (rows < Extended(threads) / 4) threads = static_cast<int32_t>(RoundEven(Extended(rows) / 4));
  const int64_t step = RoundEven(Extended(rows) / threads);
  Bands bands;
  for (int32_t i = 0; i < threads; ++i)
    bands.emplace_back(i * step, i + 1 == threads ? rows : (i + 1) * step);
  return bands;
}

struct TransferTask {
  TBitmap& target;
  TBitmap& source;
  TRect targetRect, sourceRect;
  TPixelTask task = ptAssignPart;
  TPixelMode mode = pmOverwrite;
  int32_t percent = 0;
  bool useGray = false;
};

class TransferWorker {
 public:
  explicit TransferWorker(const TransferTask& task) : t_(task) {
    tarBytes_ = BytesOf(t_.target.PixelFormat());
    srcBytes_ = BytesOf(t_.source.PixelFormat());
    tarPalette_ = t_.target.Palette();
    srcPalette_ = t_.source.Palette();
    const bool same = t_.target.PixelFormat() == t_.source.PixelFormat();
    takeOver_ = same && (tarBytes_ < 2 || t_.mode == pmOverwrite);
    if (srcBytes_ < 2) {
      srcWhite_ = FirstWhite(srcPalette_);
      const int last = srcPalette_.Count() - 1;
      srcLastWhite_ = last >= 0 && IsWhite(srcPalette_.Entry(last)) ? last : -1;
    }
    if (tarBytes_ == 1) tarBlack_ = BlackOf(tarPalette_);
    const auto transparent = static_cast<uint32_t>(t_.target.TransparentColor());
    transparent_ = {static_cast<uint8_t>(transparent >> 16), static_cast<uint8_t>(transparent >> 8),
                    static_cast<uint8_t>(transparent)};
  }

  static bool IsPossible(const TBitmap& target, const TBitmap& source) {
    const int tarBytes = BytesOf(target.PixelFormat()), srcBytes = BytesOf(source.PixelFormat());
    if (tarBytes == 2 || srcBytes == 2) return false;
    return target.PixelFormat() == source.PixelFormat() || tarBytes >= 2 || tarBytes >= srcBytes;
  }

  void DoBand(int64_t first, int64_t end) {
    const int64_t top = t_.task == ptAssignInWhite ? t_.targetRect.Top : 0;
    for (int64_t y = first + top; y < end + top; ++y) {
      if (y < 0 || y >= t_.target.Height()) continue;
      const int64_t sy = Scaled(y - t_.targetRect.Top, t_.targetRect.Bottom - t_.targetRect.Top,
                                t_.sourceRect.Bottom - t_.sourceRect.Top) +
                         t_.sourceRect.Top;
      if (sy < 0 || sy >= t_.source.Height()) continue;
      tar_ = t_.target.ScanLine(static_cast<int>(y));
      src_ = t_.source.ScanLine(static_cast<int>(sy));
      for (int x = t_.targetRect.Left; x <= t_.targetRect.Right; ++x) {
        if (x < 0 || x >= t_.target.Width()) continue;
        DoPixel(x);
      }
    }
  }

 private:
  static int BytesOf(TPixelFormat format) {
    switch (format) {
      case pf1bit:
      case pf4bit:
        return 0;
      case pf8bit:
        return 1;
      case pf24bit:
        return 3;
      case pf32bit:
        return 4;
      default:
        return 2;
    }
  }
  static bool IsWhite(tagPALETTEENTRY e) {
    return e.peRed == 255 && e.peGreen == 255 && e.peBlue == 255;
  }
  static int FirstWhite(const HPALETTE& palette) {
    for (int i = 0; i < palette.Count(); ++i)
      if (IsWhite(palette.Entry(i))) return i;
    return -1;
  }
  static int Distance(tagPALETTEENTRY a, tagPALETTEENTRY b) {
    const int red = std::abs(a.peRed - b.peRed), green = std::abs(a.peGreen - b.peGreen),
              blue = std::abs(a.peBlue - b.peBlue);
    return std::max(red, std::max(green, blue));
  }
  static int BlackOf(const HPALETTE& palette) {
    for (int i = 0; i < palette.Count(); ++i)
      if (Distance(palette.Entry(i), {}) == 0) return i;
    int best = -1, least = 255;
    for (int i = 0; i < palette.Count(); ++i)
      if (Distance(palette.Entry(i), {}) < least) {
        best = i;
        least = Distance(palette.Entry(i), {});
      }
    return best;
  }

  /// Both outputs are the byte's upper four bits: the first pixel counts for the pair.
  static void SplitPair(uint8_t byte, uint8_t& left, uint8_t& right) {
    left = byte / 16;
    right = byte / 16;
  }
  static void JoinPair(uint8_t& byte, uint8_t left, uint8_t right) {
    byte = static_cast<uint8_t>(left * 16 | right);
  }

  static int64_t Scaled(int64_t distance, int targetSize, int sourceSize) {
    const double scale = static_cast<double>(sourceSize) / targetSize;
    return RoundEven(Extended(distance) * scale);
  }

  bool Is4Bit(const TBitmap& bitmap) const { return bitmap.PixelFormat() == pf4bit; }

  void DoPixel(int x) {
    if (t_.task == ptAssignInWhite && !TargetIsWhite(x)) return;
    const int64_t column = Scaled(x - t_.targetRect.Left, t_.targetRect.Right - t_.targetRect.Left,
                                  t_.sourceRect.Right - t_.sourceRect.Left) +
                           t_.sourceRect.Left;
    if (column < 0 || column >= t_.source.Width()) return;
    sx_ = static_cast<int>(column);
    if (t_.task == ptAssignPart && SourceIsWhite()) return;
    if (takeOver_)
      Copy(x);
    else
      Combine(x);
  }

  bool TargetIsWhite(int x) {
    if (tarBytes_ == 0 && !Is4Bit(t_.target)) {
      const int bx = x % 8;
      if (bx == 0) tarByte_ = tar_[x / 8];
      return (tarByte_ >> (7 - bx) & 1) == 1;
    }
    if (tarBytes_ == 0) {
      if (x % 2 != 0) return false;
      SplitPair(tar_[x / 2], tarLeft_, tarRight_);
      return tarLeft_ == tarWhite_ || tarRight_ == tarWhite_;
    }
    const Bgr color = tarBytes_ == 1 ? EntryOf(tarPalette_, tar_[x]) : At(tar_, tarBytes_, x);
    if (t_.useGray) return color.r > 250 && color.g > 250 && color.b > 250;
    return color.r == transparent_.r && color.g == transparent_.g && color.b == transparent_.b;
  }

  bool SourceIsWhite() {
    if (srcBytes_ == 0 && Is4Bit(t_.source)) {
      if (sx_ % 2 == 0) {
        SplitPair(src_[sx_ / 2], srcLeft_, srcRight_);
        return srcLeft_ == srcWhite_ || srcLeft_ == srcLastWhite_;
      }
      return srcRight_ == srcWhite_ || srcLeft_ == srcLastWhite_;
    }
    if (srcBytes_ == 0) {
      const int bx = sx_ % 8;
      if (bx == 0) srcByte_ = src_[sx_ / 8];
      return (srcByte_ >> (7 - bx) & 1) == 1;
    }
    const Bgr color = srcBytes_ == 1 ? EntryOf(srcPalette_, src_[sx_]) : At(src_, srcBytes_, sx_);
    return color.r > 250 && color.g > 250 && color.b > 250;
  }

  void Copy(int x) {
    if (tarBytes_ == 0 && Is4Bit(t_.target) && t_.task == ptAssignInWhite) {
      SplitPair(src_[sx_ / 2], srcLeft_, srcRight_);
      if (tarLeft_ == tarWhite_) tarLeft_ = srcLeft_;
      if (tarRight_ == tarWhite_) tarRight_ = srcRight_;
      JoinPair(tar_[x / 2], tarLeft_, tarRight_);
      // An odd width has no second pixel in its last byte.
      if (x + 1 == t_.target.Width()) tar_[x / 2] &= 0xF0;
      return;
    }
    if (tarBytes_ == 0) {
      const int bx = sx_ % 8;
      if (bx == 0) srcByte_ = src_[sx_ / 8];
      if ((srcByte_ >> (7 - bx) & 1) == 0) tar_[x / 8] &= static_cast<uint8_t>(~(128 >> x % 8));
      return;
    }
    if (tarBytes_ == 1) {
      tar_[x] = Mapped(src_[sx_]);
      return;
    }
    for (int i = 0; i < tarBytes_; ++i) tar_[x * tarBytes_ + i] = src_[sx_ * srcBytes_ + i];
  }

  uint8_t Mapped(uint8_t index) const {
    int result = index;
    if (index >= srcPalette_.Count()) return index;
    int best = 255;
    if (index < tarPalette_.Count()) {
      best = Distance(srcPalette_.Entry(index), tarPalette_.Entry(index));
      if (best == 0) return index;
    }
    for (int j = 0; j < tarPalette_.Count(); ++j) {
      const int distance = Distance(srcPalette_.Entry(index), tarPalette_.Entry(j));
      if (distance < best) {
        best = distance;
        result = j;
      }
    }
    return static_cast<uint8_t>(result);
  }

  void Combine(int x) {
    const bool isPart = t_.task == ptAssignPart;
    if (tarBytes_ == 0) {
      if (!isPart) return;
      const int width = t_.target.Width();
      const int rowBytes = Is4Bit(t_.target) ? (width + 1) / 2 : (width + 7) / 8;
      if (x / 2 >= rowBytes) return;
      uint8_t left, right;
      SplitPair(tar_[x / 2], left, right);
      (x % 2 != 0 ? right : left) = 0;
      JoinPair(tar_[x / 2], left, right);
      // Bits after the last pixel stay zero.
      const int bits = width * (Is4Bit(t_.target) ? 4 : 1) % 8;
      if (x / 2 == rowBytes - 1 && bits != 0) tar_[x / 2] &= static_cast<uint8_t>(0xFF00 >> bits);
      return;
    }
    if (tarBytes_ == 1) {
      tar_[x] = static_cast<uint8_t>(tarBlack_ & 0xFF);
      return;
    }
    if (srcBytes_ >= 3) {
      if (t_.mode == pmOverwrite)
        Put(src_, srcBytes_, sx_, At(tar_, tarBytes_, x));
      else
        Mix(x, At(src_, srcBytes_, sx_));
      return;
    }
    if (!isPart) return;
    if (srcBytes_ == 0 && !Is4Bit(t_.source)) {
      Put(tar_, tarBytes_, x, {0, 0, 0});
    } else {
      const uint8_t index = srcBytes_ == 1 ? src_[sx_] : (sx_ % 2 == 0 ? srcLeft_ : srcRight_);
      // An overwritten entry of the palette is not a pixel.
      if (t_.mode != pmOverwrite) Mix(x, EntryOf(srcPalette_, index));
    }
  }

  void Mix(int x, Bgr s) {
    const Bgr t = At(tar_, tarBytes_, x);
    Put(tar_, tarBytes_, x,
        t_.mode == pmTransparent ? MixTransparent(t, s, t_.percent, t_.useGray)
                                 : MixShadow(t, s, t_.percent, t_.useGray));
  }

  static Bgr At(const uint8_t* row, int bytes, int x) {
    return {row[x * bytes], row[x * bytes + 1], row[x * bytes + 2]};
  }
  static void Put(uint8_t* row, int bytes, int x, Bgr color) {
    row[x * bytes] = color.b;
    row[x * bytes + 1] = color.g;
    row[x * bytes + 2] = color.r;
  }
  static Bgr EntryOf(const HPALETTE& palette, int index) {
    const tagPALETTEENTRY entry = palette.Entry(index);
    return {entry.peBlue, entry.peGreen, entry.peRed};
  }

  TransferTask t_;
  int tarBytes_, srcBytes_;
  bool takeOver_;
  HPALETTE tarPalette_, srcPalette_;
  int tarBlack_ = 0, srcWhite_ = 0, srcLastWhite_ = 0;
  const int tarWhite_ = 0;
  Bgr transparent_;
  uint8_t* tar_ = nullptr;
  uint8_t* src_ = nullptr;
  int sx_ = 0;
  uint8_t srcByte_ = 0, tarByte_ = 0;
  uint8_t tarLeft_ = 0, tarRight_ = 0, srcLeft_ = 0, srcRight_ = 0;
};

/// The bands one after the other. Nothing happens where either rectangle has no area.
inline void Transfer(const TransferTask& task, const Bands& bands) {
  if (!TransferWorker::IsPossible(task.target, task.source)) return;
  std::vector<TransferWorker> workers(bands.size(), TransferWorker(task));
  for (size_t i = 0; i < bands.size(); ++i) workers[i].DoBand(bands[i].first, bands[i].second);
}

inline void AssignInWhite(TBitmap& target, TBitmap& source, const TRect& targetRect,
                          const TRect& sourceRect, uint8_t transLimit, const Bands& bands) {
  const bool useGray = !(target.Transparent() && transLimit >= 255);
  Transfer({target, source, targetRect, sourceRect, ptAssignInWhite, pmOverwrite, 0, useGray},
           bands);
}

}  // namespace rasterkit::reference
