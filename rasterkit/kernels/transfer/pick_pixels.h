#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rasterkit::kernels {

/// Picks pixels of a row by column: what scaling by nearest pixel does with every row. The columns
/// are looked at once, when the plan is made.
///
/// Pixels of `sourceBytes` bytes become pixels of `targetBytes`: 1 to 1, 3 to 3, 4 to 4, or 4 to 3,
/// which drops the alpha. Where several wanted pixels lie within 16 bytes, or eight of 4 bytes
/// within 32, as they do unless the picture shrinks a lot, one shuffle moves them all.
class PixelPicker {
 public:
  /// `columns` lie between 0 and `sourceWidth - 1`.
  PixelPicker(const std::vector<int32_t>& columns, int sourceBytes, int targetBytes,
              int32_t sourceWidth);

  /// True when the columns are one another's neighbors, from left to right.
  bool IsOneToOne() const { return isOneToOne_; }

  /// Pixel i of `target` becomes pixel `columns[i]` of `row`. Exactly the target's pixels are
  /// written, and nothing beyond the row is read.
  void Pick(const uint8_t* row, uint8_t* target) const;

  /// So many bytes from `source` in the row on, in the order of `places`, make the bytes from
  /// `target` on; those after it are written anew by the next step.
  struct Step {
    uint32_t source;
    uint32_t target;
    uint8_t places[16];
  };
  /// Eight pixels of 4 bytes, of the eight from byte `source` in the row on.
  struct Octet {
    uint32_t source;
    uint32_t target;
    uint8_t places[8];
  };
  /// Source and target byte of a pixel that is moved by itself.
  struct Single {
    uint32_t source;
    uint32_t target;
  };

 private:
  bool AddOctet(const std::vector<int32_t>& columns, size_t& next);
  bool AddStep(const std::vector<int32_t>& columns, size_t& next);

  uint32_t sourceBytes_, targetBytes_;
  size_t rowBytes_, targetRowBytes_;
  bool isOneToOne_ = true;
  std::vector<Octet> octets_;
  std::vector<Step> steps_;
  std::vector<Single> singles_;
};

}  // namespace rasterkit::kernels
