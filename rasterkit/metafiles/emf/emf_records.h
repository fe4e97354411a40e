#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <rasterkit/metafiles/records/metafile_bytes.h>

/// Enhanced metafiles, record by record.
///
///     type (32 bits) | size in bytes, these 8 included | fields
///
/// The first record is the header, the last one says that it is the last. Offsets inside a record
/// count from its type.
namespace rasterkit::detail {

enum class EmfType : uint32_t {
  header = 1,
  polyBezier = 2,
  polygon = 3,
  polyline = 4,
  polyBezierTo = 5,
  polylineTo = 6,
  polyPolyline = 7,
  polyPolygon = 8,
  setWindowExt = 9,
  setWindowOrg = 10,
  setViewportExt = 11,
  setViewportOrg = 12,
  setBrushOrg = 13,
  endOfFile = 14,
  setPixel = 15,
  setMapperFlags = 16,
  setMapMode = 17,
  setBkMode = 18,
  setPolyFillMode = 19,
  setRop2 = 20,
  setStretchBltMode = 21,
  setTextAlign = 22,
  setColorAdjustment = 23,
  setTextColor = 24,
  setBkColor = 25,
  offsetClipRgn = 26,
  moveTo = 27,
  setMetaRgn = 28,
  excludeClipRect = 29,
  intersectClipRect = 30,
  scaleViewportExt = 31,
  scaleWindowExt = 32,
  saveDc = 33,
  restoreDc = 34,
  setWorldTransform = 35,
  modifyWorldTransform = 36,
  selectObject = 37,
  createPen = 38,
  createBrush = 39,
  deleteObject = 40,
  angleArc = 41,
  ellipse = 42,
  rectangle = 43,
  roundRect = 44,
  arc = 45,
  chord = 46,
  pie = 47,
  selectPalette = 48,
  createPalette = 49,
  setPaletteEntries = 50,
  resizePalette = 51,
  realizePalette = 52,
  extFloodFill = 53,
  lineTo = 54,
  arcTo = 55,
  polyDraw = 56,
  setArcDirection = 57,
  setMiterLimit = 58,
  beginPath = 59,
  endPath = 60,
  closeFigure = 61,
  fillPath = 62,
  strokeAndFillPath = 63,
  strokePath = 64,
  flattenPath = 65,
  widenPath = 66,
  selectClipPath = 67,
  abortPath = 68,
  comment = 70,
  fillRgn = 71,
  frameRgn = 72,
  invertRgn = 73,
  paintRgn = 74,
  extSelectClipRgn = 75,
  bitBlt = 76,
  stretchBlt = 77,
  maskBlt = 78,
  plgBlt = 79,
  setDibitsToDevice = 80,
  stretchDibits = 81,
  extCreateFont = 82,
  extTextOutA = 83,
  extTextOutW = 84,
  polyBezier16 = 85,
  polygon16 = 86,
  polyline16 = 87,
  polyBezierTo16 = 88,
  polylineTo16 = 89,
  polyPolyline16 = 90,
  polyPolygon16 = 91,
  polyDraw16 = 92,
  createMonoBrush = 93,
  createDibPatternBrush = 94,
  extCreatePen = 95,
  polyTextOutA = 96,
  polyTextOutW = 97,
  setIcmMode = 98,
  createColorSpace = 99,
  setColorSpace = 100,
  deleteColorSpace = 101,
  glsRecord = 102,
  glsBoundedRecord = 103,
  pixelFormat = 104,
  drawEscape = 105,
  extEscape = 106,
  smallTextOut = 108,
  forceUfiMapping = 109,
  namedEscape = 110,
  colorCorrectPalette = 111,
  setIcmProfileA = 112,
  setIcmProfileW = 113,
  alphaBlend = 114,
  setLayout = 115,
  transparentBlt = 116,
  gradientFill = 118,
  setLinkedUfis = 119,
  setTextJustification = 120,
  colorMatchToTarget = 121,
  createColorSpaceW = 122,
};

/// Bytes of a record's type and size.
inline constexpr size_t kEmfRecordHead = 8;

/// The header's signature, " EMF".
inline constexpr uint32_t kEmfSignature = 0x464D4520;

/// What a comment with drawing records of the newer kind starts with: "EMF+".
inline constexpr uint32_t kEmfPlusMark = 0x2B464D45;

struct EmfRecord {
  EmfType type = EmfType::endOfFile;
  /// The record from its type on.
  std::span<const uint8_t> bytes;

  /// What follows type and size.
  MetafileBytes Fields() const { return MetafileBytes(bytes, kEmfRecordHead); }
  /// `count` bytes from `offset`, which counts from the record's start. Throws FormatError when
  /// they do not lie inside the record.
  std::span<const uint8_t> Part(uint64_t offset, uint64_t count) const;
};

/// The header's fields.
struct EmfHeader {
  struct Box {
    int32_t left = 0, top = 0, right = 0, bottom = 0;
  };
  /// Both corners belong to it; pixels of the reference device.
  Box bounds;
  /// 0.01 mm on the reference device.
  Box frame;
  uint32_t bytes = 0, records = 0;
  int32_t deviceWidth = 0, deviceHeight = 0;
  /// Millimetres, in fractions where the header has micrometres too.
  double deviceWidthMm = 0, deviceHeightMm = 0;
  /// The program and the picture's title, UTF-8, as far as the header names them.
  std::string program, title;
};

/// Reads the first record. Throws FormatError when it is no header of an enhanced metafile.
EmfHeader ReadEmfHeader(const EmfRecord& record);

/// Walks the records of a file, the header first and the last one included.
class EmfRecords {
 public:
  explicit EmfRecords(std::span<const uint8_t> bytes) : left_(bytes) {}

  /// The next record, whose size has been checked; nothing behind the last one or where the bytes
  /// stop making sense.
  std::optional<EmfRecord> Next();
  /// After the walk: why it ended before the record that says so; empty when it did not.
  const std::string& Damage() const { return damage_; }

 private:
  std::optional<EmfRecord> Stop(std::string damage);

  std::span<const uint8_t> left_;
  bool ended_ = false;
  std::string damage_;
};

}  // namespace rasterkit::detail
