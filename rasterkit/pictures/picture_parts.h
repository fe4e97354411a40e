#pragma once

#include <memory>
#include <utility>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// What a picture is made of, for the rest of this room.
struct PictureParts {
  static const SourcePtr& Source(const Picture& picture) { return picture.source_; }
  static const PictureState& State(const Picture& picture) { return *picture.state_; }
  static const std::shared_ptr<const PictureState>& SharedState(const Picture& picture) {
    return picture.state_;
  }
  /// The upright picture of a source.
  static Picture Of(SourcePtr source) { return Picture(std::move(source)); }
};

}  // namespace rasterkit::detail
