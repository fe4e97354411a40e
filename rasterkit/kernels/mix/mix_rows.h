#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/kernels/rows/byte_map.h>

/// Rows of channel values combined byte by byte, in place. Where `keep` is 255 the target stays;
/// elsewhere it is 0. Exactly `count` bytes of each row are touched; `target` and `ground` may be
/// the same row.
namespace rasterkit::kernels {

/// target = source.
void TakeRow(uint8_t* target, const uint8_t* source, const uint8_t* keep, size_t count);

/// target = source * shade / 255, rounded (there are no halves).
void ShadeRow(uint8_t* target, const uint8_t* shade, const uint8_t* source, const uint8_t* keep,
              size_t count);

/// target = the low byte of kept[ground] + added[source].
struct MixWeights {
  ByteTable kept;
  ByteMap added;
  /// Where `hasForm`, ground * 2 times `keptFactor`, cut to its upper 16 bits, is `kept`.
  bool hasForm = false;
  uint16_t keptFactor = 0;
};

/// `kept[i]` is i * keptShare, cut, and `added[i]` is i * addedShare, rounded (nearly).
MixWeights MakeMixWeights(const ByteTable& kept, double keptShare, const ByteTable& added,
                          double addedShare);

void MixRow(const MixWeights& weights, uint8_t* target, const uint8_t* ground,
            const uint8_t* source, const uint8_t* keep, size_t count);

}  // namespace rasterkit::kernels
