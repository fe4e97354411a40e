#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace rasterkit::detail {

/// Inks, or L* a* b*, to sRGB by colour management. Usable by several threads at once.
class InkTransform {
 public:
  /// Words C M Y K (65535 is all ink) through an ICC profile of such inks; null when the bytes are
  /// none.
  static std::unique_ptr<const InkTransform> OfInks(std::span<const uint8_t> profile);
  /// Doubles L* (0 to 100), a*, b* of the daylight that ICC profiles use.
  static std::unique_ptr<const InkTransform> OfLab();
  ~InkTransform();

  /// `width` pixels to bytes B G R.
  void ToBgr(const void* pixels, size_t width, uint8_t* bgr) const;

 private:
  struct State;
  explicit InkTransform(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit::detail
