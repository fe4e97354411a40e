#include <atomic>
#include <cstddef>

#include <rasterkit/bitmaptools/engine/mixing.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/transfer_palettes.h>
#include <rasterkit/bitmaptools/engine/transfer_rules.h>
#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::detail {
namespace {

// The memory of a row is never const, so const can be cast away where a rule writes the source.
std::atomic_ref<uint8_t> Shared(const uint8_t* byte) {
  return std::atomic_ref<uint8_t>(*const_cast<uint8_t*>(byte));
}

uint8_t Load(const uint8_t* byte) {
  return Shared(byte).load(std::memory_order_relaxed);
}

void Store(uint8_t* byte, uint8_t value) {
  Shared(byte).store(value, std::memory_order_relaxed);
}

constexpr int32_t Bit(uint8_t byte, int32_t position) {
  return byte >> (7 - position) & 1;
}

/// Bits of the last byte of a row that belong to pixels.
uint8_t LastByteMask(int32_t width, int32_t bits) {
  const auto used = static_cast<int>(int64_t{width} * bits % 8);
  return used == 0 ? 0xFF : static_cast<uint8_t>(0xFF00 >> used);
}

}  // namespace

const uint8_t* TransferRules::TargetRow() const {
  if (w_.nTarBytes == 3) return &w_.Tar24->b;
  return w_.nTarBytes == 4 ? &w_.Tar32->b : w_.Tar8;
}

TransferRules::Color TransferRules::TargetColor(int32_t x) const {
  const uint8_t* pixel = TargetRow() + static_cast<ptrdiff_t>(x) * w_.nTarBytes;
  return {Load(pixel), Load(pixel + 1), Load(pixel + 2)};
}

TransferRules::Color TransferRules::SourceColor() const {
  const uint8_t* row = w_.nSrcBytes == 3 ? &w_.Src24->b : &w_.Src32->b;
  const uint8_t* pixel = row + static_cast<ptrdiff_t>(w_.sx) * w_.nSrcBytes;
  return {Load(pixel), Load(pixel + 1), Load(pixel + 2)};
}

void TransferRules::TransferPixel(int32_t x, int32_t sx) {
  if (w_.FPixelTask == ptAssignInWhite && !TargetIsWhite(x)) return;
  if (sx < 0) return;
  w_.sx = sx;
  if (w_.FPixelTask == ptAssignPart && SourceIsWhite()) return;
  if (w_.PixTakeOver) {
    TakeOver(x);
  } else {
    Combine(x);
  }
}

void TransferRules::TransferRow(int32_t first, const std::vector<int32_t>& columns) {
  if (!w_.PixTakeOver && w_.FPixelMode == pmOverwrite) {
    if (w_.nTarBytes == 3 && w_.nSrcBytes == 4) return OverwriteSource<3, 4>(first, columns);
    if (w_.nTarBytes == 4 && w_.nSrcBytes == 3) return OverwriteSource<4, 3>(first, columns);
  }
  for (size_t i = 0; i < columns.size(); ++i) {
    TransferPixel(first + static_cast<int32_t>(i), columns[i]);
  }
}

// The fields are read once, because a stored byte could alias any of them.
template <size_t kTargetBytes, size_t kSourceBytes>
void TransferRules::OverwriteSource(int32_t first, const std::vector<int32_t>& columns) {
  const uint8_t* target = w_.Tar8 + static_cast<ptrdiff_t>(first) * kTargetBytes;
  uint8_t* const source = w_.Src8;
  const bool isPart = w_.FPixelTask == ptAssignPart, inWhite = w_.FPixelTask == ptAssignInWhite;
  const bool nearWhite = w_.UseGray, byAlpha = kSourceBytes == 4 && w_.UseAlpha;
  const auto limit = w_.FromGrayVal;
  const Color key{w_.transB, w_.TransG, w_.transR};
  const auto isNearWhite = [&](const Color& c) {
    return c.r > limit && c.g > limit && c.b > limit;
  };
  const auto isKey = [&](const Color& c) { return c.r == key.r && c.g == key.g && c.b == key.b; };
  int32_t lastColumn = w_.sx;
  for (const int32_t column : columns) {
    const Color color{Load(target), Load(target + 1), Load(target + 2)};
    target += kTargetBytes;
    if (inWhite && !(nearWhite ? isNearWhite(color) : isKey(color))) continue;
    if (column < 0) continue;
    lastColumn = column;
    uint8_t* place = source + static_cast<size_t>(column) * kSourceBytes;
    if (isPart && (byAlpha ? Load(place + 3) > 0
                           : isNearWhite({Load(place), Load(place + 1), Load(place + 2)}))) {
      continue;
    }
    Store(place, color.b);
    Store(place + 1, color.g);
    Store(place + 2, color.r);
  }
  w_.sx = lastColumn;
}

