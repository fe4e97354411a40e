#pragma once

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// What is known about a target before it is written.
struct LossTarget {
  PictureType type = PictureType::unknown;
  /// The compressed pixels are those of the source.
  bool isCopied = false;
  /// Files can lie beside it.
  bool hasSideFiles = false;
};

/// What the target cannot hold besides pixels and metadata: other pictures of the file, its
/// position, how it is built.
Changes LossesOf(const PictureSource& source, const PictureState& state, const LossTarget& target);

/// Adds the losses and notes that are not yet there.
void Join(Changes& all, const Changes& more);

}  // namespace rasterkit::detail
