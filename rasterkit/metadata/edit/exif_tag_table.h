#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// How the value of an EXIF tag is written as text.
enum class ExifForm : uint8_t {
  /// Shown, but never set: it says how pixels are stored, or leads to other bytes.
  fixed,
  text,
  /// "2019:07:04 13:05:09".
  moment,
  /// "2019:07:04".
  day,
  /// "+02:00".
  offset,
  /// Whole numbers from 0 on.
  byte,
  word,
  longNumber,
  /// Fractions, from 0 on and of any sign.
  fraction,
  signedFraction,
  /// "13:05:09" as three fractions.
  time,
  /// Degrees as three fractions.
  degrees,
  /// Four digits.
  version,
  /// One byte of no type.
  plainByte,
  /// Text of any language behind the name of its encoding.
  comment,
  /// UTF-16, as Windows writes it.
  wideText,
};

/// A tag of EXIF: one row for all that is known about it.
struct ExifTagFact {
  ExifDirectoryId directory;
  uint16_t tag;
  /// Of the standard; what people and programs call it otherwise, or empty.
  std::string_view name, otherName;
  ExifForm form;
  /// Number of values; 0 for any.
  uint8_t count;
};

/// All rows, by directory and tag. The interoperability directory has rows of its own; the
/// thumbnail's directory shares those of the main one.
RASTERKIT_EXPORT std::span<const ExifTagFact> ExifTags();

/// The row of a tag, wherever the standard puts it; null for uncommon tags.
RASTERKIT_EXPORT const ExifTagFact* FindExifTag(ExifDirectoryId directory, uint16_t tag);

/// The row of a name, in any case of letters; null if there is none.
RASTERKIT_EXPORT const ExifTagFact* FindExifTag(std::string_view name);

}  // namespace rasterkit
