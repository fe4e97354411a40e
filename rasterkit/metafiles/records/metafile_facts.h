#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit {

enum class MetafileKind { wmf, placeableWmf, emf };

/// Properties of a metafile, known without drawing it.
struct MetafileFacts {
  MetafileKind kind = MetafileKind::wmf;

  struct Box {
    int64_t left = 0, top = 0, right = 0, bottom = 0;
    int64_t Width() const { return right - left; }
    int64_t Height() const { return bottom - top; }
  };
  /// EMF: bounding box of the drawing in pixels of the reference device, right and bottom included.
  /// WMF: box of the picture in logical units; it may be flipped.
  Box bounds;
  /// WMF: true if the file states neither a box nor a window; `bounds` is then the measured
  /// bounding box of the drawing, y downward.
  bool boundsAreDrawn = false;
  /// EMF: box of the picture on the reference device, in 0.01 mm.
  Box frame;
  /// EMF: size of the reference device; 0 for WMF.
  int deviceWidth = 0, deviceHeight = 0;
  double deviceWidthMm = 0, deviceHeightMm = 0;
  /// WMF: logical units per inch. From the placeable header, else 96 (a unit is a pixel), or 1440
  /// for drawings of more than 2048 units.
  double unitsPerInch = 0;

  /// Size of the picture in pixels at 96 dpi and in 0.01 mm; at least 1.
  int width = 0, height = 0;
  int widthMm100 = 0, heightMm100 = 0;

  /// Number of records, including the header of an EMF file.
  uint32_t records = 0;
  /// EMF: true if the file also has EMF+ records, which are not drawn.
  bool hasEmfPlus = false;
  /// EMF: true if only EMF+ records draw; such a file cannot be drawn.
  bool isEmfPlusOnly = false;
  /// EMF: the program that wrote the file and the title of the picture, UTF-8; may be empty.
  std::string program, title;
  /// Damage found in the file. The records before it can be drawn.
  std::vector<std::string> warnings;
};

}  // namespace rasterkit
