#pragma once

#include <optional>
#include <vector>

#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/metadata/loss.h>

namespace rasterkit::detail {

/// Kinds of pixels that a JPEG file can hold.
enum class JpegColors { gray, rgb, cmyk };

/// How a picture is coded, chosen before the library is called.
struct JpegPlan {
  JpegColors colors = JpegColors::rgb;
  /// True if the components are luminance and chroma (YCbCr, YCCK), not the colors themselves.
  bool hasChroma = true;
  /// Components with identifier, sampling and table, as in the frame header.
  std::vector<JpegForm::Component> components;
  /// The tables of the source; without them the standard ones of `quality`.
  std::optional<std::array<std::optional<std::array<uint16_t, 64>>, 4>> tables;
  int quality = 90;
  bool progressive = false, arithmetic = false;
  int restartInterval = 0;
  /// An Adobe segment is written; inks are then stored inverted.
  bool hasAdobe = false;
};

/// Chooses the form of a file: that of `writing` as far as the pixels and the library allow it.
/// What differs is added to `changes`.
JpegPlan PlanJpeg(JpegColors colors, const PictureWriting& writing, Changes& changes);

}  // namespace rasterkit::detail
