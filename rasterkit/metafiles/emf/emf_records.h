#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <rasterkit/codecs/drawn_signatures.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>

/// Enhanced metafiles (EMF), record by record.
///
///     type (32 bits) | size in bytes, including these 8 | fields
///
/// The first record is the header, the last one is endOfFile. Offsets in a record count from its
/// type.
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

/// The signature of a comment with EMF+ records, "EMF+".
inline constexpr uint32_t kEmfPlusMark = 0x2B464D45;

struct EmfRecord {
  EmfType type = EmfType::endOfFile;
  /// The whole record, starting with its type.
  std::span<const uint8_t> bytes;

  /// Returns the fields after type and size.
  MetafileBytes Fields() const { return MetafileBytes(bytes, kEmfRecordHead); }
  /// Returns `count` bytes at `offset` from the start of the record. Throws FormatError if they
  /// exceed the record.
  std::span<const uint8_t> Part(uint64_t offset, uint64_t count) const;
};

/// The fields of the header.
struct EmfHeader {
  struct Box {
    int32_t left = 0, top = 0, right = 0, bottom = 0;
  };
  /// In pixels of the reference device, right and bottom included.
  Box bounds;
  /// In 0.01 mm on the reference device.
  Box frame;
  uint32_t bytes = 0, records = 0;
  int32_t deviceWidth = 0, deviceHeight = 0;
  /// In millimeters; with fractions if the header also states micrometers.
  double deviceWidthMm = 0, deviceHeightMm = 0;
  /// The program that wrote the file and the title of the picture, UTF-8; may be empty.
  std::string program, title;
};

/// Reads the first record. Throws FormatError if it is not an EMF header.
EmfHeader ReadEmfHeader(const EmfRecord& record);

/// Iterates over the records of a file, from the header to the last record.
class EmfRecords {
 public:
  explicit EmfRecords(std::span<const uint8_t> bytes) : left_(bytes) {}

  /// Returns the next record, whose size has been checked; nothing after the last record or at
  /// damage.
  std::optional<EmfRecord> Next();
  /// Returns why the iteration ended before the last record; empty if it did not.
  const std::string& Damage() const { return damage_; }

 private:
  std::optional<EmfRecord> Stop(std::string damage);

  std::span<const uint8_t> left_;
  bool ended_ = false;
  std::string damage_;
};

}  // namespace rasterkit::detail
