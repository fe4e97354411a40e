#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace rasterkit::detail {

/// Converts inks, or L* a* b*, to sRGB by color management. Several threads may use it at once.
class InkTransform {
 public:
  /// For words C M Y K (65535 is full ink), by an ICC profile of such inks; null if the bytes are
  /// no profile.
  static std::unique_ptr<const InkTransform> OfInks(std::span<const uint8_t> profile);
  /// For doubles L* (0 to 100), a*, b* with the illuminant of ICC profiles.
  static std::unique_ptr<const InkTransform> OfLab();
  ~InkTransform();

  /// Converts `width` pixels to bytes B G R.
  void ToBgr(const void* pixels, size_t width, uint8_t* bgr) const;

 private:
  struct State;
  explicit InkTransform(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit::detail
