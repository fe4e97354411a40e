#pragma once

#include <cstddef>
#include <cstdint>

/// Rows of 15- and 16-bit pixels, little-endian words of packed channels, to wider pixels. Channels
/// are widened to full scale by repeating their high bits. Source and target must not overlap;
/// exactly the bytes of `width` pixels are written.
namespace rasterkit::kernels {

/// Words 0rrrrrgg gggbbbbb to B G R A with alpha 255; the highest bit is ignored.
void Row555To32(const uint8_t* words, size_t width, uint8_t* target);
/// Words rrrrrggg gggbbbbb to B G R A with alpha 255.
void Row565To32(const uint8_t* words, size_t width, uint8_t* target);

/// Words 0rrrrrgg gggbbbbb to B G R; the highest bit is ignored.
void Row555To24(const uint8_t* words, size_t width, uint8_t* target);
/// Words rrrrrggg gggbbbbb to B G R.
void Row565To24(const uint8_t* words, size_t width, uint8_t* target);

}  // namespace rasterkit::kernels
