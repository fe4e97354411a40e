#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit {

enum class MetafileKind { wmf, placeableWmf, emf };

/// What a metafile says about itself, without drawing it.
struct MetafileFacts {
  MetafileKind kind = MetafileKind::wmf;

  struct Box {
    int64_t left = 0, top = 0, right = 0, bottom = 0;
    int64_t Width() const { return right - left; }
    int64_t Height() const { return bottom - top; }
  };
  /// EMF: the drawing's box in pixels of the reference device, the last ones included. WMF: the
  /// picture's box in logical units; it may be upside down.
  Box bounds;
  /// WMF: the file states no box and no window; `bounds` is around what it draws, y downward.
  bool boundsAreDrawn = false;
  /// EMF: the picture's box on the reference device in 0.01 mm.
  Box frame;
  /// EMF: the reference device's size; 0 for WMF.
  int deviceWidth = 0, deviceHeight = 0;
  double deviceWidthMm = 0, deviceHeightMm = 0;
  /// WMF: logical units that are an inch: as the placeable header says, else 96 (a unit is a pixel)
  /// or, for drawings of more than 2048 units, 1440.
  double unitsPerInch = 0;

  /// The picture's size in pixels at 96 dpi and in 0.01 mm, 1 and up.
  int width = 0, height = 0;
  int widthMm100 = 0, heightMm100 = 0;

  /// Records that are there, the header of an EMF file included.
  uint32_t records = 0;
  /// EMF: the file holds records of the newer kind too, which are not drawn.
  bool hasEmfPlus = false;
  /// EMF: the drawing is in records of that kind alone; there is nothing that could be drawn.
  bool isEmfPlusOnly = false;
  /// EMF: the program that wrote the file and the picture's title, UTF-8; may be empty.
  std::string program, title;
  /// What is wrong with the file; what lies before the damage is there all the same.
  std::vector<std::string> warnings;
};

}  // namespace rasterkit
