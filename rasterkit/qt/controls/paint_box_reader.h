#pragma once

namespace rasterkit::detail {

/// From here on screen readers meet every TPaintBox as a picture: with its name, with what it says
/// of its contents now, and then how it is used. May be called as often as one likes.
void TellReadersOfPaintBoxes();

}  // namespace rasterkit::detail
