#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <rasterkit/codecs/drawn_signatures.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>

/// Windows metafiles (WMF), record by record.
///
///     [placeable header 22 bytes] | header 18 bytes | records
///     size in words, including these 3 (32 bits) | function (16 bits) | parameters
///
/// Parameters are stored in reverse order: a rectangle is bottom, right, top, left.
namespace rasterkit::detail {

enum class WmfFunction : uint16_t {
  endOfFile = 0x0000,
  saveDc = 0x001E,
  realizePalette = 0x0035,
  setPaletteEntries = 0x0037,
  createPalette = 0x00F7,
  setBkMode = 0x0102,
  setMapMode = 0x0103,
  setRop2 = 0x0104,
  setRelAbs = 0x0105,
  setPolyFillMode = 0x0106,
  setStretchBltMode = 0x0107,
  setTextCharExtra = 0x0108,
  restoreDc = 0x0127,
  invertRegion = 0x012A,
  paintRegion = 0x012B,
  selectClipRegion = 0x012C,
  selectObject = 0x012D,
  setTextAlign = 0x012E,
  resizePalette = 0x0139,
  dibCreatePatternBrush = 0x0142,
  setLayout = 0x0149,
  deleteObject = 0x01F0,
  createPatternBrush = 0x01F9,
  setBkColor = 0x0201,
  setTextColor = 0x0209,
  setTextJustification = 0x020A,
  setWindowOrg = 0x020B,
  setWindowExt = 0x020C,
  setViewportOrg = 0x020D,
  setViewportExt = 0x020E,
  offsetWindowOrg = 0x020F,
  offsetViewportOrg = 0x0211,
  lineTo = 0x0213,
  moveTo = 0x0214,
  offsetClipRgn = 0x0220,
  fillRegion = 0x0228,
  setMapperFlags = 0x0231,
  selectPalette = 0x0234,
  createPenIndirect = 0x02FA,
  createFontIndirect = 0x02FB,
  createBrushIndirect = 0x02FC,
  polygon = 0x0324,
  polyline = 0x0325,
  scaleWindowExt = 0x0410,
  scaleViewportExt = 0x0412,
  excludeClipRect = 0x0415,
  intersectClipRect = 0x0416,
  ellipse = 0x0418,
  floodFill = 0x0419,
  rectangle = 0x041B,
  setPixel = 0x041F,
  frameRegion = 0x0429,
  animatePalette = 0x0436,
  textOut = 0x0521,
  polyPolygon = 0x0538,
  extFloodFill = 0x0548,
  roundRect = 0x061C,
  patBlt = 0x061D,
  escape = 0x0626,
  createRegion = 0x06FF,
  arc = 0x0817,
  pie = 0x081A,
  chord = 0x0830,
  bitBlt = 0x0922,
  dibBitBlt = 0x0940,
  extTextOut = 0x0A32,
  stretchBlt = 0x0B23,
  dibStretchBlt = 0x0B41,
  setDibToDev = 0x0D33,
  stretchDib = 0x0F43,
};

/// Bytes of a record's size and function.
inline constexpr size_t kWmfRecordHead = 6;
inline constexpr size_t kWmfHeader = 18, kWmfPlaceableHeader = 22;

struct WmfRecord {
  WmfFunction function = WmfFunction::endOfFile;
  /// The whole record, starting with its size.
  std::span<const uint8_t> bytes;

  /// Returns the parameters.
  MetafileBytes Fields() const { return MetafileBytes(bytes, kWmfRecordHead); }
  /// Returns the number of parameter words.
  size_t Words() const { return (bytes.size() - kWmfRecordHead) / 2; }
  /// Returns whether a blit record has a bitmap: the high byte of the function is the number of
  /// parameter words of a record without one.
  bool HasBitmap() const { return Words() != static_cast<size_t>(function) >> 8; }
};

/// The placeable header: the box of the picture in logical units, which may be flipped, and the
/// units per inch.
struct WmfPlacement {
  int left = 0, top = 0, right = 0, bottom = 0;
  int unitsPerInch = 0;
};

/// Iterates over the records of a file, including the last one. Throws FormatError if the data does
/// not start with a WMF header.
class WmfRecords {
 public:
  explicit WmfRecords(std::span<const uint8_t> bytes);

  /// Present if the file has a placeable header.
  const std::optional<WmfPlacement>& Placement() const { return placement_; }

  /// Returns the next record, whose size has been checked; nothing after the last record or at
  /// damage.
  std::optional<WmfRecord> Next();
  /// Returns why the iteration ended before the last record; empty if it did not.
  const std::string& Damage() const { return damage_; }

 private:
  std::optional<WmfRecord> Stop(std::string damage);

  std::span<const uint8_t> left_;
  std::optional<WmfPlacement> placement_;
  bool ended_ = false;
  std::string damage_;
};

}  // namespace rasterkit::detail