bool TransferRules::IsNearWhite(const Color& color) const {
  return color.r > w_.FromGrayVal && color.g > w_.FromGrayVal && color.b > w_.FromGrayVal;
}

bool TransferRules::TargetIsWhite(int32_t x) {
  if (w_.nTarBytes == 0) return PackedTargetIsWhite(x);
  if (w_.nTarBytes == 1) return IsWhiteTargetIndex(w_, Load(w_.Tar8 + x));
  const Color color = TargetColor(x);
  if (w_.UseGray) return IsNearWhite(color);
  return color.r == w_.transR && color.g == w_.TransG && color.b == w_.transB;
}

bool TransferRules::PackedTargetIsWhite(int32_t x) {
  if (w_.nTarBit == 4) {
    if (x % 2 != 0) return false;
    SplitNibbles(Load(w_.Tar8 + x / 2), w_.TarLeft, w_.TarRight);
    return w_.TarLeft == w_.TarWhite || w_.TarRight == w_.TarWhite;
  }
  w_.bx = x % 8;
  if (w_.bx == 0) w_.TarByte = Load(w_.Tar8 + x / 8);
  return (Bit(w_.TarByte, w_.bx) == 1) != w_.TarInv;
}

bool TransferRules::SourceIsWhite() {
  if (w_.nSrcBytes == 0) return PackedSourceIsWhite();
  if (w_.nSrcBytes == 1) return IsWhiteSourceIndex(w_, Load(w_.Src8 + w_.sx));
  if (w_.nSrcBytes == 4 && w_.UseAlpha) return Load(&w_.Src32[w_.sx].a) > 0;
  return IsNearWhite(SourceColor());
}

bool TransferRules::PackedSourceIsWhite() {
  if (w_.nSrcBit != 4) {
    w_.bx = w_.sx % 8;
    if (w_.bx == 0) w_.SrcByte = Load(w_.Src8 + w_.sx / 8);
    return (Bit(w_.SrcByte, w_.bx) == 1) != w_.SrcInv;
  }
  if (w_.sx % 2 == 0) {
    SplitNibbles(Load(w_.Src8 + w_.sx / 2), w_.SrcLeft, w_.SrcRight);
    return w_.SrcLeft == w_.SrcWhite || w_.SrcLeft == w_.SrcLastWhite;
  }
  // The rule compares the left value with the last white.
  return w_.SrcRight == w_.SrcWhite || w_.SrcLeft == w_.SrcLastWhite;
}

void TransferRules::TakeOver(int32_t x) {
  if (w_.nTarBytes == 0 && w_.nTarBit == 4 && w_.FPixelTask == ptAssignInWhite) {
    return TakeOverNibbles(x);
  }
  if (w_.nTarBytes == 0) {
    w_.bx = w_.sx % 8;
    if (w_.bx == 0) w_.SrcByte = Load(w_.Src8 + w_.sx / 8);
    if ((Bit(w_.SrcByte, w_.bx) == 1) != w_.SrcInv) return;
    uint8_t* byte = w_.Tar8 + x / 8;
    return Store(byte, static_cast<uint8_t>(Load(byte) & ~(128 >> x % 8)));
  }
  if (w_.nTarBytes == 1) return Store(w_.Tar8 + x, MappedIndex(w_, Load(w_.Src8 + w_.sx)));
  const auto size = static_cast<ptrdiff_t>(w_.nTarBytes);
  uint8_t* target = (size == 3 ? &w_.Tar24->b : &w_.Tar32->b) + x * size;
  const uint8_t* source = (size == 3 ? &w_.Src24->b : &w_.Src32->b) + w_.sx * size;
  for (ptrdiff_t i = 0; i < size; ++i) Store(target + i, Load(source + i));
}

