// Included by kernels once for each target: one byte a pixel to three equal ones.

#if defined(RASTERKIT_EXPAND_GRAYS_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTERKIT_EXPAND_GRAYS_INL
#undef RASTERKIT_EXPAND_GRAYS_INL
#else
#define RASTERKIT_EXPAND_GRAYS_INL
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

#if HWY_TARGET != HWY_SCALAR

/// Turns a vector of bytes, one per pixel, into three vectors of B G R pixels whose channels are
/// that byte.
class ExpandGrays {
  using D = hwy::HWY_NAMESPACE::ScalableTag<uint8_t>;
  using D32 = hwy::HWY_NAMESPACE::Repartition<uint32_t, D>;
  using V = hwy::HWY_NAMESPACE::Vec<D>;
  using Order =
      decltype(hwy::HWY_NAMESPACE::SetTableIndices(D32(), static_cast<const int32_t*>(nullptr)));

 public:
  ExpandGrays()
      : blocks0_(Blocks(0)),
        blocks1_(Blocks(1)),
        blocks2_(Blocks(2)),
        bytes0_(Places(0)),
        bytes1_(Places(1)),
        bytes2_(Places(2)) {}

  /// The vector of bytes `kPart` times the vector's size and on.
  template <int kPart>
  HWY_INLINE V Part(V grays) const {
    if constexpr (kPart == 0) return Lookup(grays, blocks0_, bytes0_);
    if constexpr (kPart == 1) return Lookup(grays, blocks1_, bytes1_);
    return Lookup(grays, blocks2_, bytes2_);
  }

 private:
  // A block of 16 gray values fills three blocks of pixels: each of those first gets the block that
  // it needs, and then the bytes in it.
  static HWY_INLINE V Lookup(V grays, Order blocks, V places) {
    namespace hn = hwy::HWY_NAMESPACE;
    if constexpr (hn::MaxLanes(D()) > 16) {
      grays = hn::BitCast(D(), hn::TableLookupLanes(hn::BitCast(D32(), grays), blocks));
    }
    return hn::TableLookupBytes(grays, places);
  }

  static Order Blocks(int part) {
    namespace hn = hwy::HWY_NAMESPACE;
    constexpr int kMaxLanes = static_cast<int>(hn::MaxLanes(D32()));
    const int lanes = static_cast<int>(hn::Lanes(D32()));
    int32_t order[kMaxLanes];
    for (int i = 0; i < lanes; ++i) order[i] = (part * lanes / 4 + i / 4) / 3 * 4 + i % 4;
    return hn::SetTableIndices(D32(), order);
  }

  static V Places(int part) {
    namespace hn = hwy::HWY_NAMESPACE;
    constexpr int kMaxLanes = static_cast<int>(hn::MaxLanes(D()));
    const int lanes = static_cast<int>(hn::Lanes(D()));
    uint8_t places[kMaxLanes];
    for (int i = 0; i < lanes; ++i) {
      places[i] = static_cast<uint8_t>(((part * lanes / 16 + i / 16) % 3 * 16 + i % 16) / 3);
    }
    return hn::LoadU(D(), places);
  }

  Order blocks0_, blocks1_, blocks2_;
  V bytes0_, bytes1_, bytes2_;
};

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
