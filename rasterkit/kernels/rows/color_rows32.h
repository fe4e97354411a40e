#pragma once

#include <cstddef>
#include <cstdint>

/// Rows of pixels B G R A, changed in place; exactly `width` pixels of each row are touched.
namespace rasterkit::kernels {

/// Takes the colors of another row, B G R; alpha stays.
void ReplaceColors32(uint8_t* bgra, const uint8_t* bgr, size_t width);

/// Takes whole pixels of another row, B G R A, except where `keep` (three bytes per pixel, 0 or 255
/// each) is 255.
void TakePixels32(uint8_t* bgra, const uint8_t* source, const uint8_t* keep, size_t width);

}  // namespace rasterkit::kernels