void TransferRules::TakeOverNibbles(int32_t x) {
  SplitNibbles(Load(w_.Src8 + w_.sx / 2), w_.SrcLeft, w_.SrcRight);
  if (w_.TarLeft == w_.TarWhite) w_.TarLeft = w_.SrcLeft;
  if (w_.TarRight == w_.TarWhite) w_.TarRight = w_.SrcRight;
  uint8_t joined;
  JoinNibbles(joined, w_.TarLeft, w_.TarRight);
  StorePacked(x / 2, joined);
}

// Joined nibbles may set bits after the last pixel, which must be zero in the rows of a bitmap.
void TransferRules::StorePacked(int32_t byte, uint8_t value) {
  const int32_t width = w_.TarBmp->Width();
  const int32_t bits = w_.nTarBit == 4 ? 4 : 1;
  const auto last = static_cast<int32_t>((int64_t{width} * bits - 1) / 8);
  const uint8_t mask = byte == last ? LastByteMask(width, bits) : 0xFF;
  Store(w_.Tar8 + byte, value & mask);
}

void TransferRules::Combine(int32_t x) {
  const bool isPart = w_.FPixelTask == ptAssignPart;
  if (w_.nTarBytes == 0) {
    if (isPart) BlackenNibble(x);
    return;
  }
  if (w_.nTarBytes == 1) return Store(w_.Tar8 + x, static_cast<uint8_t>(w_.TarBlack));
  if (w_.nSrcBytes >= 3) return MixInto(x, SourceColor());
  if (!isPart) return;
  if (w_.nSrcBytes == 1 || w_.nSrcBit == 4) {
    // Without a pixel of that color there is nothing to overwrite.
    if (w_.FPixelMode != pmOverwrite) MixInto(x, SourceEntry());
    return;
  }
  uint8_t* pixel = const_cast<uint8_t*>(TargetRow()) + static_cast<ptrdiff_t>(x) * w_.nTarBytes;
  for (int i = 0; i < 3; ++i) Store(pixel + i, 0);
}

void TransferRules::BlackenNibble(int32_t x) {
  const int32_t perByte = w_.nTarBit == 4 ? 2 : 8;
  if (x / 2 > (w_.TarBmp->Width() - 1) / perByte) return;  // a 1-bit row ends before that byte
  SplitNibbles(Load(w_.Tar8 + x / 2), w_.TarLeft, w_.TarRight);
  (x % 2 != 0 ? w_.TarRight : w_.TarLeft) = static_cast<uint8_t>(w_.TarBlack);
  uint8_t joined;
  JoinNibbles(joined, w_.TarLeft, w_.TarRight);
  StorePacked(x / 2, joined);
}

TransferRules::Color TransferRules::SourceEntry() const {
  const uint8_t index =
      w_.nSrcBytes == 1 ? Load(w_.Src8 + w_.sx) : (w_.sx % 2 == 0 ? w_.SrcLeft : w_.SrcRight);
  const tagPALETTEENTRY entry = w_.SrcCol != nullptr ? (*w_.SrcCol)[index] : tagPALETTEENTRY{};
  return {entry.peBlue, entry.peGreen, entry.peRed};
}

void TransferRules::MixInto(int32_t x, const Color& source) {
  const Color target = TargetColor(x);
  const uint8_t t[3] = {target.b, target.g, target.r};
  const uint8_t s[3] = {source.b, source.g, source.r};
  uint8_t* pixel = const_cast<uint8_t*>(TargetRow()) + static_cast<ptrdiff_t>(x) * w_.nTarBytes;
  if (w_.FPixelMode == pmOverwrite) {
    uint8_t* place = (w_.nSrcBytes == 3 ? &w_.Src24->b : &w_.Src32->b) +
                     static_cast<ptrdiff_t>(w_.sx) * w_.nSrcBytes;
    for (int i = 0; i < 3; ++i) Store(place + i, t[i]);
    return;
  }
  const uint8_t gray = GrayValue(target.r, target.g, target.b);
  const int64_t gain = w_.FPixelMode == pmShadow ? BrightnessGain(gray, w_.f) : 0;
  for (int i = 0; i < 3; ++i) {
    const uint8_t ground = w_.UseGray ? gray : t[i];
    const int mixed = w_.FPixelMode == pmTransparent
                          ? TransparentKept(ground, w_.f) + TransparentAdded(s[i], w_.f)
                          : Shaded(s[i], Brightened(ground, w_.fproz, gain));
    Store(pixel + i, static_cast<uint8_t>(mixed));
  }
}

}  // namespace rasterkit::detail
