#pragma once

#include <string>

#include <rasterkit/codecs/rows/picture_move.h>
#include <rasterkit/placement/affine.h>

namespace rasterkit::detail {

/// The move that leads to a picture of `width` x `height` pixels whose pixel indexes `toOld` leads
/// to those of the stored picture: whole pixels, turned or mirrored.
PictureMove MoveOf(const Affine& toOld, int width, int height);

/// Columns and rows at the edges of the result of a move.
struct EdgePixels {
  int left = 0, top = 0, right = 0, bottom = 0;
};

/// What the result of `part` lacks of that of `whole`.
EdgePixels DroppedBy(const PictureMove& part, const PictureMove& whole);

/// "8 columns at the left edge and 3 rows at the top edge".
std::string TextOf(const EdgePixels& edges);

}  // namespace rasterkit::detail
