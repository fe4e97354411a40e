#pragma once

#include <memory>

#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/codecs/rows/row_reader.h>

namespace rasterkit::detail {

/// The facts of a reader, without rows: where a flow meets one, it only counts what it would hold.
class ForetoldRows : public RowReader {
 public:
  ForetoldRows(const Pixels& like, Sides sides, RowAccess access, int blockRows)
      : like_(std::make_shared<Pixels>(NewPixels(like, 1, 1))),
        sides_(sides),
        access_(access),
        blockRows_(blockRows) {}

  /// Rows that would be kept: in memory, or in a scratch file.
  static std::shared_ptr<ForetoldRows> Kept(const Pixels& like, Sides sides, bool isInMemory) {
    auto rows = std::make_shared<ForetoldRows>(like, sides, RowAccess::anyParts, 1);
    if (isInMemory) rows->bytesHeld_ = BytesOfPixels(like, sides.width, sides.height);
    return rows;
  }

  int Width() const override { return sides_.width; }
  int Height() const override { return sides_.height; }
  RowAccess Access() const override { return access_; }
  int BlockRows() const override { return blockRows_; }
  const Pixels& Like() const override { return *like_; }
  void Read(int, int, Pixels&) override {}
  void Finish(CodecReport&) override {}

  bool IsInMemory() const { return bytesHeld_ > 0; }
  /// Of memory.
  uint64_t BytesHeld() const { return bytesHeld_; }

 private:
  std::shared_ptr<const Pixels> like_;
  Sides sides_;
  RowAccess access_;
  int blockRows_;
  uint64_t bytesHeld_ = 0;
};

}  // namespace rasterkit::detail
