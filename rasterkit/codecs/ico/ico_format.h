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
inline constexpr size_t reserved = 0, type = 2, count = 4;
inline constexpr size_t width = 0, height = 1, planes = 4, bits = 6, bytes = 8, offset = 12;
}  // namespace ico_field

/// An entry has one byte per side; 0 means 256.
inline constexpr int kLargestIcon = 256;

}  // namespace rasterkit::detail
