#pragma once

#include <vector>

#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/pictures/find_losses.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/sources/picture_source.h>

/// What belongs to the page of a TIFF file: smaller copies and masks.
namespace rasterkit::detail {

/// Adds what becomes of them: they are copied with the page, made anew, or lost.
void LoseExtraPages(const PictureSource& source, const PictureState& state,
                    const LossTarget& target, Changes& changes);

/// The extra pages of a TIFF file whose page is written anew. If pixels changed, copies are made of
/// `page`, as large beside it as the old ones were beside the old page, and masks go through the
/// steps that move pixels. Else they keep their pixels. Each has the form of the old one. A mask
/// that cannot be read is a loss.
std::vector<TiffExtraPage> MakeExtraPages(const Pixels& page, const PictureSource& source,
                                          const PictureState& state, int threads, Changes& changes);

/// Upper bound of the bytes of all extra pages in memory and of those in the file.
uint64_t ExtraPageBytes(const PictureSource& source, const PictureState& state);

}  // namespace rasterkit::detail
