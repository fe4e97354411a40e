#pragma once

namespace rasterkit {

/// A part of the stored picture, turned and mirrored: pixels move, none changes.
///
/// The part is cut out first; then its rows and columns are exchanged; then the columns and the
/// rows of the result are reversed.
struct PictureMove {
  /// In pixels of the stored picture.
  int left = 0, top = 0, width = 0, height = 0;
  bool exchangesAxes = false, reversesColumns = false, reversesRows = false;

  int ResultWidth() const { return exchangesAxes ? height : width; }
  int ResultHeight() const { return exchangesAxes ? width : height; }
  friend bool operator==(const PictureMove&, const PictureMove&) = default;
};

}  // namespace rasterkit
