#pragma once

#include <vector>

#include <rasterkit/bands/stage.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/pictures/picture_source.h>
#include <rasterkit/pictures/picture_state.h>

namespace rasterkit::detail {

/// True if smaller copies and masks of the source's page can go into a file of that type.
bool CarriesExtraPages(const PictureSource& source, PictureType target);

/// Makes the smaller copies of a page anew from its new pixels, by the same factors, and sends its
/// masks through the steps. One that cannot be made is a loss.
std::vector<TiffExtraPage> MakeExtraPages(const PictureSource& source, const PictureState& state,
                                          const Pixels& page, const StageRun& run,
                                          Changes& changes);

}  // namespace rasterkit::detail
