#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_output.h>
#include <rasterkit/codecs/tiff/tiff_plan.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Compresses strips as the handle of a file would, for one thread: has a handle of its own whose
/// file is never finished, and keeps only the strips.
class TiffStripPacker {
 public:
  /// The plan must outlive the object.
  explicit TiffStripPacker(const TiffPlan& plan);

  std::vector<uint8_t> Pack(uint32_t strip, std::span<const uint8_t> rows);

 private:
  /// Keeps all bytes that are written: the pieces of a strip follow each other.
  class Bytes : public TStream {
   public:
    size_t Read(std::span<uint8_t>) override { return 0; }
    void Write(std::span<const uint8_t> source) override {
      bytes.insert(bytes.end(), source.begin(), source.end());
    }
    uint64_t Position() const override { return 0; }
    void SetPosition(uint64_t) override {}
    uint64_t Size() const override { return bytes.size(); }

    std::vector<uint8_t> bytes;
  };

  const TiffPlan& plan_;
  Bytes bytes_;
  TiffOutput output_;
};

/// True if the strips of the plan are packed without libtiff.
bool IsG4(const TiffPlan& plan);
/// Packs the rows of a strip of such a plan.
std::vector<uint8_t> PackG4(const TiffPlan& plan, std::span<const uint8_t> rows);

}  // namespace rasterkit::detail
