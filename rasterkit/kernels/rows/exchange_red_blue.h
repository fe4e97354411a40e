#pragma once

#include <cstddef>
#include <cstdint>

/// Rows of pixels with their first and third byte exchanged: B G R from R G B and back. Source and
/// target may be the same row; they must not overlap otherwise. Exactly the bytes of `width` pixels
/// are written.
namespace rasterkit::kernels {

/// Exchanges red and blue of pixels of three bytes.
void ExchangeRedBlue24(const uint8_t* pixels, size_t width, uint8_t* target);

/// The same past the caches, for targets that are larger than them and not read soon. Source and
/// target must not overlap.
void StreamRedBlue24(const uint8_t* pixels, size_t width, uint8_t* target);

/// Exchanges red and blue of pixels of four bytes; the fourth byte is copied.
void ExchangeRedBlue32(const uint8_t* pixels, size_t width, uint8_t* target);

/// `width` pixels B G R from a row of each color.
void JoinPlanes24(const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t width,
                  uint8_t* target);

}  // namespace rasterkit::kernels
