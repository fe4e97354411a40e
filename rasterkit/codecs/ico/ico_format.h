#pragma once

#include <cstddef>
#include <cstdint>

/// Layout of icon files, for decoder and encoder.
///
///     directory 6 bytes | 16 bytes for each picture | the pictures
///
/// A picture is a PNG file, or a bitmap file without its file header: info header, palette, rows of
/// colors, then rows of a 1-bit mask (ones are transparent). The info header states the height of
/// both kinds of rows together. Everything is little-endian, rows are padded to 4 bytes.
namespace rasterkit::detail {

inline constexpr size_t kIcoHeaderBytes = 6;
inline constexpr size_t kIcoEntryBytes = 16;
inline constexpr uint32_t kIcoType = 1;

/// Offsets of the fields, in the directory's header and in an entry.
namespace ico_field {
inline constexpr size_t kReserved = 0, kType = 2, kCount = 4;
inline constexpr size_t kWidth = 0, kHeight = 1, kPlanes = 4, kBits = 6, kBytes = 8, kOffset = 12;
}  // namespace ico_field

/// An entry has one byte per side; 0 means 256.
inline constexpr int kLargestIcon = 256;

}  // namespace rasterkit::detail
