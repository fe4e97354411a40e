#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// One palette entry, in this byte order.
struct tagPALETTEENTRY {
  uint8_t peRed = 0, peGreen = 0, peBlue = 0, peFlags = 0;
  friend bool operator==(const tagPALETTEENTRY&, const tagPALETTEENTRY&) = default;
};

/// 256 palette entries. Operations that take a table also take the number of valid entries.
using TColorTable = std::array<tagPALETTEENTRY, 256>;
using PColorTable = TColorTable*;

/// A palette handle: a small value that shares an immutable list of 0 to 256 entries. The empty
/// handle is "no palette".
class RASTERKIT_EXPORT HPALETTE {
 public:
  HPALETTE() = default;
  /// Copies the first 256 entries at most; no entries give the empty handle.
  explicit HPALETTE(std::span<const tagPALETTEENTRY> entries);

  explicit operator bool() const { return entries_ != nullptr; }
  int Count() const { return entries_ ? static_cast<int>(entries_->size()) : 0; }
  std::span<const tagPALETTEENTRY> Entries() const;
  /// Entry `index`; black if it lies beyond the palette.
  tagPALETTEENTRY Entry(int index) const;

  /// Compares the entries, whether they are shared or not.
  friend bool operator==(const HPALETTE& a, const HPALETTE& b);

 private:
  std::shared_ptr<const std::vector<tagPALETTEENTRY>> entries_;
};

/// Palette of a new indexed bitmap. 1 bit: black, white. 4 bits: the 16 standard colors. 8 bits:
/// 256 entries (the 20 standard colors, 10 at each end, with a color cube and grays between them).
/// Empty for other formats.
RASTERKIT_EXPORT HPALETTE DefaultPalette(TPixelFormat format);

/// Palette of `count` grays (2 to 256) from black to white.
RASTERKIT_EXPORT HPALETTE GrayPalette(int count);

/// Tells whether the palette is exactly the ramp (0,0,0), (1,1,1) ... (255,255,255).
RASTERKIT_EXPORT bool IsGrayRamp(const HPALETTE& palette);

/// Full table of a palette; entries beyond the palette are black.
RASTERKIT_EXPORT TColorTable PaletteTable(const HPALETTE& palette);

/// Index of the entry nearest to the color 0x00BBGGRR: least sum of squared channel differences,
/// the lowest index among equals; 0 if there are no entries.
RASTERKIT_EXPORT int NearestEntry(std::span<const tagPALETTEENTRY> entries, TColor color);

/// Color of an entry, 0x00BBGGRR.
constexpr TColor EntryColor(const tagPALETTEENTRY& entry) {
  return RGB(entry.peRed, entry.peGreen, entry.peBlue);
}

}  // namespace rasterkit
