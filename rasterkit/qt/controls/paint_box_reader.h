#pragma once

namespace rasterkit::detail {

/// Makes screen readers see every TPaintBox as a picture with its name, its current content and its
/// description. Can be called more than once.
void TellReadersOfPaintBoxes();

}  // namespace rasterkit::detail
