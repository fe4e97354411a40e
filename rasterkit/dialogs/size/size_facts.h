#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>
#include <rasterkit/pictures/picture.h>

/// What the size window says about a picture and the size that its model has. Nothing reads a
/// pixel.
namespace rasterkit {

/// Bytes of the pixels of the picture at another size; nothing if it cannot have it.
std::optional<uint64_t> BytesAtSize(const Picture& picture, int32_t width, int32_t height,
                                    Filter filter);

/// "4000 x 3000 pixels, 34.3 MiB, 300 dpi".
std::string SizeFactsText(const Picture& picture);

/// The same for the result; empty for a size that is refused.
std::string SizeResultText(const ChangeSizeModel& model, const Picture& picture);

/// Why OK is disabled; empty if it is enabled.
std::string SizeFaultText(const ChangeSizeModel& model);

}  // namespace rasterkit
