#pragma once

#include <functional>
#include <memory>
#include <string>

#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/runtime/files/scratch_file.h>

namespace rasterkit::detail {

/// Rows that are kept in a scratch file and read in any parts, by several threads.
///
/// The file is divided into blocks of rows, and these into columns of some hundred pixels, so that
/// parts that are high and narrow are read with few calls, too.
class ScratchRows : public RowReader {
 public:
  /// Reserves room for a picture of the kind of `like`. See ScratchFile for errors.
  ScratchRows(const Pixels& like, Sides sides, const std::string& folder);

  /// Bytes of the file for such a picture.
  static uint64_t BytesFor(const Pixels& like, Sides sides);

  /// Keeps rows in full width.
  void Keep(const Pixels& rows, int top);

  int Width() const override { return sides_.width; }
  int Height() const override { return sides_.height; }
  RowAccess Access() const override { return RowAccess::anyParts; }
  const Pixels& Like() const override { return like_; }
  void Read(int left, int top, Pixels& target) override;
  void Finish(CodecReport&) override {}

 private:
  /// Rows of one column in one block of rows of one plane.
  struct Piece {
    int plane, left, width, top, height;
    uint64_t position;
    size_t stride;
  };

  void ForPieces(int left, int top, int width, int height,
                 const std::function<void(const Piece&)>& use) const;

  const Pixels like_;
  const Sides sides_;
  ScratchFile file_;
};

}  // namespace rasterkit::detail
