#pragma once

#include <rasterkit/codecs/tiff/pages/page_plan.h>

namespace rasterkit::detail {

/// Completes the form of a plan whose samples are known: compression, predictor, blocks, planes,
/// order of bytes and bits as wanted where they fit the samples. Each difference becomes a note.
void ChooseForm(const TiffForm& wanted, PagePlan& plan, Changes& changes);

}  // namespace rasterkit::detail
